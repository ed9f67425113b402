#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The names that are most like `name`, the likest first.
std::vector<std::string> nearestNames(std::string_view name, const std::vector<std::string> &names);

} // namespace nv
