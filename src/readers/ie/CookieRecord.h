#pragma once

#include "base/ByteView.h"
#include "base/Clock.h"
#include "db/records/HistoryFile.h"
#include "db/records/UrlRecord.h"
#include "readers/Evidence.h"
#include "readers/ie/IndexRecord.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// One record of a cookies index: `record` begins with the signature and has the record's length.
/// Throws when a field lies outside of it. Does no I/O: what lies on disk comes from
/// locateCookieFile() and
/// readCookieText().
UrlRecord parseIECookie(ByteView record, const HistoryFile &file, std::uint64_t recordOffset,
                        DeletedFlag deletedFlag, const Clock &clock);

/// Sets where the record's text file lies. Returns the file when it is there, beside the index.
std::optional<std::filesystem::path> locateCookieFile(UrlRecord &record, const HistoryFile &file,
                                                      const Evidence &evidence);

/// A cookie's text as it is kept: without line ends, and no more of it than limits::kCookieText.
struct CookieText {
    std::string text;
    Bytes raw; ///< with line ends, in the file's own letters
    bool whole = true;
};

/// Throws EvidenceFailure.
CookieText readCookieText(const EvidenceFile &file);

} // namespace nv
