#pragma once

#include "base/ByteView.h"
#include "base/FailureLog.h"

#include <filesystem>

namespace nv {

/// Whether the bytes begin as a gzip stream does.
bool beginsAsGZip(ByteView head);

/// Unpacks the gzip file `packed` to `target`, which may be the same path. A failure is logged and
/// leaves `packed` as it is and no `target` of its own: damaged data, and data that grow beyond
/// limits::kUnpackedBytes. True when `target` holds the whole content.
bool DecompressGZipFile(const std::filesystem::path &packed, const std::filesystem::path &target,
                        FailureLog &log);

} // namespace nv
