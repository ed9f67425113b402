#pragma once

#include "reports/exports/ExportWriter.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nv {

/// What a date says of the thing that has it, in the letters of file systems' timelines.
enum class EventMark : char { modified = 'M', accessed = 'A', changed = 'C', born = 'B' };

/// Something that a record says happened, or will happen, at a time.
struct RecordEvent {
    std::int64_t microseconds = 0; ///< since 1970, UTC
    std::string meaning;           ///< which of the record's dates it is; never empty
    EventMark mark = EventMark::accessed;

    friend bool operator==(const RecordEvent &, const RecordEvent &) = default;
};

/// The columns that events are made of and told with; the last three came later than the others.
std::span<const UrlColumn> eventColumns();
inline constexpr std::size_t kLaterEventColumns = 3;

/// All dates of a record, by its columns and facts; no two have the same time and meaning. The
/// dates of the program's own doing (import, rebuild, notes) aren't among them.
std::vector<RecordEvent> eventsOf(ExportCells &cells, std::size_t place, const FactList &facts);

/// What the record is, in a line: kind, action, address, title.
std::string eventMessage(ExportCells &cells, std::size_t place);
/// The address as the artefact has it; empty where it is the one of the row. That one is cleaned
/// up: without escapes, and of some schemes only a part.
std::string rawAddressAt(ExportCells &cells, std::size_t place);
/// The message, and behind it that address in brackets: for forms without a field for it.
std::string messageWithRawAddress(ExportCells &cells, std::size_t place);
/// "norvelane:chrome:visit": of the record's kind.
std::string dataTypeOf(const std::string &cacheType);
/// The examiner's marks on the row: "tagged" for the tick, then its tags by name.
std::vector<std::string> tagsOf(ExportCells &cells, std::size_t place);

/// Of a UTC date: a stored one holds milliseconds for sure.
std::int64_t unixMicroseconds(Date date);
/// "2009-02-13T23:31:30.500000+00:00".
std::string isoWithFraction(std::int64_t microseconds);
/// The column's cell as a text without surprises.
std::string textAt(ExportCells &cells, std::size_t place, UrlColumn column);

} // namespace nv
