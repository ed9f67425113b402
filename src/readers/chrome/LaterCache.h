#pragma once

#include "readers/Reader.h"

namespace nv {

/// Whether the file is the index of a block cache of versions 2 and 3 whose entries have the later
/// make, or a block file without an index. Throws EvidenceFailure.
bool isLaterBlockCache(const ReadContext &ctx);

/// Reads such a cache through its index, and then what no chain leads to;
/// docs/formats/chromium-block-cache.md. Of a block file without an index only the latter.
ReadResult parseLaterBlockCache(ReadContext &ctx);

} // namespace nv
