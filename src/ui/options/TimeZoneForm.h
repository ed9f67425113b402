#pragma once

#include "time/ZoneDatabase.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;

namespace nv {

/// Shows the properties of the zones; it stores nothing.
class TimeZoneForm final : public QDialog {
    Q_OBJECT

  public:
    /// `zones` must outlive the form; `selected` is a place in them, or -1.
    TimeZoneForm(const std::vector<ZoneRow> &zones, int selected, QWidget *parent = nullptr);

  private:
    void showZone(int place);

    const std::vector<ZoneRow> &m_zones;
    QComboBox *m_list = nullptr;
    QCheckBox *m_observed = nullptr;
    QLabel *m_offset = nullptr;
};

} // namespace nv
