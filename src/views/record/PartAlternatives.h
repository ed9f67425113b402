#pragma once

#include "db/marks/RebuiltParts.h"
#include "db/records/UrlRecord.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A cached record that the examiner can take for a reference.
struct PartAlternative {
    UrlId id = UrlId::none;
    std::string rule; ///< how it was found, one of `partrule`
    std::string url;
    std::string kind;                    ///< its `CacheType`
    std::string file;                    ///< the source file
    Date time;                           ///< in UTC
    std::optional<std::int64_t> seconds; ///< from the page's own time to that
};

/// What can stand for one reference of a page that was rebuilt exactly.
struct PartQuestion {
    UrlId page = UrlId::none;
    std::string reference;                     ///< as the page means it
    std::string address;                       ///< as choices are kept: without its fragment
    std::vector<PartAlternative> alternatives; ///< the one that stands there first
    /// What the examiner has chosen before: a record, or `none` for an empty place.
    std::optional<UrlId> kept;
};

/// Throws the database's errors.
PartQuestion partQuestion(const UrlRecord &page, const PartNote &note, SQLite::Database &project);

/// Why the record can't stand for a reference, in plain words; empty when it can. Throws the
/// database's errors.
std::string whyNoPart(UrlId id, SQLite::Database &project);

/// Whether the part was cached under another address than the one that the page asks for: with
/// another query, or as another size of the picture.
bool isOfAnotherAddress(const PartNote &note);

/// "3 s later", "2 d 4 h earlier", "same second".
std::string timeApart(std::int64_t seconds);

} // namespace nv
