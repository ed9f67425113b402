#pragma once

#include "base/KeyedList.h"
#include "rebuild/RebuildContext.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

// A rebuilt page with its parts in one file, docs/formats/template.md.

/// One stored file of a template.
struct TemplateRecord {
    std::string newTagFullURL;
    std::string originalTag;
    std::string newTagRelativePath; ///< name within the rebuilt page's folder
    std::int64_t tagID = 0; ///< key of the part's record where it was made; 0 for the page, which
                            ///< is the first record, and for a part without a record
    std::filesystem::path filePath;
    std::uint32_t recordSize = 0;
    std::uint32_t recordOffset = 0; ///< 0-based, in the template
    std::string fileName;
};
using TemplateRecordsCollection = KeyedList<TemplateRecord>;

/// One template file.
struct PageTemplate {
    std::string method;     ///< "classic" or "exact": by which its page was rebuilt; empty in older
                            ///< files
    std::string auditTable; ///< of older files; nothing reads it
    std::string hashTable;
    std::uint64_t fileSize = 0;
    std::string webpageTitle;
    std::uint32_t titleSize = 0;
    std::uint32_t auditSize = 0;
    std::uint32_t auditOffset = 0;
    std::uint32_t hashSize = 0;
    std::uint32_t hashOffset = 0;
    TemplateRecordsCollection records;
};

inline constexpr std::string_view kTemplatePage = "0000001.htm";

/// What a template says of its page.
struct TemplateHead {
    std::string_view webpageTitle;
    std::string_view method;  ///< "classic" or "exact"
    std::string_view version; ///< of the program: "major.minor.revision"
};

/// The bytes of a template; the records' files are read. Throws FileFailure.
std::string templateBytes(TemplateRecordsCollection &records, const TemplateHead &head);

/// Reads the index of a template. Without a hash section there are no records; a record that lies
/// outside of the bytes is left out. Throws OutOfBytes for a file that ends within its header.
PageTemplate readTemplate(ByteView bytes);

} // namespace nv
