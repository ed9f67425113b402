#pragma once

#include "app/options/Options.h"
#include "ui/options/SettingBox.h"

#include <QWidget>

#include <utility>
#include <vector>

namespace nv {

/// The settings that have a control of their own, whichever tab of the Options dialog it stands on.
class SettingBoxes {
  public:
    /// `start` must outlive this.
    explicit SettingBoxes(const Options &start) : m_start(start) {}

    QWidget *add(QVBoxLayout &column, const SettingFacts &row);
    bool has(const SettingFacts &row) const;
    /// What Okay asks.
    void putInto(Options &options) const;

  private:
    const Options &m_start;
    std::vector<std::pair<const SettingFacts *, SettingBox>> m_boxes;
};

/// A tab of the Options dialog that knows its own controls.
class OptionsTab : public QWidget {
  public:
    /// What stands in them, when Okay asks.
    virtual void putInto(Options &options) const = 0;
};

} // namespace nv
