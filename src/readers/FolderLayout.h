#pragma once

#include "readers/Reader.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

// What recognisers of artefacts that are folders ask of a file in one of them.

/// Whether the name is that many hexadecimal digits, in either case, and nothing else.
bool isHexName(std::string_view name, std::size_t digits);

/// Lower-case name of the folder that many levels above the file; 1 is its own. Empty where there
/// is none.
std::string folderName(const Candidate &file, int levels = 1);

/// That folder itself.
std::filesystem::path folderAbove(const Candidate &file, int levels = 1);

/// The file's own folder, as what is listed in the file's place.
std::filesystem::path ownFolder(const Candidate &file);

/// Whether the folder of the file holds a file or folder of that name.
bool hasBeside(const Candidate &file, std::string_view name);

/// Whether the file begins with these bytes; true when contents aren't verified.
bool beginsWith(const Candidate &file, std::string_view bytes);

} // namespace nv
