#include "views/rows/UrlQuery.h"

#include "base/Text.h"

#include <fmt/format.h>

namespace nv {

// Three of these name columns of `SourceFiles`. They stand as examiners know them and fail at the
// database.
const std::array<SortChoiceFacts, 7> kSortChoices = {{
    {SortChoice::UrlFileName, "URL file name",
     "SELECT * FROM URLs ORDER BY FileName ASC, ActionDateUTC ASC"},
    {SortChoice::FileSize, "File size",
     "SELECT * FROM URLs ORDER BY FileSize ASC, ActionDateUTC ASC"},
    {SortChoice::Url, "URL", "SELECT * FROM URLs ORDER BY URL ASC, ActionDateUTC ASC"},
    {SortChoice::Extension, "Extension",
     "SELECT * FROM URLs ORDER BY FileExt ASC, ActionDateUTC ASC"},
    {SortChoice::Visits, "Visits", "SELECT * FROM URLs ORDER BY Visits DESC, ActionDateUTC ASC"},
    {SortChoice::HostAndVisits, "Host and visits",
     "SELECT * FROM URLs ORDER BY Host ASC, Visits DESC"},
    {SortChoice::HostAndDate, "Host and date",
     "SELECT * FROM URLs ORDER BY Host ASC, ActionDateUTC ASC"},
}};

namespace {

/// Brackets, as the stored queries have them; quotes when the name holds a bracket itself.
std::string quotedName(std::string_view name) {
    if (name.find_first_of("[]") == std::string_view::npos)
        return fmt::format("[{}]", name);
    return fmt::format("\"{}\"", replaceAll(name, "\"", "\"\""));
}

std::string activeQuery(const RowChoice &rows) {
    return quotedName(rows.activeQueryName.empty() ? "_DEFAULT" : rows.activeQueryName);
}

bool filtersByHost(const RowChoice &rows) {
    return rows.filterByHostEnabled && !rows.filterByHostValue.empty();
}

std::string boundOf(const RowChoice &rows) {
    return filtersByHost(rows) ? hostPattern(rows.filterByHostValue) : std::string();
}

std::string_view hostCondition(const RowChoice &rows) {
    return filtersByHost(rows) ? " WHERE Host LIKE ?" : "";
}

std::string sortKey(UrlColumn column, bool undatedLast) {
    const UrlColumnFacts &facts = factsOf(column);
    if (isGathered(column))
        return "NULL";
    if (facts.rule == CellRule::Rebuilt)
        return "(CacheFileRebuilt <> 0 OR IngredientIDs <> '' OR length(CacheFileRebuiltBLOB) > 0)";
    if (facts.rule == CellRule::Note) // rows with a note come first
        return fmt::format("(ifnull([{}], '') = '')", facts.source);
    if (undatedLast && column == UrlColumn::ExpiryDate) // 0 was written for "never set"
        return fmt::format("nullif([{}], 0)", facts.source);
    return fmt::format("[{}]", facts.source);
}

/// The date column that stands first after the last ORDER BY; empty when none does.
std::string_view dateOrderOf(std::string_view sql) {
    constexpr std::string_view kOrderBy = "ORDER BY ";
    const std::string upper = replaceAll(replaceAll(toUpper(sql), "\r", " "), "\n", " ");
    const std::size_t at = upper.rfind(kOrderBy);
    if (at == std::string::npos)
        return {};
    std::string key(trim(std::string_view(upper).substr(at + kOrderBy.size())));
    key = key.substr(0, key.find_first_of(" ,;)"));
    std::erase_if(key, [](char c) { return c == '[' || c == ']' || c == '"'; });
    key = key.substr(key.rfind('.') + 1);
    for (const UrlColumnFacts &facts : kUrlColumns)
        if (isDate(facts.column) && equalsNoCase(facts.source, key))
            return facts.source;
    return {};
}

} // namespace

std::string sortText(const ColumnSort &sort) {
    return fmt::format("{} {}", factsOf(sort.column).key,
                       sort.direction == SortDirection::Ascending ? "ASC" : "DESC");
}

std::optional<ColumnSort> sortIn(std::string_view text) {
    const auto parts = split(trim(text), ' ');
    const auto column = parts.size() == 2 ? columnOfKey(parts[0]) : std::nullopt;
    if (!column || !isSortable(*column))
        return std::nullopt;
    if (equalsNoCase(parts[1], "ASC"))
        return ColumnSort{*column, SortDirection::Ascending};
    if (equalsNoCase(parts[1], "DESC"))
        return ColumnSort{*column, SortDirection::Descending};
    return std::nullopt;
}

std::string hostPattern(std::string_view host) {
    std::string pattern = "%";
    for (const char c : host) {
        if (c == '%' || c == '_' || c == '[')
            pattern.append("[").append(1, c).append("]");
        else
            pattern += c;
    }
    return pattern + "%";
}

std::string queryText(const RowChoice &rows) {
    const std::string query = activeQuery(rows);
    if (!filtersByHost(rows))
        return fmt::format("SELECT {0}.* FROM {0}", query);
    return fmt::format(
        "SELECT {0}.* FROM {0} WHERE {0}.Host LIKE ? ORDER BY {0}.ActionDateLocal ASC", query);
}

IdQuery loadQuery(const RowChoice &rows) {
    return {fmt::format("SELECT URL_ID FROM ({})", queryText(rows)), boundOf(rows)};
}

std::vector<IdQuery> undatedLastQueries(const RowChoice &rows, std::string_view queryText) {
    // The host filter brings an order of its own.
    const std::string_view date = filtersByHost(rows) ? "ActionDateLocal" : dateOrderOf(queryText);
    if (date.empty())
        return {};
    IdQuery dated = loadQuery(rows);
    IdQuery undated = dated;
    dated.sql += fmt::format(" WHERE [{}] IS NOT NULL", date);
    undated.sql += fmt::format(" WHERE [{}] IS NULL", date);
    return {std::move(dated), std::move(undated)};
}

bool isSortable(UrlColumn column) {
    return factsOf(column).rule == CellRule::Rebuilt || !factsOf(column).source.empty() ||
           isGathered(column);
}

IdQuery sortQuery(const RowChoice &rows, const ColumnSort &sort, Undated undated) {
    const bool last = undated == Undated::Last && isDate(sort.column);
    return {fmt::format("SELECT URL_ID FROM {}{} ORDER BY {} {}{}, URL_ID ASC", activeQuery(rows),
                        hostCondition(rows), sortKey(sort.column, last),
                        sort.direction == SortDirection::Ascending ? "ASC" : "DESC",
                        last ? " NULLS LAST" : ""),
            boundOf(rows)};
}

IdQuery sortQuery(const RowChoice &rows, SortChoice choice) {
    const std::string_view query = kSortChoices.at(static_cast<std::size_t>(choice)).query;
    const std::size_t order = query.find(" ORDER BY ");
    return {fmt::format("SELECT URL_ID FROM URLs{}{}", hostCondition(rows), query.substr(order)),
            boundOf(rows)};
}

} // namespace nv
