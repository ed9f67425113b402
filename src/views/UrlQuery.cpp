#include "views/UrlQuery.h"

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

/// Brackets, as the documented texts have them; quotes when the name holds a bracket itself.
std::string quotedName(std::string_view name) {
    if (name.find_first_of("[]") == std::string_view::npos)
        return fmt::format("[{}]", name);
    return fmt::format("\"{}\"", replaceAll(name, "\"", "\"\""));
}

std::string activeQuery(const RowChoice &rows) {
    return quotedName(rows.ActiveQueryName.empty() ? "_DEFAULT" : rows.ActiveQueryName);
}

bool filtersByHost(const RowChoice &rows) {
    return rows.FilterByHostEnabled && !rows.FilterByHostValue.empty();
}

std::string boundOf(const RowChoice &rows) {
    return filtersByHost(rows) ? hostPattern(rows.FilterByHostValue) : std::string();
}

std::string_view hostCondition(const RowChoice &rows) {
    return filtersByHost(rows) ? " WHERE Host LIKE ?" : "";
}

} // namespace

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

bool isSortable(UrlColumn column) {
    return factsOf(column).rule == CellRule::Rebuilt || !factsOf(column).source.empty();
}

IdQuery sortQuery(const RowChoice &rows, UrlColumn column, SortDirection direction) {
    const UrlColumnFacts &facts = factsOf(column);
    const std::string key = facts.rule == CellRule::Rebuilt ? std::string(kRebuiltCondition)
                                                            : fmt::format("[{}]", facts.source);
    return {fmt::format("SELECT URL_ID FROM {}{} ORDER BY {} {}, URL_ID ASC", activeQuery(rows),
                        hostCondition(rows), key,
                        direction == SortDirection::Ascending ? "ASC" : "DESC"),
            boundOf(rows)};
}

IdQuery sortQuery(const RowChoice &rows, SortChoice choice) {
    const std::string_view query = kSortChoices.at(static_cast<std::size_t>(choice)).query;
    const std::size_t order = query.find(" ORDER BY ");
    return {fmt::format("SELECT URL_ID FROM URLs{}{}", hostCondition(rows), query.substr(order)),
            boundOf(rows)};
}

} // namespace nv
