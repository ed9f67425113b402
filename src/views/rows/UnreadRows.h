#pragma once

#include "db/schema/Ids.h"

#include <cstdint>
#include <set>
#include <string>

namespace nv {

/// Rows of the project that could not be read, by their ids.
using UnreadRows = std::set<std::int32_t>;

void noteUnread(UnreadRows &rows, UrlId id);
bool isUnread(const UnreadRows &rows, UrlId id);

/// "3 to 5, 9": every one of them, those that follow each other as a range.
std::string rangesOf(const UnreadRows &rows);
/// "4 rows of the project could not be read: 3 to 5, 9"; empty when there are none.
std::string noteOf(const UnreadRows &rows);

} // namespace nv
