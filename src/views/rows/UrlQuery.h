#pragma once

#include "views/rows/UrlColumns.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Which rows the table shows.
struct RowChoice {
    std::string activeQueryName; ///< empty for "_DEFAULT"
    bool filterByHostEnabled = false;
    std::string filterByHostValue; ///< matched literally, anywhere in the host
};

/// A statement that gives URL_IDs in order. A host from evidence is never part of its text.
struct IdQuery {
    std::string sql;
    std::string bound; ///< value of the statement's one parameter; unused when it has none
};

/// Whether the Rebuilt column says "Yes".
inline constexpr std::string_view kRebuiltCondition =
    "(CacheFileRebuilt <> 0 OR IngredientIDs <> '' OR length(CacheFileRebuiltBLOB) > 0)";

enum class SortDirection { Ascending, Descending };
struct ColumnSort {
    UrlColumn column;
    SortDirection direction;
    bool operator==(const ColumnSort &) const = default;
};
/// As the project keeps it: "COL_URL_HOST DESC".
std::string sortText(const ColumnSort &sort);
/// Nothing for a text that isn't one, or names a column without an order.
std::optional<ColumnSort> sortIn(std::string_view text);

/// Where rows without a date stand among others that are sorted by it.
enum class Undated { AsTheQueryHasThem, Last };

/// The entries of the `Sort By` menu.
enum class SortChoice { UrlFileName, FileSize, Url, Extension, Visits, HostAndVisits, HostAndDate };
struct SortChoiceFacts {
    SortChoice choice;
    std::string_view label;
    std::string_view query;
};
extern const std::array<SortChoiceFacts, 7> kSortChoices;

/// The query as the program documents it, with a parameter in place of the host's pattern.
std::string queryText(const RowChoice &rows);
/// `host` as a LIKE pattern that finds just this text: "%" at both ends, its own characters quoted.
std::string hostPattern(std::string_view host);

IdQuery loadQuery(const RowChoice &rows);
/// The same rows in two statements, the later one for those without the date that `queryText` (of
/// the active query) sorts by; empty when it sorts by something else.
std::vector<IdQuery> undatedLastQueries(const RowChoice &rows, std::string_view queryText);
/// Icons and counts of links have no order.
bool isSortable(UrlColumn column);
/// The same rows by one column; equal ones by urlID. Only for sortable columns. Those whose texts
/// are gathered from other tables are sorted after it (views/limits/GatheredTexts.h): here by urlID.
IdQuery sortQuery(const RowChoice &rows, const ColumnSort &sort, Undated undated);
/// All of `URLs` in the order of the menu's entry; a host filter still holds.
IdQuery sortQuery(const RowChoice &rows, SortChoice choice);

} // namespace nv
