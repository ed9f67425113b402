#include "reports/case/RedactedHosts.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace nv {

namespace {

bool hasRows(SQLite::Database &project, const std::string &host) {
    SQLite::Statement row(project,
                          "SELECT 1 FROM URLs WHERE Host = ?1 COLLATE NOCASE OR "
                          "substr(Host, -length(?1) - 1) = '.' || ?1 COLLATE NOCASE LIMIT 1");
    row.bind(1, host);
    return row.executeStep();
}

std::vector<std::string> hostsWith(SQLite::Database &project, const std::string &part) {
    constexpr std::size_t kNamed = 5;
    SQLite::Statement row(project,
                          "SELECT DISTINCT Host FROM URLs "
                          "WHERE instr(lower(Host), lower(?1)) > 0 ORDER BY Host LIMIT ?2");
    row.bind(1, part);
    row.bind(2, static_cast<std::int64_t>(kNamed));
    std::vector<std::string> hosts;
    while (row.executeStep())
        hosts.push_back(row.getColumn(0).getString());
    return hosts;
}

} // namespace

std::vector<std::string> notesOnHosts(SQLite::Database &project, const RedactionRules &rules) {
    std::vector<std::string> notes;
    for (const RedactionRule &rule : rules) {
        if (rule.thing != RedactedThing::host || hasRows(project, rule.what))
            continue;
        const auto near = hostsWith(project, rule.what);
        notes.push_back(fmt::format(
            "no row is of the host \"{}\": only the words are redacted{}", rule.what,
            near.empty() ? "" : fmt::format("; hosts with it: {}", fmt::join(near, ", "))));
    }
    return notes;
}

} // namespace nv
