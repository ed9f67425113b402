#pragma once

#include "base/FailureLog.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv {

/// The terms that the keyword queries of a new project look for: configuration that an agency
/// replaces by its own.
struct KeywordLists {
    std::vector<std::string> childExploitation;
    std::vector<std::string> adultContent;
};

/// Where the term lists lie. A file in `agency` is taken in the place of the shipped one of its
/// name; either folder may be empty.
struct KeywordFolders {
    std::filesystem::path shipped;
    std::filesystem::path agency;
};

/// Reads "child-exploitation.txt" and "adult-content.txt": one term a line, "#" begins a comment.
/// A file that can't be read gives no terms, so that its queries find nothing, and is logged. An
/// empty folder for shipped lists gives no terms at all. ";" separates terms in the project and
/// can't be part of one.
KeywordLists loadKeywordLists(const KeywordFolders &folders, FailureLog &log);

} // namespace nv
