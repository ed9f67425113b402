#include "cli/Commands.h"
#include "cli/ReadProject.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string host; ///< empty for all
    Format format = Format::table;
};

Exit run(Session &session, const Arguments &arguments) {
    const auto project = readProject(arguments.project);
    SQLite::Statement rows(*project, "SELECT count(*) FROM URLs WHERE ?1 = '' OR Host = ?1");
    rows.bind(1, arguments.host);
    rows.executeStep();
    const auto writer = makeRowWriter(arguments.format, session.out, {"Rows"});
    writer->row({rows.getColumn(0).getInt64()});
    writer->finish();
    return Exit::ok;
}

} // namespace

Command countCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "count",
            .what = "How many rows a project has",
            .readme = {"`count PROJECT`", "counts the rows; `--host`"},
            .examples = {{"count case.nvp", "all rows"},
                         {"count case.nvp --host example.com", "those of a host"}},
            .arguments = {projectWord(given->project),
                          value("--host", given->host, "Only this host"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
