#pragma once

#include "readers/Reader.h"
#include "readers/chrome/LaterEntry.h"
#include "readers/chrome/LaterIndex.h"

#include <optional>
#include <string>

namespace nv {

class BodyTarget;

/// The entry of that key, by the chain of its slot. Throws EvidenceFailure.
std::optional<LaterEntry> laterEntryOfKey(LaterIndexFile &index, LaterEntries &entries,
                                          const std::string &key);

/// Whether the record's body is made of pieces.
bool isInPieces(const UrlRecord &record);

/// The body of such a record, its pieces one after the other.
bool fetchLaterPieces(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
