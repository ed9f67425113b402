#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace nv {

/// Makes the records of the pages, and hands each to `addFacts` before it is saved.
using ReadPages = std::function<ReadResult(
    ReadContext &ctx, const std::function<void(UrlRecord &record, std::int64_t typed)> &addFacts)>;

/// All events of a Chromium history: pages, each with the facts of the visit that its record stands
/// for, then every other visit, downloads and search terms.
ReadResult readWholeHistory(ReadContext &ctx, EvidenceDatabase &database,
                            std::string_view procedure, const ReadPages &readPages);

} // namespace nv
