#pragma once

#include <string_view>

namespace nv {

// What drawings in SVG are made of that is known to be harmless: it draws, runs nothing, changes
// nothing in time, and holds no pages. Names as the parser gives them.

/// Elements that draw, and those that paints, filters and masks are made of.
bool isSvgElement(std::string_view name);
/// Attributes that say how something is drawn; their values are never addresses.
bool isSvgAttribute(std::string_view name);
/// Attributes whose values are those of the property of their name.
bool isSvgProperty(std::string_view name);

} // namespace nv
