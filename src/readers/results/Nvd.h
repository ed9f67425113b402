#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

#include <cstdint>
#include <string>

namespace nv {

/// The head of a results file. Numbers are signed, offsets 0-based from the start of the file.
struct NvdFile {
    std::uint64_t fileSize = 0;
    std::int32_t hashTableOffset = 0; ///< of the table of entries
    std::int32_t entryCount = 0;
    std::string version; ///< what the list of formats says: the file names none
    ByteView header;     ///< the bytes up to the end of the offset
};

/// Reads a file of index records that the companion script for disc images saved. Failures are
/// trapped: they stand in the log and in the result.
ReadResult parseNorvelaneNVDFile(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` only names them.
ReadResult readNvd(ReadContext &ctx, ByteView bytes);

} // namespace nv
