#pragma once

#include "base/KeyedList.h"
#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// A rebuilt page with its parts as one value of the project. Numbers are 32 bits, little-endian;
// offsets are 0-based positions in the archive:
//   Archive = File* "HASH" hash:byte[4] Entry{count} count:u32 indexArea:u32
//   File    = gap:byte[12] name gap:byte[2] data
//   Entry   = dataOffset:u32 dataSize:u32 nameOffset:u32 nameSize:u32
// indexArea is the position of "HASH". Names are Windows-1252.

struct ArchiveItem {
    std::string fileName;
    std::uint32_t fileNameSize = 0;
    std::uint32_t fileNameOffset = 0;
    std::uint32_t dataSize = 0;
    std::uint32_t dataOffset = 0;
};
using ArchiveItemCollection = KeyedList<ArchiveItem>;

struct Archive {
    ArchiveItemCollection fileItems;
    std::string indexFilename;
};

/// The entries of an archive. Throws OutOfBytes when they lie outside of it.
Archive readArchive(ByteView archive);

/// The bytes of the file of that name in the archive, when it has one; they stay the archive's own.
/// Throws OutOfBytes.
std::optional<ByteView> fileIn(ByteView archive, std::string_view name);

/// Closes an archive that was written, and opens one that is to be read. Archives are plain files:
/// returns 0 when the file is there, otherwise the system's error number.
int archiveSeal(const std::filesystem::path &path);

/// Packs all files of a rebuild folder, which holds the page, into an archive beside them and
/// stores it in the record's row. False when there is no page and after a failure, which is logged.
bool createCabinetFile(const std::filesystem::path &folder, UrlRecord &page,
                       const RebuildContext &ctx);

/// Unpacks the record's archive into its rebuild folder. Names can't lead out of it. False when
/// there is no archive and after a failure, which is logged.
bool unpackCabinetFile(UrlRecord &page, const RebuildContext &ctx);

} // namespace nv
