#include "views/limits/Hosts.h"

#include "db/sql/Damage.h"
#include "views/rows/DamagedList.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/ranges.h>

#include <utility>

namespace nv {

const std::array<HostSortFacts, 2> kHostSorts = {{
    {HostSort::ByName, "Hosts - By Name - Ascending"},
    {HostSort::ByVisits, "Hosts - By Visits - Descending"},
}};

namespace {

// Grouping gives the same names as "SELECT Distinct Host FROM URLs ORDER BY Host ASC", with their
// counts. An artefact without a host leaves either no value or an empty text.
Walk groupHosts(SQLite::Database &project, const std::string &condition, HostSort sort,
                TaskMonitor &task, std::vector<HostRow> &hosts) {
    hosts.clear();
    SQLite::Statement rows(
        project, fmt::format("SELECT ifnull(Host, '') COLLATE NOCASE AS Name, "
                             "CAST(total(max(Visits, 0)) AS INTEGER) AS Visited, count(*) "
                             "FROM URLs{} GROUP BY Name ORDER BY {}Name ASC",
                             condition, sort == HostSort::ByVisits ? "Visited DESC, " : ""));
    StatementWatch watch(project, task);
    Step step = watch.step(rows);
    for (; step == Step::Row; step = watch.step(rows))
        hosts.push_back({rows.getColumn(0).getString(), rows.getColumn(1).getInt64(),
                         rows.getColumn(2).getInt64()});
    if (step == Step::Cancelled) {
        hosts.clear();
        return Walk::Cancelled;
    }
    return Walk::Finished;
}

} // namespace

Walk listHosts(SQLite::Database &project, HostSort sort, TaskMonitor &task,
               std::vector<HostRow> &hosts, UnreadRows &unread) {
    unread.clear();
    Walk walk = Walk::Finished;
    if (unlessDamaged([&] { walk = groupHosts(project, "", sort, task, hosts); }))
        return walk;
    hosts.clear();
    // Of each row just what is counted is read; the condition holds for all that can be.
    const IdQuery countable{
        "SELECT URL_ID FROM URLs WHERE ifnull(Host, '') || ifnull(Visits, 0) <> ''", ""};
    SurvivingRows rows;
    walk = survivingRows(project, countable, task, rows);
    unread = std::move(rows.lost);
    return walk == Walk::Cancelled
               ? walk
               : groupHosts(project, fmt::format(" WHERE URL_ID IN ({})", fmt::join(rows.ids, ",")),
                            sort, task, hosts);
}

} // namespace nv
