#include "app/Trail.h"
#include "app/cli/TrailCommands.h"
#include "db/ReadOnlyConnection.h"
#include "maintenance/SourceCheck.h"
#include "time/DateFormat.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

void write(Session &session, const SourceCheck &check, Format format) {
    const auto writer = makeRowWriter(
        format, session.out,
        {"State", "File", "SizeThen", "SizeNow", "MD5Then", "MD5Now", "SHA256Then", "SHA256Now"});
    for (const CheckedSource &source : check.sources)
        writer->row({std::string(stateWord(source.state)), source.path, source.sizeThen,
                     source.sizeNow, source.MD5Then, source.MD5Now, source.SHA256Then,
                     source.SHA256Now});
    writer->finish();
}

} // namespace

Exit trailCommand(Session &session, const std::string &project, Format format) {
    const auto database = openReadOnly(project);
    const auto writer =
        makeRowWriter(format, session.out,
                      {"Trail_ID", "ActionDateUTC", "Action", "Detail", "RowCount", "FilePath",
                       "FileSize", "MD5Hash", "SHA256Hash", "AppVersion"});
    for (const TrailEntry &entry : CaseTrail(*database).entries())
        writer->row({entry.Trail_ID, isoUtc(entry.ActionDateUTC), entry.Action, entry.Detail,
                     entry.RowCount, entry.FilePath, entry.FileSize, entry.MD5Hash,
                     entry.SHA256Hash, entry.AppVersion});
    writer->finish();
    return Exit::ok;
}

Exit verifyCommand(Session &session, const std::string &project, Format format) {
    const bool notes = session.openForNote(project);
    Program &program = session.program;
    const SourceCheck check =
        verifySources(program.thisClass.ProjectDB.connection(), program.log, session.task);
    session.task.clear();
    write(session, check, format);
    session.err << summaryText(check) << '\n';
    if (notes)
        noteVerify(program, check);
    if (check.cancelled)
        return Exit::interrupted;
    return check.allSame() ? Exit::ok : Exit::damagedEvidence;
}

} // namespace nv::cli
