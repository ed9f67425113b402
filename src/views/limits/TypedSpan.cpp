#include "views/limits/TypedSpan.h"

#include "db/sql/Dialect.h"
#include "time/TimeSlots.h"
#include "views/record/RecordCard.h"

namespace nv {

namespace {

/// Without a time where it is that of a day's beginning.
std::string textOf(std::int64_t first, TimeUnit unit) {
    return slotText(slotOf(first, unit), unit);
}

bool isStartOfDay(std::int64_t second) {
    return startOf(slotOf(second, TimeUnit::day), TimeUnit::day) == second;
}

} // namespace

std::optional<std::int64_t> secondTyped(std::string_view text) {
    const auto date = parseDateLiteral(text);
    return date ? std::optional(date->unixSeconds()) : std::nullopt;
}

std::optional<std::int64_t> endTyped(std::string_view text) {
    const auto second = secondTyped(text);
    if (!second)
        return std::nullopt;
    const bool hasTime = text.find(':') != std::string_view::npos;
    const TimeUnit unit = hasTime ? TimeUnit::minute : TimeUnit::day;
    return startOf(slotOf(*second, unit) + 1, unit);
}

std::string beginText(const TimeSpan &span) {
    if (span.begin <= kAllTime.begin)
        return {};
    return textOf(span.begin, isStartOfDay(span.begin) ? TimeUnit::day : TimeUnit::minute);
}

std::string endText(const TimeSpan &span) {
    if (span.end >= kAllTime.end)
        return {};
    return textOf(span.end - 1, isStartOfDay(span.end) ? TimeUnit::day : TimeUnit::minute);
}

DateRange dateRange(const TimeSpan &span, const TimeZone &zone, bool enableDSTChanges) {
    return {span, zoneName(zone), limitOf(span, zone, enableDSTChanges)};
}

} // namespace nv
