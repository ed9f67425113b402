#include "cli/AskedSpan.h"

#include "cli/UsageError.h"
#include "db/Dialect.h"
#include "time/TimeSlots.h"

#include <fmt/format.h>

namespace nv::cli {

std::int64_t secondAsked(const std::string &text, std::string_view option) {
    const auto date = parseDateLiteral(text);
    if (!date)
        throw UsageError(fmt::format("{} {}: a date was expected, such as 2011-03-01 or "
                                     "\"2011-03-01 19:30\"",
                                     option, text));
    return date->unixSeconds();
}

std::int64_t endAsked(const std::string &text, std::string_view option) {
    const std::int64_t second = secondAsked(text, option);
    const bool hasTime = text.find(':') != std::string::npos;
    const TimeUnit unit = hasTime ? TimeUnit::minute : TimeUnit::day;
    return startOf(slotOf(second, unit) + 1, unit);
}

} // namespace nv::cli
