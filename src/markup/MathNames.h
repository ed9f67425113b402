#pragma once

#include <string_view>

namespace nv {

// What formulas in MathML are made of that is known to be harmless: it shows, fetches nothing,
// leads nowhere and holds no pages. Names as the parser gives them.

/// Elements that hold others of formulas.
bool isMathElement(std::string_view name);
/// Elements that hold text. Browsers read pages in them, too.
bool isMathText(std::string_view name);
/// Elements that don't show, or show what they fetch: notes in other languages, pictures of signs.
bool isMathUnseen(std::string_view name);
/// Attributes that say how something looks; their values are never addresses.
bool isMathAttribute(std::string_view name);
/// The property of styles whose values an attribute takes; empty for others.
std::string_view mathPropertyOf(std::string_view attribute);

} // namespace nv
