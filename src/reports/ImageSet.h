#pragma once

#include "reports/References.h"

#include <string>
#include <string_view>

namespace nv {

/// The value of an attribute "srcset", with those of its pictures that may stay; empty without any.
std::string keptImageSet(std::string_view set, const References &references);

} // namespace nv
