#pragma once

#include "base/ByteView.h"
#include "readers/json/JsonWalk.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// A bookmark or a folder of them.
struct BookmarkNode {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t parent = kNone; ///< the folder, by its place in the list
    std::uint64_t offset = 0;   ///< in the file
    bool isFolder = true;
    bool isRoot = false; ///< one of the browser's own folders
    std::string name;
    std::string url;
    std::string guid; ///< since 2019; before that the id in the file
    std::optional<std::int64_t> added, modified, lastUsed;
};

/// What a file "Bookmarks" holds, in its order: a folder stands before what is in it.
struct BookmarkFile {
    std::vector<BookmarkNode> nodes;
    std::uint64_t beyondLimit = 0; ///< bookmarks and folders of which there are too many
    JsonEnd end;

    /// Names of the folders, outermost first, with "/" between.
    std::string folderOf(const BookmarkNode &node) const;
};

BookmarkFile readBookmarkFile(ByteView file, const std::function<bool(double)> &goOn);

} // namespace nv
