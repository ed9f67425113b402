#pragma once

#include "views/limits/PlaceLimit.h"

#include <string_view>

namespace nv::cli {

/// What lists call it: "Evidence", "Person".
std::string_view wordOf(PlaceField field);

} // namespace nv::cli
