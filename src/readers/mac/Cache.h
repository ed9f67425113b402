#pragma once

#include "readers/Reader.h"
#include "readers/mac/macIECache.h"

#include <filesystem>

namespace nv {

/// Reads the cache file of Internet Explorer for Macintosh. Failures are trapped: they stand in the
/// log and in the result.
ReadResult ParseMACIECache(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` only names them.
ReadResult readMACIECache(ReadContext &ctx, ByteView bytes);

/// The record of one entry. Does no I/O. `fileSize` is that of the cache file, in which the body
/// has to lie.
URLClass ParseMACIEURL(const macIEURLClass &entry, const ReadContext &ctx, std::uint64_t fileSize);

/// Writes the body, `CacheFileSize` bytes from `DataBlockFileOffset` of the cache file, to
/// `target`. False when they don't lie in it. Throws EvidenceFailure.
bool ExtractMACFile(const URLClass &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
