#include "app/jobs/Trail.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "maintenance/SourceCheck.h"

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    Format format = Format::table;
};

void write(Session &session, const SourceCheck &check, Format format) {
    const auto writer = makeRowWriter(
        format, session.out,
        {"State", "File", "SizeThen", "SizeNow", "MD5Then", "MD5Now", "SHA256Then", "SHA256Now"});
    for (const CheckedSource &source : check.sources)
        writer->row({std::string(stateWord(source.state)), source.path, source.sizeThen,
                     source.sizeNow, source.md5Then, source.md5Now, source.sha256Then,
                     source.sha256Now});
    writer->finish();
}

Exit run(Session &session, const Arguments &arguments) {
    const bool notes = session.openForNote(arguments.project);
    Program &program = session.program;
    const SourceCheck check =
        verifySources(program.state.projectDB.connection(), program.log, session.task);
    session.task.clear();
    write(session, check, arguments.format);
    session.err << summaryText(check) << '\n';
    const TrailChain chain = checkTrail(program.state.projectDB.connection());
    session.err << chainText(chain) << '\n';
    if (notes)
        noteVerify(program, check, chain);
    if (check.cancelled)
        return Exit::interrupted;
    return check.allSame() && chain.isWhole() ? Exit::ok : Exit::damagedEvidence;
}

} // namespace

Command verifyCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "verify",
        .what = "Hash the imported files again, and tell whether the case trail is whole",
        .readme = {"`verify PROJECT`", "hashes the imported files again and checks the case trail"},
        .examples = {{"verify case.nvp",
                      "exit code 2 when a file has changed or is gone, or the trail is broken"},
                     {"verify case.nvp --format csv > hashes.csv", ""}},
        .arguments = {projectWord(given->project), formatOption(given->format)},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
