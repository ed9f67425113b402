#pragma once

#include "views/record/NumberTimes.h"

#include <string_view>
#include <vector>

namespace nv {

/// Times within the ids that stand in the path of an address, of sites alone whose way of making
/// ids is known: a number says nothing by itself. `host` and `path` stand as in the address.
std::vector<ReadTime> timesOfIds(std::string_view host, std::string_view path);

} // namespace nv
