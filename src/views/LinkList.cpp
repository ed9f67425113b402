#include "views/LinkList.h"

#include "base/Trap.h"
#include "db/URLClass.h"
#include "readers/RecordKind.h"
#include "rebuild/Harvest.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <stdexcept>

namespace nv {

namespace {

/// Ids above it are refused with a message that says what lifts it: nothing is passed over.
void checkWidth(UrlId URL_ID, RecordIds ids) {
    if (ids == RecordIds::narrow && number(URL_ID) > kLargestNarrowId)
        throw std::out_of_range(
            fmt::format("the links of record {} can't be listed, as its id is above {}; the switch "
                        "WideRecordIds in the section [BEYOND] of the settings lifts this limit",
                        number(URL_ID), kLargestNarrowId));
}

constexpr const char *kPairs =
    "SELECT A.Parent_ID, A.Child_ID, A.URL, A.HashedURL, U.Visits IS NOT NULL, U.Visits, "
    "CASE WHEN U.URL_ID IS NULL THEN '' WHEN U.IsHistory THEN 'History' "
    "WHEN U.IsCookie THEN 'Cookie' WHEN U.IsBookmark THEN 'Bookmark' "
    "ELSE ifnull(trim(U.CacheType), 'Cache') END "
    "FROM LinkAnalysis A LEFT JOIN URLs U ON U.URL_ID = "
    "CASE WHEN A.Parent_ID = ?1 THEN A.Child_ID ELSE A.Parent_ID END "
    "WHERE A.Parent_ID = ?1 OR A.Child_ID = ?1 ORDER BY A.URL ASC, A.Link_ID";

LinkRow rowIn(SQLite::Statement &pairs, UrlId URL_ID) {
    LinkRow row;
    const std::int64_t parent = pairs.getColumn(0).getInt64();
    row.end = parent == number(URL_ID) ? LinkEnd::child : LinkEnd::parent;
    row.other = UrlId{row.end == LinkEnd::child ? pairs.getColumn(1).getInt64() : parent};
    row.URL = pairs.getColumn(2).getString();
    row.HashedURL = pairs.getColumn(3).getString();
    row.VisitCount = pairs.getColumn(4).getInt64();
    if (const SQLite::Column visits = pairs.getColumn(5);
        !visits.isNull() && visits.getInt64() != kVisitsUnknown)
        row.Visits = visits.getInt64();
    row.kind = pairs.getColumn(6).getString();
    if (groupOf(row.kind) == RecordGroup::cache)
        row.kind = groupWord(RecordGroup::cache);
    return row;
}

} // namespace

LinkList LoadLinks(SQLite::Database &project, UrlId URL_ID, RecordIds ids, FailureLog &log) {
    LinkList list;
    const auto failure = failureOf(log, "MainForm.LoadLinks()", [&] {
        checkWidth(URL_ID, ids);
        SQLite::Statement pairs(project, kPairs);
        pairs.bind(1, number(URL_ID));
        while (pairs.executeStep())
            list.rows.push_back(rowIn(pairs, URL_ID));
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
