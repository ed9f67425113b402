#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv::cli {

// Dates of a span as they are typed, by the clock of the project's zone, as seconds since
// 1970-01-01 00:00 of that clock. Both throw UsageError, which names the option.

std::int64_t secondAsked(const std::string &text, std::string_view option);
/// The end of what is named: a day, hour or minute belongs to the span.
std::int64_t endAsked(const std::string &text, std::string_view option);

} // namespace nv::cli
