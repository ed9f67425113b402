#pragma once

#include "views/rows/UrlColumns.h"

#include <string_view>

namespace nv {

/// Whether a fact of a record holds the very date of a column, to a part of a second: readers keep
/// columns to the second. `meaning` is what the column's date is called, `factMeaning` the fact's.
bool isSameDate(std::string_view cacheType, UrlColumn column, std::string_view meaning,
                std::string_view fact, std::string_view factMeaning);

/// What the date of a record's action is: of cookies not when they were cached, but when they were
/// last read or sent. Empty where the action says it.
std::string_view actionMeaningOf(std::string_view cacheType);

} // namespace nv
