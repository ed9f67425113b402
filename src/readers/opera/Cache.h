#pragma once

#include "readers/Reader.h"

namespace nv {

/// The index of Opera's cache, "dcache4.url": a record for each URL, with the cached file beside
/// it. Failures are trapped: they stand in the log and in the result.
ReadResult parseOperaCache(ReadContext &ctx);

} // namespace nv
