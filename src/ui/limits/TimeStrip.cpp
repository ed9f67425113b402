#include "ui/limits/TimeStrip.h"

#include "platform/qt/ChartPainter.h"
#include "views/timeline/MidOfEvents.h"
#include "views/timeline/TimelineChart.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace nv {

namespace {

constexpr int kHeight = 120; ///< of the bars, and of the hours too
constexpr int kLeastHeight = 60;
constexpr int kPixelsPerBar = 3; ///< at least
constexpr int kPixelsPerLabel = 110;
constexpr std::size_t kLeastBars = 30;   ///< of a unit that is taken by itself
constexpr std::int64_t kShortest = 1800; ///< seconds that are zoomed to
constexpr double kZoom = 2;

} // namespace

TimeStrip::TimeStrip(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("TimeStrip"));
    setAccessibleName(tr("Time"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
}

QSize TimeStrip::sizeHint() const {
    return {600, kHeight + (m_hasHours ? kHeight : 0)};
}

QSize TimeStrip::minimumSizeHint() const {
    return {120, kLeastHeight + (m_hasHours ? kLeastHeight : 0)};
}

void TimeStrip::setEvents(TimedEvents events, const QString &zone) {
    m_events = std::move(events);
    m_zone = zone;
    const TimeSpan whole = wholeSpan(m_events);
    if (whole != m_whole) {
        m_shown = whole;
        m_cursor.reset();
        m_aim.reset();
    }
    m_whole = whole;
    count();
}

void TimeStrip::setUnit(std::optional<TimeUnit> unit) {
    m_unit = unit;
    count();
}

void TimeStrip::setHours(bool shown) {
    m_hasHours = shown;
    updateGeometry();
    count();
}

void TimeStrip::setChosen(const std::optional<TimeSpan> &span) {
    m_chosen = span;
    update();
}

QRect TimeStrip::area() const {
    return rect().adjusted(kMargin, kMargin + fontMetrics().lineSpacing() + 2, -kMargin, -2);
}

int TimeStrip::leftOf(std::size_t bar) const {
    return ChartPainter(m_chart, area(), palette()).leftOf(bar);
}

std::size_t TimeStrip::barAt(int x) const {
    return ChartPainter(m_chart, area(), palette()).barAt(x);
}

/// Where its events are: most of a long bar may be empty.
std::int64_t TimeStrip::midOfBar(std::size_t bar) const {
    return midOf(m_events, m_bars.spanOf(bar, bar + 1));
}

std::optional<std::size_t> TimeStrip::shownBarOf(std::int64_t second) const {
    if (!m_bars.spanOf(0, m_bars.count).holds(second))
        return std::nullopt;
    return static_cast<std::size_t>((slotOf(second, m_bars.unit) - m_bars.first) / m_bars.step);
}

/// The bars of the keyboard are those that have the time which they had.
void TimeStrip::count() {
    const auto midOfKnown = [this](std::size_t bar) {
        return bar < m_bars.count ? std::optional(midOfBar(bar)) : std::nullopt;
    };
    const auto cursor = m_cursor ? midOfKnown(*m_cursor) : std::nullopt;
    const auto anchor = m_cursor ? midOfKnown(m_anchor) : std::nullopt;
    const int width = std::max(area().width(), kPixelsPerBar);
    const TimeUnit unit = m_unit.value_or(unitFor(m_shown, kLeastBars));
    m_bars = barsOf(m_events, unit, m_shown, static_cast<std::size_t>(width / kPixelsPerBar));
    if (!m_hasHours)
        m_bars.hours.clear();
    m_chart =
        chartOf(m_events, m_bars, static_cast<std::size_t>(std::max(1, width / kPixelsPerLabel)));
    m_cursor = cursor ? shownBarOf(*cursor) : std::nullopt;
    if (m_cursor)
        m_anchor = (anchor ? shownBarOf(*anchor) : std::nullopt).value_or(*m_cursor);
    setAccessibleDescription(m_cursor ? textOf(*m_cursor) : summary());
    update();
}

/// Nearly all is all: what zooming in and out rounds away isn't missed.
void TimeStrip::showSpan(TimeSpan span) {
    constexpr std::int64_t kNearly = 99; // of a hundred
    const std::int64_t all = m_whole.end - m_whole.begin;
    std::int64_t length =
        std::clamp(span.end - span.begin, std::min(kShortest, all), std::max(all, kShortest));
    if (length >= all / 100 * kNearly)
        length = all;
    span.begin = std::clamp(span.begin, m_whole.begin, m_whole.end - length);
    span.end = span.begin + length;
    if (span == m_shown)
        return;
    m_shown = span;
    count();
}

/// The second `around` is at x afterwards. Bars are of whole days or hours, so what is drawn may be
/// a little longer than the span.
void TimeStrip::zoom(double factor, std::int64_t around, int x) {
    const double before = static_cast<double>(x - area().left()) / std::max(1, area().width());
    const auto length = static_cast<double>(m_shown.end - m_shown.begin) / factor;
    const std::int64_t begin = around - std::llround(length * std::clamp(before, 0.0, 1.0));
    showSpan({begin, begin + std::llround(length)});
    const auto now = shownBarOf(around);
    if (now && *now != barAt(x)) {
        const std::int64_t off =
            m_bars.spanOf(*now, *now).begin - m_bars.spanOf(barAt(x), barAt(x)).begin;
        const TimeSpan unmoved = m_shown;
        showSpan({m_shown.begin + off, m_shown.end + off});
        if (!m_shown.holds(around)) // a bar may be wider than what is shown
            showSpan(unmoved);
    }
}

/// Around the keyboard's bar, or else the chosen time.
void TimeStrip::zoomByKeys(double factor) {
    const std::int64_t around = m_cursor   ? midOfBar(*m_cursor)
                                : m_chosen ? midOf(m_events, *m_chosen)
                                           : midOfBar(m_bars.count / 2);
    const std::size_t bar = shownBarOf(around).value_or(m_bars.count / 2);
    zoom(factor, around, (leftOf(bar) + leftOf(bar + 1)) / 2);
}

void TimeStrip::pan(double part) {
    const auto by = std::llround(static_cast<double>(m_shown.end - m_shown.begin) * part);
    showSpan({m_shown.begin + by, m_shown.end + by});
}

void TimeStrip::drawSummary(QPainter &painter) const {
    const QFontMetrics metrics = fontMetrics();
    const Legend legend = this->legend();
    int left = width() - kMargin - (legend.others.isEmpty() ? 0 : roomOf(legend.others));
    for (const QString &name : legend.names)
        left -= roomOf(name);
    const int line = kMargin + metrics.ascent();
    const int room = left - 2 * kMargin;
    painter.drawText(QPoint(kMargin, line),
                     m_cursor && hasFocus() ? textIn(*m_cursor, room) : summaryIn(room));
    std::size_t part = 0;
    for (const QString &name : legend.names) {
        painter.fillRect(left, kMargin, metrics.ascent(), metrics.ascent(),
                         chartColor(m_chart.colorOf(part++), palette()));
        painter.drawText(QPoint(left + metrics.ascent() + kMargin / 2, line), name);
        left += roomOf(name);
    }
    painter.drawText(QPoint(left + kMargin / 2, line), legend.others);
}

void TimeStrip::drawChosen(QPainter &painter) const {
    const ChartPainter chart(m_chart, area(), palette());
    std::optional<TimeSpan> span = m_chosen;
    if (m_dragged)
        span = m_bars.spanOf(std::min(m_anchor, *m_dragged), std::max(m_anchor, *m_dragged) + 1);
    const auto barOf = [this](std::int64_t second) {
        const std::int64_t slot = (slotOf(second, m_bars.unit) - m_bars.first) / m_bars.step;
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(slot, 0, static_cast<std::int64_t>(m_bars.count)));
    };
    const QRect bars = chart.bars();
    if (span && span->end > m_shown.begin && span->begin < m_shown.end) {
        const int left = chart.leftOf(barOf(span->begin));
        const int right = chart.leftOf(std::min(barOf(span->end - 1) + 1, m_bars.count));
        QColor ground = palette().color(QPalette::Highlight);
        ground.setAlphaF(0.3F);
        painter.fillRect(left, bars.top(), right - left, bars.height(), ground);
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(left, bars.top(), right - left - 1, bars.height() - 1);
    }
    if (m_cursor && hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DashLine));
        const int left = chart.leftOf(*m_cursor);
        painter.drawRect(left, bars.top(), chart.leftOf(*m_cursor + 1) - left - 1,
                         bars.height() - 1);
    }
}

void TimeStrip::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Text));
    drawSummary(painter);
    if (m_bars.count == 0)
        return;
    ChartPainter(m_chart, area(), palette()).draw(painter);
    drawChosen(painter);
}

void TimeStrip::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    count();
}

void TimeStrip::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        update();
}

/// Bars without an event would leave a table without rows.
void TimeStrip::choose(std::size_t one, std::size_t other) {
    const auto [first, last] = std::minmax(one, other);
    std::uint64_t events = 0;
    for (std::size_t bar = first; bar <= last; ++bar)
        events += m_bars.totalOf(bar);
    if (events == 0)
        return update();
    m_chosen = m_bars.spanOf(first, last + 1);
    update();
    emit spanChosen(m_chosen->begin, m_chosen->end);
}

void TimeStrip::clear() {
    m_dragged.reset();
    update();
    if (!std::exchange(m_chosen, std::nullopt))
        return;
    emit spanCleared();
}

void TimeStrip::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton || m_bars.count == 0)
        return;
    m_anchor = barAt(event->position().toPoint().x());
    m_dragged = m_anchor;
    m_cursor = m_anchor;
    update();
}

void TimeStrip::mouseMoveEvent(QMouseEvent *event) {
    if (!m_dragged)
        return;
    m_dragged = m_cursor = barAt(event->position().toPoint().x());
    update();
}

void TimeStrip::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton || !m_dragged)
        return;
    m_dragged.reset();
    choose(m_anchor, m_cursor.emplace(barAt(event->position().toPoint().x())));
    if (m_chosen)
        m_cursor.reset(); // one bar of several would be told of
}

/// All of the time, and nothing chosen.
void TimeStrip::mouseDoubleClickEvent(QMouseEvent *) {
    clear();
    showSpan(m_whole);
}

void TimeStrip::wheelEvent(QWheelEvent *event) {
    const int turned =
        event->angleDelta().y() != 0 ? event->angleDelta().y() : -event->angleDelta().x();
    if (m_bars.count == 0 || turned == 0)
        return event->ignore();
    event->accept();
    if (event->modifiers().testFlag(Qt::ShiftModifier) || event->angleDelta().y() == 0) {
        m_aim.reset();
        return pan(turned > 0 ? -0.2 : 0.2);
    }
    const int x = event->position().toPoint().x();
    if (!m_aim || m_aim->x != x || !shownBarOf(m_aim->second))
        m_aim = Aim{x, midOfBar(barAt(x))};
    zoom(turned > 0 ? kZoom : 1 / kZoom, m_aim->second, x);
}

void TimeStrip::step(int bars, bool extends) {
    const auto last = static_cast<std::int64_t>(m_bars.count) - 1;
    if (last < 0)
        return;
    const auto from = [&] {
        return m_cursor ? static_cast<std::int64_t>(*m_cursor) : (bars > 0 ? -1 : last + 1);
    };
    if (m_cursor && (from() + bars < 0 || from() + bars > last))
        pan(bars > 0 ? 0.2 : -0.2);
    m_cursor = static_cast<std::size_t>(
        std::clamp<std::int64_t>(from() + bars, 0, static_cast<std::int64_t>(m_bars.count) - 1));
    if (!extends)
        m_anchor = *m_cursor;
    else
        m_chosen = m_bars.spanOf(std::min(m_anchor, *m_cursor), std::max(m_anchor, *m_cursor) + 1);
    setAccessibleDescription(textOf(*m_cursor));
    update();
}

bool TimeStrip::isStepKey(QKeyEvent &event) {
    const bool extends = event.modifiers().testFlag(Qt::ShiftModifier);
    const int all = static_cast<int>(m_bars.count);
    switch (event.key()) {
    case Qt::Key_Left:
        step(-1, extends);
        return true;
    case Qt::Key_Right:
        step(1, extends);
        return true;
    case Qt::Key_Home:
        m_cursor = 0;
        step(0, extends);
        return true;
    case Qt::Key_End:
        m_cursor = static_cast<std::size_t>(std::max(all - 1, 0));
        step(0, extends);
        return true;
    default:
        return false;
    }
}

void TimeStrip::keyPressEvent(QKeyEvent *event) {
    if (m_bars.count == 0 || isStepKey(*event))
        return;
    if (event->key() == Qt::Key_Plus)
        zoomByKeys(kZoom);
    else if (event->key() == Qt::Key_Minus)
        zoomByKeys(1 / kZoom);
    else if (event->key() == Qt::Key_0)
        showSpan(m_whole);
    else if (event->key() == Qt::Key_Escape)
        clear();
    else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
              event->key() == Qt::Key_Space) &&
             m_cursor)
        choose(m_anchor, *m_cursor);
    else
        QWidget::keyPressEvent(event);
}

bool TimeStrip::event(QEvent *event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *help = dynamic_cast<QHelpEvent *>(event);
    const QString text = help ? tipAt(help->pos()) : QString();
    if (text.isEmpty())
        QToolTip::hideText();
    else // no tag of a browser's name that comes from evidence is one
        QToolTip::showText(help->globalPos(), Qt::convertFromPlainText(text), this);
    return true;
}

} // namespace nv
