#pragma once

#include <string>
#include <string_view>

namespace nv {

/// A text for an attribute's value in any quotation marks or none; ASCII.
std::string attributeValue(std::string_view address);

} // namespace nv
