#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The lines of a record's `MetaData` as people read HTTP headers: status line and fields one by
/// one, what the browser put before them on lines of its own, no empty lines at the end.
std::vector<std::string> httpHeaderLines(std::string_view metaData);

} // namespace nv
