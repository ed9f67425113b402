#pragma once

#include "views/PlaceLimit.h"

#include <string_view>

namespace nv::cli {

/// What lists call it: "Evidence", "Person".
std::string_view wordOf(PlaceField field);

} // namespace nv::cli
