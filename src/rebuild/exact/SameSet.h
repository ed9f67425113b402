#pragma once

#include "rebuild/exact/Reference.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace nv {

/// The references of `source`, in their order, as sets of which a browser shows one: the sizes of a
/// picture in "src" and "srcset", with the "source" elements before it. A number each, equal within
/// a set.
std::vector<std::size_t> setsOf(const std::vector<Reference> &references, std::string_view source);

} // namespace nv
