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

/// Reads "child-exploitation.txt" and "adult-content.txt" of the folder: one term a line, "#"
/// begins a comment. A file that can't be read gives no terms, so that its queries find nothing,
/// and is logged. An empty folder name gives no terms at all. ";" separates terms in the project
/// and can't be part of one.
KeywordLists loadKeywordLists(const std::filesystem::path &folder, FailureLog &log);

} // namespace nv
