#pragma once

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

/// Reads "child-exploitation.txt" and "adult-content.txt": one term a line, "#" begins a comment. A
/// file that isn't there gives no terms, and its queries then find nothing.
KeywordLists loadKeywordLists(const std::filesystem::path &folder);

} // namespace nv
