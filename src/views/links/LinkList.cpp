#include "views/links/LinkList.h"

#include "base/Trap.h"
#include "db/records/UrlRecord.h"
#include "db/sql/BindId.h"
#include "readers/RecordKind.h"
#include "rebuild/Harvest.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <stdexcept>

namespace nv {

namespace {

/// Ids above it are refused with a message that says what lifts it: nothing is passed over.
void checkWidth(UrlId urlID, RecordIds ids) {
    if (ids == RecordIds::narrow && urlID > UrlId{kLargestNarrowId})
        throw std::out_of_range(
            fmt::format("the links of record {} can't be listed, as its id is above {}; the switch "
                        "WideRecordIds in the section [BEYOND] of the settings lifts this limit",
                        urlID, kLargestNarrowId));
}

constexpr const char *kPairs =
    "SELECT A.Parent_ID, A.Child_ID, A.URL, A.HashedURL, U.Visits IS NOT NULL, U.Visits, "
    "CASE WHEN U.URL_ID IS NULL THEN '' WHEN U.IsHistory THEN 'History' "
    "WHEN U.IsCookie THEN 'Cookie' WHEN U.IsBookmark THEN 'Bookmark' "
    "ELSE ifnull(trim(U.CacheType), 'Cache') END "
    "FROM LinkAnalysis A LEFT JOIN URLs U ON U.URL_ID = "
    "CASE WHEN A.Parent_ID = ?1 THEN A.Child_ID ELSE A.Parent_ID END "
    "WHERE A.Parent_ID = ?1 OR A.Child_ID = ?1 ORDER BY A.URL ASC, A.Link_ID";

LinkRow rowIn(SQLite::Statement &pairs, UrlId urlID) {
    LinkRow row;
    const UrlId parent{pairs.getColumn(0).getInt64()};
    row.end = parent == urlID ? LinkEnd::child : LinkEnd::parent;
    row.other = row.end == LinkEnd::child ? UrlId{pairs.getColumn(1).getInt64()} : parent;
    row.url = pairs.getColumn(2).getString();
    row.hashedURL = pairs.getColumn(3).getString();
    row.visitCount = pairs.getColumn(4).getInt64();
    if (const SQLite::Column visits = pairs.getColumn(5);
        !visits.isNull() && visits.getInt64() != kVisitsUnknown)
        row.visits = visits.getInt64();
    row.kind = pairs.getColumn(6).getString();
    if (groupOf(row.kind) == RecordGroup::cache)
        row.kind = groupWord(RecordGroup::cache);
    return row;
}

} // namespace

LinkList loadLinks(SQLite::Database &project, UrlId urlID, RecordIds ids, FailureLog &log) {
    LinkList list;
    const auto failure = failureOf(log, "MainForm.LoadLinks()", [&] {
        checkWidth(urlID, ids);
        SQLite::Statement pairs(project, kPairs);
        bindId(pairs, 1, urlID);
        while (pairs.executeStep())
            list.rows.push_back(rowIn(pairs, urlID));
    });
    if (!failure)
        return list;
    return {{}, fmt::format("{}: {}", kErrorLoadingLinks, *failure)};
}

bool hasLinkAnalysis(SQLite::Database &project) {
    SQLite::Statement any(project, "SELECT 1 FROM LinkAnalysis LIMIT 1");
    return any.executeStep();
}

} // namespace nv
