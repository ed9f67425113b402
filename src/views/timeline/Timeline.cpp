#include "views/timeline/Timeline.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/RowWalk.h"
#include "readers/RecordKind.h"
#include "search/FoundIds.h"
#include "time/LocalSeconds.h"
#include "views/rows/NarrowIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <unordered_map>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kUnknownBrowser = "Unknown";
constexpr std::string_view kOtherPart = "Other";
/// Names of browsers come from evidence: more of them share the last part.
constexpr std::size_t kMostParts = 64; // no more than a byte can tell apart
constexpr std::size_t kMostKnown = 1000;

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

/// The parts that events belong to, in the order in which they come.
class Parts {
  public:
    Parts(TimeStack stack, std::vector<std::string> &names) : m_stack(stack), m_names(names) {
        if (stack == TimeStack::none)
            m_names.emplace_back();
    }

    std::uint8_t of(std::string_view cacheType, std::string_view browser) {
        if (m_stack == TimeStack::none)
            return 0;
        const bool isByType = m_stack == TimeStack::kind || browser.empty();
        auto &known = isByType ? m_byType : m_byBrowser;
        const std::string_view said = isByType ? cacheType : browser;
        if (isByType == m_isLastByType && said == m_said && m_hasLast)
            return m_last; // rows side by side often say the same
        m_isLastByType = isByType;
        m_said = said;
        m_hasLast = true;
        if (const auto at = known.find(m_said); at != known.end())
            return m_last = at->second;
        if (known.size() == kMostKnown) // names come from evidence
            known.clear();
        m_last = placeOf(m_stack == TimeStack::kind ? groupWord(groupOf(cacheType))
                                                    : nameOf(cacheType, browser));
        known.emplace(m_said, m_last);
        return m_last;
    }
    /// More names came than there are parts: which of them have none depends on who came first.
    bool areFull() const { return m_names.size() >= kMostParts; }

  private:
    static std::string_view nameOf(std::string_view cacheType, std::string_view browser) {
        if (!browser.empty())
            return browser;
        const BrowserFamily *family = browserOf(cacheType);
        return family ? family->name : kUnknownBrowser;
    }

    std::uint8_t placeOf(std::string_view name) {
        auto found = m_places.find(name);
        if (found == m_places.end() && m_names.size() + 1 >= kMostParts)
            found = m_places.find(name = kOtherPart);
        if (found == m_places.end()) {
            m_names.emplace_back(name);
            const auto place = static_cast<std::uint8_t>(m_names.size() - 1);
            found = m_places.emplace(std::string(name), place).first;
        }
        return found->second;
    }

    TimeStack m_stack;
    std::vector<std::string> &m_names;
    std::map<std::string, std::uint8_t, std::less<>> m_places;
    bool m_hasLast = false;
    bool m_isLastByType = false;
    std::string m_said; ///< by the last row
    std::uint8_t m_last = 0;
    std::unordered_map<std::string, std::uint8_t> m_byType;
    std::unordered_map<std::string, std::uint8_t> m_byBrowser;
};

bool hasBrowser(SQLite::Database &project) {
    return project
               .execAndGet("SELECT count(*) FROM pragma_table_info('URLs') WHERE name = "
                           "'Browser'")
               .getInt() > 0;
}

/// A column that isn't needed is none, so that its page need not be read.
std::string eventQuery(SQLite::Database &project, TimeStack stack) {
    const bool browser = stack == TimeStack::browser && hasBrowser(project);
    return fmt::format("SELECT URL_ID, ActionDateUTC, {}, {} FROM URLs WHERE URL_ID >= ? "
                       "ORDER BY URL_ID",
                       stack == TimeStack::none ? "NULL" : "CacheType",
                       browser ? "Browser" : "NULL");
}

Date dateIn(const SQLite::Column &column) {
    return column.isFloat() || column.isInteger() ? Date::fromDays(column.getDouble()) : Date();
}

/// Those with most events first, whatever the order in which they were read.
void orderParts(TimedEvents &events) {
    std::vector<std::uint64_t> counts(events.parts.size());
    for (const std::uint8_t part : events.part)
        ++counts[part];
    std::vector<std::size_t> order(events.parts.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::sort(order, [&](std::size_t one, std::size_t other) {
        return counts[one] != counts[other] ? counts[one] > counts[other]
                                            : events.parts[one] < events.parts[other];
    });
    if (std::ranges::is_sorted(order))
        return;
    std::vector<std::string> names;
    names.reserve(order.size());
    std::vector<std::uint8_t> places(order.size());
    for (const std::size_t part : order) {
        places[part] = static_cast<std::uint8_t>(names.size());
        names.push_back(std::move(events.parts[part]));
    }
    events.parts = std::move(names);
    for (std::uint8_t &part : events.part)
        part = places[part];
}

/// The rows one after the other, as they lie in the project.
Walk eventsOfRows(SQLite::Database &project, const RowIds &ids, TimeStack stack,
                  LocalSeconds &clock, TaskMonitor &task, TimedEvents &events) {
    const RowIds sorted = sortedIds(ids);
    SQLite::Statement row(project, eventQuery(project, stack));
    RowWalk walk(row);
    Parts parts(stack, events.parts);
    events.seconds.reserve(sorted.size());
    events.part.reserve(sorted.size());
    const auto take = [&](std::int32_t id) {
        if (!walk.goTo(id))
            return;
        const auto second = clock.of(dateIn(row.getColumn(1)));
        events.undated += second ? 0 : 1;
        if (!second)
            return;
        events.part.push_back(parts.of(textIn(row.getColumn(2)), textIn(row.getColumn(3))));
        events.seconds.push_back(*second);
    };
    NoLog unheard; // whoever looks at the row logs its damage
    double done = 0;
    for (const std::int32_t id : sorted) {
        if (!task.advance(done++ / static_cast<double>(sorted.size())))
            return Walk::Cancelled;
        if (failureOf(unheard, {}, [&] { take(id); }))
            events.unread.insert(id);
    }
    if (!parts.areFull())
        orderParts(events);
    return Walk::Finished;
}

Columns columnsFor(TimeStack stack) {
    switch (stack) {
    case TimeStack::kind:
        return {"ActionDateUTC", "CacheType"};
    case TimeStack::browser:
        return {"ActionDateUTC", "CacheType", "Browser"};
    case TimeStack::none:
        break;
    }
    return {"ActionDateUTC"};
}

/// The same rows by an index, without going to them. Nothing when that can't be.
std::optional<Walk> eventsOfIndex(SQLite::Database &project, const RowIds &ids, TimeStack stack,
                                  LocalSeconds &clock, TaskMonitor &task, TimedEvents &events) {
    const Columns columns = columnsFor(stack);
    Parts parts(stack, events.parts);
    events.seconds.reserve(ids.size());
    events.part.reserve(ids.size());
    const auto text = [&](const NarrowRow &row, std::size_t column) {
        return column < columns.size() ? row.text(column) : std::string_view();
    };
    const auto take = [&](const NarrowRow &row) {
        const auto days = row.number(0);
        const auto second = days ? clock.ofDays(*days) : std::nullopt;
        events.undated += second ? 0 : 1;
        if (!second)
            return;
        events.part.push_back(parts.of(text(row, 1), text(row, 2)));
        events.seconds.push_back(*second);
    };
    const NarrowWalk walk = walkNarrow(project, columns, ids, NarrowIds::untold, task, take);
    if (walk == NarrowWalk::Cancelled)
        return Walk::Cancelled;
    if (walk == NarrowWalk::Impossible || parts.areFull())
        return std::nullopt;
    orderParts(events);
    return Walk::Finished;
}

} // namespace

Walk loadEvents(SQLite::Database &project, const RowIds &ids, TimeStack stack, const TimeZone &zone,
                bool enableDSTChanges, TaskMonitor &task, TimedEvents &events) {
    LocalSeconds clock(zone, enableDSTChanges);
    static_cast<void>(clock.of(Date::fromUnixSeconds(0))); // a zone that can't be is no bad row
    if (const auto walk = eventsOfIndex(project, ids, stack, clock, task, events))
        return *walk;
    events = {};
    return eventsOfRows(project, ids, stack, clock, task, events);
}

TimeSpan wholeSpan(const TimedEvents &events) {
    if (events.seconds.empty())
        return {};
    TimeSpan whole{events.seconds[0], events.seconds[0]};
    for (std::size_t at = 1; at < events.seconds.size(); ++at) {
        whole.begin = std::min(whole.begin, events.seconds[at]);
        whole.end = std::max(whole.end, events.seconds[at]);
    }
    ++whole.end;
    return whole;
}

namespace {

/// Slot and part of each event in the span, in the order of the slots.
std::vector<std::pair<std::int64_t, std::uint8_t>>
sortedSlots(const TimedEvents &events, TimeUnit unit, const TimeSpan &span) {
    std::vector<std::pair<std::int64_t, std::uint8_t>> slots;
    slots.reserve(events.seconds.size());
    for (std::size_t at = 0; at < events.seconds.size(); ++at)
        if (span.holds(events.seconds[at]))
            slots.emplace_back(slotOf(events.seconds[at], unit), events.part[at]);
    std::ranges::sort(slots);
    return slots;
}

/// Rounded up.
std::int64_t partsOf(std::int64_t whole, std::int64_t part) {
    return (whole + part - 1) / part;
}

} // namespace

std::vector<TimeSlot> slotsOf(const TimedEvents &events, TimeUnit unit, const TimeSpan &span) {
    std::vector<TimeSlot> slots;
    for (const auto &[slot, part] : sortedSlots(events, unit, span)) {
        if (slots.empty() || slots.back().slot != slot)
            slots.push_back({slot, 0, std::vector<std::uint32_t>(events.parts.size())});
        ++slots.back().total;
        ++slots.back().counts[part];
    }
    return slots;
}

std::vector<SlotHours> hoursOf(const TimedEvents &events, TimeUnit unit, const TimeSpan &span) {
    std::vector<SlotHours> all;
    for (const auto &[hour, part] : sortedSlots(events, TimeUnit::hour, span)) {
        const std::int64_t second = startOf(hour, TimeUnit::hour);
        const std::int64_t slot = slotOf(second, unit);
        if (all.empty() || all.back().slot != slot)
            all.push_back({slot, {}});
        ++all.back().hours.at(static_cast<std::size_t>(hourOf(second)));
    }
    return all;
}

std::vector<DayGap> gapsOf(const TimedEvents &events, const TimeSpan &span, std::int64_t least) {
    std::vector<DayGap> gaps;
    const TimeSpan whole = wholeSpan(events);
    if (whole.isEmpty() || span.isEmpty())
        return gaps;
    const std::int64_t first = slotOf(std::max(span.begin, whole.begin), TimeUnit::day);
    const std::int64_t last = slotOf(std::min(span.end, whole.end) - 1, TimeUnit::day);
    // A bit a day: ten thousand years are half a megabyte, and sorting a million events takes long.
    std::vector<bool> isUsed(last < first ? 0 : static_cast<std::size_t>(last - first + 1));
    // Of the days at the ends the span may hold a part, and the events lie in the other one.
    const TimeSpan days{startOf(first, TimeUnit::day), startOf(last + 1, TimeUnit::day)};
    for (std::size_t at = 0; at < events.seconds.size(); ++at)
        if (const std::int64_t second = events.seconds[at]; days.holds(second))
            isUsed[static_cast<std::size_t>(slotOf(second, TimeUnit::day) - first)] = true;
    std::int64_t before = first - 1;
    for (std::int64_t day = first; day <= last + 1; ++day) {
        if (day <= last && !isUsed[static_cast<std::size_t>(day - first)])
            continue;
        const DayGap gap{before + 1, day - 1};
        if (gap.days() >= std::max<std::int64_t>(least, 1))
            gaps.push_back(gap);
        before = day;
    }
    return gaps;
}

std::uint64_t TimeBars::totalOf(std::size_t bar) const {
    std::uint64_t total = 0;
    for (std::size_t part = 0; part < parts; ++part)
        total += counts[bar * parts + part];
    return total;
}

std::uint64_t TimeBars::highest() const {
    std::uint64_t most = 0;
    for (std::size_t bar = 0; bar < count; ++bar)
        most = std::max(most, totalOf(bar));
    return most;
}

TimeSpan TimeBars::spanOf(std::size_t from, std::size_t to) const {
    const auto start = [&](std::size_t bar) {
        return startOf(first + static_cast<std::int64_t>(bar) * step, unit);
    };
    return {start(from), start(to)};
}

namespace {

/// In which bar events lie: those that follow each other are often of the same hour, and minute.
class BarPlace {
  public:
    explicit BarPlace(const TimeBars &bars) : m_bars(bars) {}
    void goTo(std::int64_t second) {
        if (m_known.holds(second))
            return;
        const TimeUnit least = std::max(m_bars.unit, TimeUnit::hour);
        const std::int64_t slot = slotOf(second, least);
        m_known = {startOf(slot, least), startOf(slot + 1, least)};
        m_bar =
            static_cast<std::size_t>((slotOf(second, m_bars.unit) - m_bars.first) / m_bars.step);
        m_hour = static_cast<std::size_t>(hourOf(second));
    }
    std::size_t bar() const { return m_bar; }
    std::size_t hour() const { return m_hour; }

  private:
    const TimeBars &m_bars;
    TimeSpan m_known; ///< all of it is of that bar and hour
    std::size_t m_bar = 0;
    std::size_t m_hour = 0;
};

} // namespace

TimeBars barsOf(const TimedEvents &events, TimeUnit unit, const TimeSpan &span,
                std::size_t mostBars) {
    TimeBars bars;
    bars.unit = unit;
    bars.parts = std::max<std::size_t>(events.parts.size(), 1);
    if (span.isEmpty() || mostBars == 0)
        return bars;
    bars.first = slotOf(span.begin, unit);
    const std::int64_t slots = slotOf(span.end - 1, unit) - bars.first + 1;
    bars.step = partsOf(slots, static_cast<std::int64_t>(mostBars));
    bars.count = static_cast<std::size_t>(partsOf(slots, bars.step));
    bars.counts.resize(bars.count * bars.parts);
    if (unit <= TimeUnit::day)
        bars.hours.resize(bars.count);
    const TimeSpan shown = bars.spanOf(0, bars.count);
    BarPlace place(bars);
    for (std::size_t at = 0; at < events.seconds.size(); ++at) {
        const std::int64_t second = events.seconds[at];
        if (!shown.holds(second))
            continue;
        place.goTo(second);
        ++bars.counts[place.bar() * bars.parts + events.part[at]];
        if (!bars.hours.empty())
            ++bars.hours[place.bar()].at(place.hour());
    }
    return bars;
}

TimeUnit unitFor(const TimeSpan &span, std::size_t leastBars) {
    for (const TimeUnit unit : {TimeUnit::year, TimeUnit::month, TimeUnit::day, TimeUnit::hour}) {
        const std::int64_t slots =
            span.isEmpty() ? 0 : slotOf(span.end - 1, unit) - slotOf(span.begin, unit) + 1;
        if (slots >= static_cast<std::int64_t>(leastBars))
            return unit;
    }
    return TimeUnit::minute;
}

} // namespace nv
