#pragma once

#include "reports/pages/References.h"

#include <optional>
#include <string>
#include <string_view>

namespace nv {

// Styles that fetch nothing but what may stay. Only what is known to be harmless is written, and
// each token anew: however it was disguised, no reader finds another one in it.

/// A style sheet in ASCII.
std::string guardedStyle(std::string_view css, const References &references);

/// The text of a "style" attribute.
std::string guardedDeclarations(std::string_view css, const References &references);

/// The value of a property, as SVG has them for attributes; nothing when it has to go.
std::optional<std::string> guardedValue(std::string_view property, std::string_view css,
                                        const References &references);

} // namespace nv
