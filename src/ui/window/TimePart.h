#pragma once

#include "ui/window/Workbench.h"
#include "views/Timeline.h"

#include <QString>

class QCheckBox;
class QComboBox;
class QLabel;
class QToolButton;

namespace nv {

class TimeStrip;

/// The bar of time above the table: when the rows of the query, host and filters happened. A span
/// that is chosen in it hides the rows of other times until it is taken back.
class TimePart final : public QObject {
    Q_OBJECT

  public:
    explicit TimePart(Workbench &bench);

  private:
    QWidget *newPanel();
    QWidget *newChoices();
    void connectPanel();
    void showPanel(bool shown);
    void takeRows();
    void load();
    void choose(qint64 begin, qint64 end);
    void showAllTimes();
    void limitTo(const std::optional<TimeSpan> &span);
    void showLimit();
    QString zoneName() const;

    Workbench &m_bench;
    QComboBox *m_unit = nullptr;
    QComboBox *m_stack = nullptr;
    QCheckBox *m_hours = nullptr;
    QLabel *m_limit = nullptr;
    QToolButton *m_allTimes = nullptr;
    TimeStrip *m_strip = nullptr;
    QString m_zone;             ///< of what the strip shows
    bool m_isStale = true;      ///< other rows than those that the strip shows
    QWidget *m_panel = nullptr; ///< the last one: making it sets the others
};

} // namespace nv
