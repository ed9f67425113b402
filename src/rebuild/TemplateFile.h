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
    std::string NewTagFullURL;
    std::string OriginalTag;
    std::string NewTagRelativePath; ///< name within the rebuilt page's folder
    std::int64_t TagID = 0; ///< key of the part's record where it was made; 0 for the page, which
                            ///< is the first record, and for a part without a record
    std::filesystem::path filePath;
    std::uint32_t RecordSize = 0;
    std::uint32_t recordOffset = 0; ///< 0-based, in the template
    std::string FileName;
};
using TemplateRecordsCollection = KeyedList<TemplateRecord>;

/// One template file.
struct TemplateClass {
    std::string AuditTable; ///< of older files; nothing reads it
    std::string HashTable;
    std::uint64_t FileSize = 0;
    std::string WebpageTitle;
    std::uint32_t TitleSize = 0;
    std::uint32_t AuditSize = 0;
    std::uint32_t AuditOffset = 0;
    std::uint32_t HashSize = 0;
    std::uint32_t hashOffset = 0;
    TemplateRecordsCollection records;
};

inline constexpr std::string_view kTemplatePage = "0000001.htm";

/// The bytes of a template: `version` is "major.minor.revision" of the program, the records' files
/// are read. Throws FileFailure.
std::string templateBytes(TemplateRecordsCollection &records, std::string_view WebpageTitle,
                          std::string_view version);

/// Reads the index of a template. Without a hash section there are no records; a record that lies
/// outside of the bytes is left out. Throws OutOfBytes for a file that ends within its header.
TemplateClass readTemplate(ByteView bytes);

} // namespace nv
