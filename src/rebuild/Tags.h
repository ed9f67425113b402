#pragma once

#include "base/KeyedList.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace nv {

/// One kind of reference that a page is searched for.
struct URLTagDef {
    std::int16_t collectionIndex = 0; ///< 1 to 9
    std::string tagType;
    std::string tagDefinition; ///< the text to search for
};
using URLTagDefs = KeyedList<URLTagDef>;

/// The nine rules, in the order in which a page is searched.
URLTagDefs urlTagDefs();

/// One reference of a page to another file. Texts are UTF-8.
struct URLTag {
    std::int64_t relatedUrlID = 0;
    std::string tagDefinition;
    std::string accuracyScore; ///< picks and candidates, such as "1:4"
    std::string newTag;
    std::string tagSansParentPaths; ///< `OriginalTag` without "../" and "./"
    std::string tagFileName;
    std::string cacheFolderName;
    std::string cacheFileName;
    std::string tagType;
    bool isReplaceableHREFTag = false;
    std::int64_t tagOptionID = 0;
    std::string cacheFileRelativePath;
    /// 1-based position of the value's first character in the text without line breaks; 0 while
    /// there is none. It doesn't index the file.
    std::size_t fileOffset = 0;
    bool isPicture = false;
    std::size_t pathLength = 0; ///< of the value as scanned, in bytes
    std::int64_t historyFileOffset = 0;
    std::string originalTag; ///< the value without line breaks and ")"
};
using URLTags = KeyedList<URLTag>;

} // namespace nv
