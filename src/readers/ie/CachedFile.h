#pragma once

#include "db/records/HistoryFile.h"
#include "db/records/UrlRecord.h"
#include "readers/ContentProbe.h"
#include "readers/Evidence.h"

#include <filesystem>
#include <optional>

namespace nv {

// What the disk adds to a record of parseIEURL().

/// Sets where the record's file lies, whether it is there, and the status that follows from that.
/// Returns the cached file when it exists.
std::optional<std::filesystem::path> locateCachedFile(UrlRecord &record, const HistoryFile &file,
                                                      const Evidence &evidence);

/// Sets category and title by what the cached file holds. Throws EvidenceFailure.
void examineCachedFile(UrlRecord &record, const std::filesystem::path &cachedFile,
                       const Evidence &evidence, ContentProbe &content);

} // namespace nv
