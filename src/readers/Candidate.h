#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <string_view>

namespace nv {

// What the recognisers of the formats ask of a file.

/// What recognition may know of a file without opening it; the caller adds `head` when contents are
/// verified. `evidence` must outlive the candidate.
Candidate candidateOf(const std::filesystem::path &file, const Evidence &evidence);

bool nameHas(const Candidate &file, std::string_view part);
bool pathHas(const Candidate &file, std::string_view part);
/// Without verification the name alone decides, and this is always true.
bool contentHas(const Candidate &file, std::string_view mark);

/// Browsers write "global_history.dat" and "typed_history.xml"; examiners know the other names.
/// Histories of other browsers would be taken for one by some of them.
bool hasOperaHistoryName(const Candidate &file);

/// Whether the folder is one where browsers keep compiled graphics programs. They lie in caches
/// that look like those of pages and hold no address and no page, only what the machine's graphics
/// need.
bool isShaderFolder(const std::filesystem::path &folder);

} // namespace nv
