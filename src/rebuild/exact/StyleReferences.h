#pragma once

#include "rebuild/exact/Reference.h"

#include <string_view>
#include <vector>

namespace nv {

// Styles that stand in a page; scanStyle() reads sheets. Places are those of `css`.

/// Of a "style" attribute.
std::vector<Reference> referencesOfDeclarations(std::string_view css);

/// Of a value, as SVG has them for attributes.
std::vector<Reference> referencesOfValue(std::string_view property, std::string_view css);

/// Whether a reference to it is followed: not an empty one, not data, no place in the page itself,
/// no script.
bool isFollowed(std::string_view address);

/// Without the blanks and control characters at its ends, as browsers read addresses.
std::string_view trimmedAddress(std::string_view address);

} // namespace nv
