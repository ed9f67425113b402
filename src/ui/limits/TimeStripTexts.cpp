#include "platform/qt/QtText.h"
#include "ui/limits/TimeStrip.h"
#include "views/timeline/TimelineChart.h"

#include <algorithm>

// What the bar of time says in words, in the room that it has.
namespace nv {

namespace {

QString timeText(std::int64_t second) {
    return toQt(slotText(slotOf(second, TimeUnit::minute), TimeUnit::minute));
}

QString dayText(std::int64_t second) {
    return toQt(slotText(slotOf(second, TimeUnit::day), TimeUnit::day));
}

QString rowsText(std::size_t rows) {
    return rows == 1 ? TimeStrip::tr("1 row") : TimeStrip::tr("%L1 rows").arg(rows);
}

} // namespace

/// From all that can be said to the least.
QStringList TimeStrip::spanTexts() const {
    const QString time = tr("%1 to %2").arg(timeText(m_shown.begin), timeText(m_shown.end - 1));
    const QString zoned = tr("%1, %2").arg(time, m_zone);
    return {tr("%1; %2").arg(zoned, toQt(barText(m_bars))), zoned, time,
            tr("%1 to %2").arg(dayText(m_shown.begin), dayText(m_shown.end - 1))};
}

QString TimeStrip::highestText() const {
    return tr("the highest has %L1").arg(m_bars.highest());
}

QString TimeStrip::countText() const {
    const QString text = highestText();
    return m_events.undated > 0 ? tr("%1; %2 without a date").arg(text, rowsText(m_events.undated))
                                : text;
}

QString TimeStrip::summary() const {
    if (m_events.seconds.empty())
        return m_events.undated > 0 ? tr("%1, none with a date").arg(rowsText(m_events.undated))
                                    : tr("No rows");
    return tr("%1; %2").arg(spanTexts().front(), countText());
}

QString TimeStrip::summaryIn(int pixels) const {
    if (m_events.seconds.empty())
        return firstThatFits({summary()}, pixels);
    QStringList texts;
    for (const QString &span : spanTexts())
        texts += tr("%1; %2").arg(span, countText());
    return firstThatFits(texts << countText() << highestText(), pixels);
}

QString TimeStrip::textIn(std::size_t bar, int pixels) const {
    return firstThatFits({textOf(bar), eventsOf(bar)}, pixels);
}

/// A text that is cut may say something else than the whole: it is left out.
QString TimeStrip::firstThatFits(const QStringList &texts, int pixels) const {
    const QFontMetrics metrics = fontMetrics();
    const auto fits = [&](const QString &text) {
        return metrics.horizontalAdvance(text) <= pixels;
    };
    const auto found = std::ranges::find_if(texts, fits);
    return found == texts.end() ? QString() : *found;
}

QString TimeStrip::legendText() const {
    QStringList lines;
    const std::size_t parts = m_chart.parts.size();
    for (std::size_t part = 0; part < parts; ++part) {
        std::uint64_t all = 0;
        for (std::size_t bar = 0; bar < m_bars.count; ++bar)
            all += m_chart.counts[bar * parts + part];
        if (!m_chart.parts[part].empty())
            lines << tr("%1: %L2").arg(toQt(m_chart.parts[part])).arg(all);
    }
    return lines.join(u'\n');
}

/// "2011-03-01: 12 events".
QString TimeStrip::eventsOf(std::size_t bar) const {
    const TimeSpan span = m_bars.spanOf(bar, bar + 1);
    QString time = toQt(slotText(slotOf(span.begin, m_bars.unit), m_bars.unit));
    if (m_bars.step > 1)
        time = tr("%1 to %2")
                   .arg(time, toQt(slotText(slotOf(span.end - 1, m_bars.unit), m_bars.unit)));
    return tr("%1: %L2 events").arg(time).arg(m_bars.totalOf(bar));
}

QString TimeStrip::textOf(std::size_t bar) const {
    if (bar >= m_bars.count)
        return {};
    QStringList parts;
    for (std::size_t part = 0; part < m_chart.parts.size(); ++part)
        if (const std::uint32_t count = m_chart.counts[bar * m_chart.parts.size() + part];
            count > 0 && !m_chart.parts[part].empty())
            parts << QStringLiteral("%1 %L2").arg(toQt(m_chart.parts[part])).arg(count);
    const QString events = eventsOf(bar);
    return parts.isEmpty() ? events : tr("%1 (%2)").arg(events, parts.join(QStringLiteral(", ")));
}

/// In pixels, with the colour before it.
int TimeStrip::roomOf(const QString &name) const {
    return fontMetrics().horizontalAdvance(name) + fontMetrics().ascent() + 2 * kMargin;
}

/// The largest parts come first, so those that find no room are the smallest.
TimeStrip::Legend TimeStrip::legend() const {
    const auto all = static_cast<qsizetype>(m_chart.parts.size());
    if (all == 1 && m_chart.parts.front().empty())
        return {};
    Legend legend;
    QStringList &names = legend.names;
    int room = width() / 2 - kMargin;
    for (const std::string &part : m_chart.parts) {
        const QString name = toQt(part);
        const qsizetype others = all - names.size() - 1;
        const int after = others > 0 ? roomOf(QStringLiteral("+%1").arg(others)) : 0;
        if (roomOf(name) + after > room)
            break;
        room -= roomOf(name);
        names << name;
    }
    if (names.size() < all)
        legend.others = QStringLiteral("+%1").arg(all - names.size());
    return legend;
}

/// Of the line above the bars some may be left out, and some names beside the colours.
QString TimeStrip::tipAt(const QPoint &place) const {
    if (m_bars.count == 0 || area().contains(place))
        return m_bars.count == 0 ? QString() : textOf(barAt(place.x()));
    return place.y() < area().top() ? tr("%1\n%2\nThe wheel, + and - zoom; 0 shows all of the time")
                                          .arg(summary(), legendText())
                                    : QString();
}

} // namespace nv
