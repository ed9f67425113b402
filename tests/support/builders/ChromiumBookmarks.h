#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nv::test {

/// A bookmark, or with `children` a folder, as the browser writes it: members by their names, dates
/// and ids as texts.
struct ChromiumBookmark {
    std::string name;
    std::string url{};
    std::string guid{};
    std::int64_t added = 0; ///< microseconds since 1601
    std::int64_t lastUsed = 0;
    std::vector<ChromiumBookmark> children{};
};

std::string bookmarkJson(const ChromiumBookmark &bookmark);

/// A file "Bookmarks" with the three folders that every profile has.
std::string bookmarksFile(const std::vector<ChromiumBookmark> &bar,
                          const std::vector<ChromiumBookmark> &other = {});

} // namespace nv::test
