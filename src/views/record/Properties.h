#pragma once

#include "base/FailureLog.h"
#include "db/schema/Ids.h"
#include "time/ShownDate.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// One row of the properties grid. The value is the whole text, as evidence has it.
struct Property {
    std::string name;
    std::string value;

    friend bool operator==(const Property &, const Property &) = default;
};

/// What the properties of a record are made with; all must outlive the call.
struct PropertySource {
    SQLite::Database &project;
    const TimeZone &gmtZone;
    DateSettings dates;
    FailureLog &log;
    /// The picture's file; asked for pictures only. Empty when nobody wants the EXIF rows.
    std::function<std::optional<std::filesystem::path>()> picture;
};

/// All fields of the row in the order of the database, the record's facts by their names, what its
/// addresses and cookies hold in another form ("URL > q", with the rule by which it was read), and
/// what the camera wrote into a picture. Empty when there is no such row. A field that can't be
/// shown is logged and left empty, and so are facts and EXIF rows: none stops the others.
std::vector<Property> loadProperties(UrlId url, const PropertySource &source);

/// "1,234.00", as sizes of files are shown.
std::string sizeText(std::int64_t bytes);

} // namespace nv
