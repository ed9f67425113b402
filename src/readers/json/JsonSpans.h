#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// Where the parts of a JSON text lie in it, byte for byte. What is no JSON ends the search: what
// was found before stays.

/// A name and the text of its value, both as they lie: with quotes and escapes.
struct JsonSpan {
    std::string path;         ///< the name without escapes; of objects below with "." between
    std::string_view name;    ///< as it lies; empty of elements of an array
    std::string_view value;   ///< empty of objects that an object lies in
    std::uint64_t offset = 0; ///< where that object or array begins
};

/// An object, or an element that is looked for.
struct JsonFound {
    std::uint64_t offset = 0;
    JsonSpan own;                  ///< its name; empty of elements of an array
    std::vector<JsonSpan> above;   ///< what it lies in, outermost first
    std::vector<JsonSpan> members; ///< values that are no objects, in their order; some thousands
};

/// Hands on each object for which `wants` says so when it has ended; `take` says whether to go on.
void findJsonObjects(
    std::string_view text,
    const std::function<bool(const std::vector<JsonSpan> &above, std::uint64_t offset)> &wants,
    const std::function<bool(const JsonFound &found)> &take);

/// The text of a string as it is read, or other values as they stand.
std::string jsonText(std::string_view value);

} // namespace nv
