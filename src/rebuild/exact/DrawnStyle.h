#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// What the names in a drawing's styles are called where the drawing stands now. Each gives an
/// identifier of letters, digits and "-".
struct DrawnNames {
    std::function<std::string(std::string_view)> idOf;    ///< of a place that an address names
    std::function<std::string(std::string_view)> classOf; ///< of a class
    std::string mark; ///< a class that all elements of the drawing have
};

// Styles of a drawing that is put into a page. They reach nothing but the drawing, and name nothing
// but its own places; what can't be kept like that goes.

/// A value, as attributes have them; nothing when it goes.
std::optional<std::string> drawnValue(std::string_view css, const DrawnNames &names);
/// The text of a "style" attribute.
std::string drawnDeclarations(std::string_view css, const DrawnNames &names);
/// A sheet: rules of elements, classes and places; no at-rules.
std::string drawnSheet(std::string_view css, const DrawnNames &names);

} // namespace nv
