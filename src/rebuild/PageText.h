#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

// A page is worked on as bytes, one byte a character: positions are those of the file's own code
// page, and whatever it was written in comes out as it went in.

enum class LineBreaks { keep, strip };

/// The file's lines, each ended by CR LF; with `strip` the lines run together. Empty for an empty
/// path and for a file that isn't there. Throws FileFailure.
std::string readTextFile(const std::filesystem::path &path, LineBreaks lineBreaks);

// Searching and replacing don't mind the case of ASCII letters, and both must agree on that: what
// was found has to be replaceable.

/// 1-based position of `pattern` at or after the 1-based `start`, or 0.
std::size_t findTextFrom(std::size_t start, std::string_view text, std::string_view pattern);

/// Every `find` replaced, from left to right; what was put in is not searched again.
std::string replaceAllText(std::string_view text, std::string_view find,
                           std::string_view replacement);

} // namespace nv
