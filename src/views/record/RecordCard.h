#pragma once

#include "base/FailureLog.h"
#include "db/schema/Ids.h"
#include "time/ShownDate.h"

#include <optional>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A question that is asked first, with its answer. Values of evidence stand in it as they are:
/// show them as plain text, never as a link.
struct CardLine {
    std::string label;
    std::string text;

    friend bool operator==(const CardLine &, const CardLine &) = default;
};

/// What a record is, in words.
struct RecordCard {
    std::string title;   ///< of the page, or else the file's name, the host or the kind
    std::string address; ///< whole; may be empty
    std::vector<CardLine> lines;

    /// Empty when there is no such line.
    std::string line(std::string_view label) const;

    friend bool operator==(const RecordCard &, const RecordCard &) = default;
};

/// What a card is made with; all must outlive the call.
struct CardSource {
    SQLite::Database &project;
    const TimeZone &zone;
    DateSettings dates;
    FailureLog &log;
};

/// Nothing when there is no such row, or it can't be read, which is logged. Dates stand in UTC and
/// by the zone's clock, whatever their age.
std::optional<RecordCard> loadCard(UrlId url, const CardSource &source);

/// The name by which people know the zone: "Europe/Berlin".
std::string zoneName(const TimeZone &zone);

} // namespace nv
