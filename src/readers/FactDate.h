#pragma once

#include "db/records/FactList.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <cstdint>
#include <string>

namespace nv {

/// A date in UTC as facts have it; nothing without one.
inline FactValue factDate(Date utc) {
    return formatDate(utc, "yyyy-mm-dd hh:nn:ss");
}

/// The same to a part of a second, which has so many digits; a part of 0 isn't written.
inline FactValue factDate(Date utc, std::int64_t part, int digits) {
    std::string text = formatDate(utc, "yyyy-mm-dd hh:nn:ss");
    if (part != 0 && !text.empty())
        text += fmt::format(".{:0{}}", part, digits);
    return text;
}

} // namespace nv
