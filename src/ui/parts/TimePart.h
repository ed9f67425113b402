#pragma once

#include "ui/parts/Workbench.h"
#include "views/timeline/Timeline.h"

#include <QString>
#include <QTimer>

#include <optional>

class QCheckBox;
class QComboBox;
class QToolButton;

namespace nv {

class TimeStrip;

/// The bar of time above the table: when the rows that the other limits leave happened. A span
/// that is chosen in it hides the rows of other times until it is taken back.
class TimePart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    explicit TimePart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;
    bool asksAgain() const override { return false; }

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    QWidget *newPanel();
    void fold();
    QWidget *newChoices();
    void connectPanel();
    void showPanel(bool shown);
    void takeRows();
    void load();
    void loadSoon();
    void choose(const std::optional<TimeSpan> &span);
    QString zoneName() const;

    Workbench &m_bench;
    QWidget *m_panel = nullptr;
    QWidget *m_choices = nullptr;
    QToolButton *m_more = nullptr; ///< unfolds them in a low window
    QComboBox *m_unit = nullptr;
    QComboBox *m_stack = nullptr;
    QCheckBox *m_hours = nullptr;
    TimeStrip *m_strip = nullptr;
    QTimer m_soon;
    std::optional<TimeSpan> m_span; ///< what limits the table
    QString m_zone;                 ///< of what the strip shows
    bool m_isStale = true;          ///< other rows than those that the strip shows
};

} // namespace nv
