#pragma once

#include "readers/Reader.h"

#include <optional>

namespace nv {

/// Reads a block cache of versions 2 and 3 whose entries have the later make, through its index,
/// and then what no chain leads to; docs/formats/chromium-block-cache.md. Of a block file without
/// an index, or with one that can't be trusted, only the latter. Nothing when it is a cache of the
/// first layout; failed, when it is one whose index can't be had. Throws EvidenceFailure.
std::optional<ReadResult> parseLaterBlockCache(ReadContext &ctx);

} // namespace nv
