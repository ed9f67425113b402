#pragma once

#include "base/ByteView.h"
#include "base/Clock.h"
#include "db/records/HistoryFile.h"
#include "db/records/UrlRecord.h"
#include "readers/ie/IndexKind.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

/// Whether the caller knows a record to be deleted.
enum class DeletedFlag { no, yes };

/// One record of an index, also one found elsewhere: `record` begins with the signature and has the
/// record's length. Nothing for an empty view or a signature other than "URL ", "LEAK", "FILE" and
/// "REDR". Throws when a field lies outside of the record. Does no I/O: what lies on disk comes
/// from readers/ie/CachedFile.h.
std::optional<UrlRecord> parseIEURL(ByteView record, const HistoryFile &file,
                                    std::uint64_t recordOffset, const FolderList &folders,
                                    DeletedFlag deletedFlag, const Clock &clock);

/// When the cached file was made, by a record of any kind. Throws OutOfBytes.
Date createdDate(ByteView record);

/// Sets `URL` from `text`, cleaned and decoded, and what follows from it and from `URLRawValue`,
/// which stands before: hash, host, user, protocol and parameters.
void setUrl(UrlRecord &record, std::string_view text);

} // namespace nv
