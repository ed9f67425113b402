#pragma once

#include "base/ByteView.h"
#include "base/FailureLog.h"
#include "readers/Body.h"

#include <cstdint>

namespace nv {

/// Whether the bytes begin as a gzip stream does.
bool beginsAsGZip(ByteView head);

/// Unpacks the gzip data of a body that was fetched: it becomes the unpacked one, of which up to
/// `inMemory` bytes are kept in memory. A failure is logged and leaves it as it is: damaged data,
/// and data that grow beyond limits::kUnpackedBytes. True when it holds the whole content.
[[nodiscard]] bool unpackBody(Body &body, std::uint64_t inMemory, FailureLog &log);

} // namespace nv
