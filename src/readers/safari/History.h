#pragma once

#include "base/KeyedList.h"
#include "readers/Reader.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// One entry of Safari's history as its property list holds it.
struct HistoryEntry {
    std::string urlValue;
    std::optional<double> lastVisitedDateUnix; ///< seconds since 2001, in spite of its name
    Date lastVisitedDate;                      ///< UTC; none when the entry has none
    std::string webpageTitle;
    std::int16_t visitCount = -1; ///< -1 when the entry doesn't tell
    std::uint64_t place = 0;      ///< of the entry, 0-based in the file
};

using HistoryEntries = KeyedList<HistoryEntry>;

/// The file "History.plist" of Safari in XML form; docs/formats/safari-history.md.
ReadResult parseSafariHistoryFile(ReadContext &ctx);

} // namespace nv
