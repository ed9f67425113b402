#include "reports/case/RedactionNotes.h"

#include "base/DisplayText.h"
#include "base/Text.h"
#include "reports/case/Redactor.h"
#include "search/FoldedText.h"
#include "search/RowMatch.h"
#include "search/SearchedRowReader.h"
#include "views/limits/PlaceLimit.h"
#include "views/limits/SearchValues.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace nv {

namespace {

bool hasAny(const RedactionRules &rules, RedactedThing thing) {
    return std::ranges::find(rules, thing, &RedactionRule::thing) != rules.end();
}

/// Names with their rows, the most first; those without a name are none.
NamedCounts namesIn(SQLite::Database &project, const std::string &names) {
    SQLite::Statement row(project,
                          fmt::format("SELECT Name, count(*) FROM ({}) WHERE Name <> '' GROUP BY "
                                      "Name ORDER BY 2 DESC, 1",
                                      names));
    NamedCounts found;
    while (row.executeStep())
        found.emplace_back(row.getColumn(0).getString(), row.getColumn(1).getInt64());
    return found;
}

NamedCounts hostsIn(SQLite::Database &project) {
    return namesIn(project, "SELECT lower(Host) AS Name FROM URLs");
}

NamedCounts peopleIn(SQLite::Database &project) {
    return namesIn(project, hasOriginColumns(project)
                                ? "SELECT Person AS Name FROM URLs UNION ALL SELECT User FROM URLs "
                                  "WHERE ifnull(User, '') <> ifnull(Person, '')"
                                : "SELECT User AS Name FROM URLs");
}

std::string noteOn(std::string_view thing, const RedactionRule &rule, const NamedCounts &names) {
    return fmt::format("no row is of the {} \"{}\": only the words are redacted; {}", thing,
                       displayText(rule.what),
                       names.empty() ? fmt::format("no row names a {}", thing)
                                     : "there are: " + listedValues(names, rule.what));
}

std::optional<std::string> noteOnHost(const RedactionRule &rule, const NamedCounts &hosts) {
    const Redactor redactor({rule});
    const bool isThere = std::ranges::any_of(
        hosts, [&redactor](const auto &host) { return redactor.isOfHost(host.first); });
    return isThere ? std::nullopt : std::optional(noteOn("host", rule, hosts));
}

std::optional<std::string> noteOnPerson(const RedactionRule &rule, const NamedCounts &people) {
    const std::string asked = foldedCase(rule.what);
    const bool isThere = std::ranges::any_of(
        people, [&asked](const auto &person) { return foldedCase(person.first) == asked; });
    return isThere ? std::nullopt : std::optional(noteOn("person", rule, people));
}

std::optional<std::string> noteOnPicture(SQLite::Database &project, const RedactionRule &rule) {
    SQLite::Statement row(project, "SELECT 1 FROM URLs WHERE URL_ID = ?");
    row.bind(1, static_cast<std::int64_t>(std::stoll(rule.what)));
    return row.executeStep() ? std::nullopt
                             : std::optional(fmt::format("there is no row {}", rule.what));
}

/// The texts of rows that a search looks through.
RowMatch matchOf(const RedactionRule &rule) {
    SearchClause clause{.text = rule.what};
    clause.anyPart = true;
    SearchQuery query;
    query.clauses.push_back(std::move(clause));
    return RowMatch(std::move(query));
}

/// One pass for all of them, as far as it is needed.
Walk noteValues(SQLite::Database &project, const RedactionRules &rules, TaskMonitor &task,
                std::vector<std::string> &notes) {
    std::vector<std::pair<std::string, RowMatch>> sought;
    for (const RedactionRule &rule : rules)
        if (rule.thing == RedactedThing::value)
            sought.emplace_back(rule.what, matchOf(rule));
    SearchedRowReader reader(project);
    while (!sought.empty() && reader.next()) {
        if (!task.advance(reader.fraction()))
            return Walk::Cancelled;
        std::erase_if(sought, [&reader](auto &each) { return each.second.meets(reader.row()); });
    }
    for (const auto &[value, match] : sought)
        notes.push_back(fmt::format("no text of a row has \"{}\" in it", displayText(value)));
    return Walk::Finished;
}

} // namespace

Walk notesOnRedactions(SQLite::Database &project, const RedactionRules &rules, NotedThings things,
                       TaskMonitor &task, std::vector<std::string> &notes) {
    notes.clear();
    const bool asksHosts = hasAny(rules, RedactedThing::host);
    const bool asksPeople = hasAny(rules, RedactedThing::person);
    const NamedCounts hosts = asksHosts ? hostsIn(project) : NamedCounts();
    const NamedCounts people = asksPeople ? peopleIn(project) : NamedCounts();
    for (const RedactionRule &rule : rules) {
        if (!task.advance(0))
            return Walk::Cancelled;
        std::optional<std::string> note;
        if (rule.thing == RedactedThing::host)
            note = noteOnHost(rule, hosts);
        else if (rule.thing == RedactedThing::person)
            note = noteOnPerson(rule, people);
        else if (rule.thing == RedactedThing::picture)
            note = noteOnPicture(project, rule);
        if (note)
            notes.push_back(std::move(*note));
    }
    if (things == NotedThings::names || !hasAny(rules, RedactedThing::value))
        return Walk::Finished;
    return noteValues(project, rules, task, notes);
}

std::string unmetText(const RedactionRules &rules) {
    std::string text;
    for (const RedactionRule &rule : rules)
        text += (text.empty() ? "\"" : ", \"") + displayText(textOf(rule)) + "\"";
    return "nothing in the report fits " + text;
}

} // namespace nv
