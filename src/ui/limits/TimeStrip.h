#pragma once

#include "platform/TimeChart.h"
#include "views/timeline/Timeline.h"

#include <QString>
#include <QStringList>
#include <QWidget>

#include <optional>

class QPainter;

namespace nv {

/// When the rows of the table happened, as bars by the clock of the project's zone. A drag or the
/// keys choose a span, the wheel and "+" and "-" zoom, "0" shows all of the time, arrows step from
/// bar to bar, Enter takes the chosen bars, Escape lets go of them.
class TimeStrip final : public QWidget {
    Q_OBJECT

  public:
    explicit TimeStrip(QWidget *parent = nullptr);

    /// Shows other events, in whole where their span has changed. `zone` is for people.
    void setEvents(TimedEvents events, const QString &zone);
    /// Nothing takes the unit that fits the span and the width.
    void setUnit(std::optional<TimeUnit> unit);
    /// The hours of the day below the bars; only for days and longer units.
    void setHours(bool shown);
    /// What is chosen, without telling of it.
    void setChosen(const std::optional<TimeSpan> &span);
    const std::optional<TimeSpan> &chosen() const { return m_chosen; }
    /// What is zoomed to.
    const TimeSpan &shown() const { return m_shown; }
    /// As it is drawn now.
    const TimeBars &bars() const { return m_bars; }
    /// Where a bar begins, in pixels of the widget.
    int leftOf(std::size_t bar) const;
    /// What the line above the bars says where it has room, and in as many pixels as it has: what
    /// it counts is kept longest. Nothing is ever cut, but left out.
    QString summary() const;
    QString summaryIn(int pixels) const;
    /// "2011-03-01: 12 events (History 8, Cache 4)", and as much of it as fits.
    QString textOf(std::size_t bar) const;
    QString textIn(std::size_t bar, int pixels) const;
    /// The names of the largest parts, as far as there is room, and "+2" for those left out.
    struct Legend {
        QStringList names;
        QString others;
    };
    Legend legend() const;
    /// All parts with their counts, a line each.
    QString legendText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    /// In seconds since 1970 by the zone's clock, the last one not in it.
    void spanChosen(qint64 begin, qint64 end);
    void spanCleared();

  protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

  private:
    static constexpr int kMargin = 6; ///< pixels

    QRect area() const;
    std::size_t barAt(int x) const;
    QString tipAt(const QPoint &place) const;
    QStringList spanTexts() const;
    QString highestText() const;
    QString countText() const;
    QString eventsOf(std::size_t bar) const;
    QString firstThatFits(const QStringList &texts, int pixels) const;
    void count();
    void showSpan(TimeSpan span);
    std::int64_t midOfBar(std::size_t bar) const;
    std::optional<std::size_t> shownBarOf(std::int64_t second) const;
    void zoom(double factor, std::int64_t around, int x);
    void zoomByKeys(double factor);
    void pan(double part);
    bool isStepKey(QKeyEvent &event);
    void step(int bars, bool extends);
    void choose(std::size_t one, std::size_t other);
    void clear();
    void drawChosen(QPainter &painter) const;
    int roomOf(const QString &name) const;
    void drawSummary(QPainter &painter) const;

    TimedEvents m_events;
    TimeSpan m_whole;
    TimeSpan m_shown;
    std::optional<TimeSpan> m_chosen;
    std::optional<TimeUnit> m_unit;
    bool m_hasHours = false;
    QString m_zone;
    TimeBars m_bars;
    TimeChart m_chart;
    std::optional<std::size_t> m_cursor;  ///< bar of the keyboard
    std::size_t m_anchor = 0;             ///< where the choice began
    std::optional<std::size_t> m_dragged; ///< the bar under a drag
    /// What the wheel zooms to as long as the pointer stays where it is.
    struct Aim {
        int x = 0; ///< pixels
        std::int64_t second = 0;
    };
    std::optional<Aim> m_aim;
};

} // namespace nv
