#pragma once

#include "base/ByteView.h"
#include "base/FailureLog.h"
#include "readers/Body.h"

#include <filesystem>

namespace nv {

/// Whether the bytes begin as a gzip stream does.
bool beginsAsGZip(ByteView head);

/// Unpacks the gzip file `packed` to `target`, which may be the same path. A failure is logged and
/// leaves `packed` as it is and no `target` of its own: damaged data, and data that grow beyond
/// limits::kUnpackedBytes. True when `target` holds the whole content.
bool DecompressGZipFile(const std::filesystem::path &packed, const std::filesystem::path &target,
                        FailureLog &log);

/// The same for a body that was fetched: it becomes the unpacked one, of which up to `inMemory`
/// bytes are kept in memory. False leaves it as it is.
bool unpackBody(Body &body, std::uint64_t inMemory, FailureLog &log);

} // namespace nv
