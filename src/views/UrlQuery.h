#pragma once

#include "views/UrlColumns.h"

#include <array>
#include <string>
#include <string_view>

namespace nv {

/// Which rows the table shows.
struct RowChoice {
    std::string ActiveQueryName; ///< empty for "_DEFAULT"
    bool FilterByHostEnabled = false;
    std::string FilterByHostValue; ///< matched literally, anywhere in the host
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
/// Icons and counts of links have no order.
bool isSortable(UrlColumn column);
/// The same rows by one column; equal ones by URL_ID. Only for sortable columns.
IdQuery sortQuery(const RowChoice &rows, UrlColumn column, SortDirection direction);
/// All of `URLs` in the order of the menu's entry; a host filter still holds.
IdQuery sortQuery(const RowChoice &rows, SortChoice choice);

} // namespace nv
