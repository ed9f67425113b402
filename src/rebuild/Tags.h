#pragma once

#include "base/KeyedList.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace nv {

/// One kind of reference that a page is searched for.
struct URLTagDef {
    std::int16_t CollectionIndex = 0; ///< 1 to 9
    std::string TagType;
    std::string TagDefinition; ///< the text to search for
};
using URLTagDefs = KeyedList<URLTagDef>;

/// The nine rules, in the order in which a page is searched.
URLTagDefs urlTagDefs();

/// One reference of a page to another file. Texts are UTF-8.
struct URLTag {
    std::int64_t Related_URL_ID = 0;
    std::string TagDefinition;
    std::string AccuracyScore; ///< picks and candidates, such as "1:4"
    std::string NewTag;
    std::string TagSansParentPaths; ///< `OriginalTag` without "../" and "./"
    std::string TagFileName;
    std::string CacheFolderName;
    std::string CacheFileName;
    std::string TagType;
    bool IsReplaceableHREFTag = false;
    std::int64_t TagOption_ID = 0;
    std::string CacheFileRelativePath;
    /// 1-based position of the value's first character in the text without line breaks; 0 while
    /// there is none. It doesn't index the file.
    std::size_t fileOffset = 0;
    bool IsPicture = false;
    std::size_t PathLength = 0; ///< of the value as scanned, in bytes
    std::int64_t HistoryFileOffset = 0;
    std::string OriginalTag; ///< the value without line breaks and ")"
};
using URLTags = KeyedList<URLTag>;

} // namespace nv
