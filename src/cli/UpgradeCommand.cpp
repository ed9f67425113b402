#include "app/Messages.h"
#include "app/Project.h"
#include "base/Files.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "maintenance/ProjectUpgrade.h"

#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    bool fix = false;
    Format format = Format::table;
};

void writeDifferences(Session &session, const SchemaScan &scan, Format format) {
    const auto writer = makeRowWriter(
        format, session.out, {std::begin(kDifferenceHeadings), std::end(kDifferenceHeadings)});
    for (const SchemaDifference &d : scan.differences)
        writer->row({d.table, d.object, d.name, d.status});
    writer->finish();
}

void warn(Session &session, const SchemaScan &scan) {
    if (!scan.leftBehind.empty())
        session.err << kLeftBehind << '\n';
    for (const std::string &line : scan.leftBehind)
        session.err << "  " << printable(line) << '\n';
}

Exit fix(Session &session, ProjectUpgrade &upgrade, SchemaScan &scan, Format format) {
    const FixOutcome outcome = upgrade.fix(session.task);
    session.task.clear();
    if (outcome.end == FixEnd::stopped)
        return Exit::interrupted;
    for (SchemaDifference &difference : scan.differences)
        difference.status = kFixed;
    writeDifferences(session, scan, format);
    for (const std::string &note : outcome.notes)
        session.err << printable(note) << '\n';
    session.err << fmt::format("Fixed. The old project lies at \"{}\".\n",
                               printable(textOf(outcome.oldProject)));
    return Exit::ok;
}

/// The stamp is all that a project of the right schema may lack, and only a fix writes.
void stamp(Session &session, ProjectUpgrade &upgrade, bool fix) {
    if (fix)
        upgrade.stampWhenOlder();
    else if (upgrade.isStampOlder())
        session.err << "The project fits, but an earlier build's version stands in it: --fix puts "
                       "this one's there.\n";
}

Exit run(Session &session, const Arguments &arguments) {
    if (!isProjectName(arguments.project))
        throw StorageFailure(
            fmt::format("\"{}\": {}", arguments.project, messages::notAProjectFile().text));
    Program &program = session.program;
    std::optional<ProjectHold> hold;
    if (arguments.fix && std::filesystem::exists(arguments.project))
        hold.emplace(arguments.project, program.front, program.around.clock);
    ProjectUpgrade upgrade({arguments.project, session.scratch(), program.paths.keywords()},
                           buildOf(program), program.log, program.around.clock);
    SchemaScan scan = upgrade.scan(session.task);
    session.task.clear();
    if (!scan.complete)
        return Exit::interrupted;
    session.err << kScanComplete << '\n';
    warn(session, scan);
    if (arguments.fix && !scan.differences.empty())
        return fix(session, upgrade, scan, arguments.format);
    if (scan.differences.empty())
        stamp(session, upgrade, arguments.fix);
    writeDifferences(session, scan, arguments.format);
    return scan.differences.empty() ? Exit::ok : Exit::differs;
}

} // namespace

Command upgradeCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "upgrade",
            .what = "Compare a project with the schema of this build",
            .readme = {"`upgrade PROJECT`",
                       "compares a project with this build's schema; `--fix` moves the data"},
            .examples = {{"upgrade case.nvp", "compares, changes nothing"},
                         {"upgrade case.nvp --fix", "makes a new file, and keeps the old one"}},
            .arguments = {projectWord(given->project),
                          flag("--fix", given->fix,
                               "Move its data into a new file; the old one gets \".old\" behind "
                               "its name"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
