#include "app/project/Project.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "views/limits/Hosts.h"

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    bool byVisits = false;
    Format format = Format::table;
};

Exit run(Session &session, const Arguments &arguments) {
    session.openForReading(arguments.project);
    const HostSort sort = arguments.byVisits ? HostSort::ByVisits : HostSort::ByName;
    std::vector<HostRow> hosts;
    UnreadRows unread;
    const Walk walk =
        listHosts(session.program.state.projectDB.connection(), sort, session.task, hosts, unread);
    session.task.clear();
    const auto writer = makeRowWriter(arguments.format, session.out, {"Host", "Visits", "Records"});
    for (const HostRow &host : hosts)
        writer->row({host.host, host.visits, host.records});
    writer->finish();
    closeProject(session.program);
    if (walk == Walk::Cancelled || interrupted)
        return Exit::interrupted;
    const Exit read = tellUnread(session, unread);
    if (!unread.empty())
        session.err << "no host counts them: visits and records may be too few\n";
    return read;
}

} // namespace

Command hostsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "hosts",
            .what = "The hosts of a project with their visits and records",
            .readme = {"`hosts PROJECT`", "lists the hosts with their visits and records"},
            .examples = {{"hosts case.nvp", "by name"},
                         {"hosts case.nvp --by-visits --format csv", "most visited first"}},
            .arguments = {projectWord(given->project),
                          flag("--by-visits", given->byVisits, "Most visited first, not by name"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
