#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/trail/CaseTrail.h"
#include "time/DateFormat.h"

#include <SQLiteCpp/Database.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    Format format = Format::table;
};

Exit run(Session &session, const Arguments &arguments) {
    const auto database = openReadOnly(arguments.project);
    const auto writer =
        makeRowWriter(arguments.format, session.out,
                      {"Trail_ID", "ActionDateUTC", "Action", "Detail", "RowCount", "FilePath",
                       "FileSize", "MD5Hash", "SHA256Hash", "AppVersion", "EntryHash"});
    for (const TrailEntry &entry : CaseTrail(*database).entries())
        writer->row({entry.trailID, isoUtc(entry.actionDateUTC), entry.action, entry.detail,
                     entry.rowCount, entry.filePath, entry.fileSize, entry.md5Hash,
                     entry.sha256Hash, entry.appVersion, entry.entryHash});
    writer->finish();
    return Exit::ok;
}

} // namespace

Command trailCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "trail",
            .what = "What was done with the project: when, on which file, by which version",
            .readme = {"`trail PROJECT`", "lists what was imported and verified, with hashes"},
            .examples = {{"trail case.nvp", ""}, {"trail case.nvp --format csv > trail.csv", ""}},
            .arguments = {projectWord(given->project), formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
