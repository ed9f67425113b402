#pragma once

#include "base/TaskMonitor.h"
#include "time/TimeSlots.h"
#include "time/TimeZone.h"
#include "views/rows/IdLoader.h"
#include "views/timeline/EventSeconds.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nv {

/// By what the bars of a timeline are divided.
enum class TimeStack : std::uint8_t {
    none,
    kind,    ///< the groups of the filters: history, cache, cookies ...
    browser, ///< the program, or its family where the project doesn't name it
};

/// When the rows of a list happened, by the clock of the project's zone. A million take five
/// megabytes.
struct TimedEvents {
    EventSeconds seconds;           ///< by the zone's clock
    std::vector<std::uint8_t> part; ///< of each event, a place in `parts`
    /// Those with most events first; one, without a name, when nothing is divided. The last one is
    /// what shares it when there are more than a byte tells apart.
    std::vector<std::string> parts;
    std::uint64_t undated = 0; ///< rows without a date
    UnreadRows unread;         ///< rows that can't be read
};

/// The rows of `ids`, whose order is of no matter. A cancel leaves those that were read. Throws
/// what the database says, and std::range_error for a zone whose biases make no sense.
Walk loadEvents(SQLite::Database &project, const RowIds &ids, TimeStack stack, const TimeZone &zone,
                bool enableDSTChanges, TaskMonitor &task, TimedEvents &events);

/// From a second up to another one, which isn't in it.
struct TimeSpan {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    bool isEmpty() const { return begin >= end; }
    bool holds(std::int64_t second) const { return second >= begin && second < end; }
    friend bool operator==(const TimeSpan &, const TimeSpan &) = default;
};
/// From the first event to the last one; empty without any.
TimeSpan wholeSpan(const TimedEvents &events);

/// The events of one slot.
struct TimeSlot {
    std::int64_t slot = 0;
    std::uint64_t total = 0;
    std::vector<std::uint32_t> counts; ///< by the place of the part
};
/// The slots that have events, in their order.
std::vector<TimeSlot> slotsOf(const TimedEvents &events, TimeUnit unit, const TimeSpan &span);

/// How many events each hour of the day has.
using DayHours = std::array<std::uint32_t, 24>;
struct SlotHours {
    std::int64_t slot = 0;
    DayHours hours{};
};
/// Of each slot that has events, in their order; for days and longer units.
std::vector<SlotHours> hoursOf(const TimedEvents &events, TimeUnit unit, const TimeSpan &span);

/// Days without an event, between days of the project that have some.
struct DayGap {
    std::int64_t first = 0; ///< slots of days
    std::int64_t last = 0;

    std::int64_t days() const { return last - first + 1; }
    friend bool operator==(const DayGap &, const DayGap &) = default;
};
/// Those with at least `least` days in the span, in their order.
std::vector<DayGap> gapsOf(const TimedEvents &events, const TimeSpan &span, std::int64_t least);

/// Bars side by side, each of as many slots: what a picture shows.
struct TimeBars {
    TimeUnit unit = TimeUnit::day;
    std::int64_t first = 0; ///< slot of the first bar
    std::int64_t step = 1;  ///< slots a bar
    std::size_t count = 0;  ///< of the bars
    std::size_t parts = 1;
    std::vector<std::uint32_t> counts; ///< bar by bar, part by part
    std::vector<DayHours> hours;       ///< bar by bar; empty for units below a day

    std::uint64_t totalOf(std::size_t bar) const;
    std::uint64_t highest() const;
    /// The time that bars from `from` up to, not including, `to` stand for.
    TimeSpan spanOf(std::size_t from, std::size_t to) const;
};
/// Of the whole slots of the span, at most `mostBars` bars.
TimeBars barsOf(const TimedEvents &events, TimeUnit unit, const TimeSpan &span,
                std::size_t mostBars);
/// The longest unit of which a span has at least so many slots; else minutes.
TimeUnit unitFor(const TimeSpan &span, std::size_t leastBars);

} // namespace nv
