#pragma once

#include "base/FailureLog.h"
#include "db/schema/Ids.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// Which end of a pair the other record is: a parent is the page that holds the link, a child the
/// record that the link leads to.
enum class LinkEnd { parent, child };

/// One pair of link analysis, seen from the record that it is listed for.
struct LinkRow {
    UrlId other = UrlId::none; ///< the record at the other end
    LinkEnd end = LinkEnd::child;
    std::string kind; ///< of the other record: History, Cookie, Bookmark, Cache, or its `CacheType`
    /// How many rows with that id hold a count of visits: 1 as long as the record is there. Earlier
    /// cases list this number.
    std::int64_t visitCount = 0;
    /// What the other record itself says; nothing when it says nothing.
    std::optional<std::int64_t> visits;
    std::string url;
    std::string hashedURL;
};

struct LinkList {
    std::vector<LinkRow> rows;
    std::string failure; ///< why there are no rows; empty when they were read
};

enum class RecordIds {
    narrow, ///< up to 32,767, as earlier versions hold them
    wide,   ///< with the switch wideRecordIds
};

inline constexpr const char *kErrorLoadingLinks = "Error Loading Links";

/// The pairs of link analysis that the record is part of, by URL. A failure is logged and told.
LinkList loadLinks(SQLite::Database &project, UrlId urlID, RecordIds ids, FailureLog &log);

/// Whether link analysis has been run with any result.
bool hasLinkAnalysis(SQLite::Database &project);

} // namespace nv
