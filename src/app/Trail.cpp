#include "app/Trail.h"

#include "app/Messages.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/ReadOnlyConnection.h"
#include "db/WriteBatch.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

namespace nv {

namespace {

constexpr const char *kProcedure = "MainBAS.CaseTrail()";

void complete(const Program &program, TrailEntry &entry) {
    entry.ActionDateUTC = Date::fromTimePoint(program.around.clock.now());
    entry.AppVersion = program.thisClass.AppVersion;
}

TrailEntry entryOf(const ArtefactResult &artefact) {
    TrailEntry entry;
    entry.Action = "Import";
    entry.Detail = fmt::format("{}: {}", artefact.readerKey, stateWord(artefact.state));
    if (!artefact.reason.empty())
        entry.Detail += fmt::format(" ({})", artefact.reason);
    if (artefact.rowsLost > 0)
        entry.Detail += fmt::format(", {} not stored", counted(artefact.rowsLost, "record"));
    if (artefact.notReached > 0)
        entry.Detail +=
            fmt::format(", {} not reached", counted(artefact.notReached, "entry", "entries"));
    if (!artefact.warning.empty())
        entry.Detail += "; " + artefact.warning;
    entry.FilePath = textOf(artefact.path);
    entry.FileSize = static_cast<std::int64_t>(artefact.FileSize);
    entry.MD5Hash = artefact.MD5Hash;
    entry.SHA256Hash = artefact.SHA256Hash;
    entry.RowCount = static_cast<std::int64_t>(artefact.rowsSaved);
    return entry;
}

/// What was done is done, but nobody could prove it later.
void tellWhenMissing(Program &program, const std::optional<std::string> &failure) {
    if (failure)
        program.around.examiner.tell(messages::trailNotWritten(*failure));
}

/// No entry "Import": there is nothing that a verification could compare.
TrailEntry entryOf(const UnreadPlace &place) {
    TrailEntry entry;
    entry.Action = "Not Readable";
    entry.Detail = place.reason;
    entry.FilePath = textOf(place.path);
    return entry;
}

} // namespace

void noteInTrail(Program &program, TrailEntry entry) {
    if (isReadOnly(program.thisClass.ProjectDB.connection()))
        return;
    tellWhenMissing(program, failureOf(program.log, kProcedure, [&] {
                        complete(program, entry);
                        CaseTrail(program.thisClass.ProjectDB.connection()).add(entry);
                    }));
}

void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file) {
    // Where the program was started is known to nobody later.
    std::error_code none;
    const std::filesystem::path whole = std::filesystem::absolute(file, none);
    noteFileInTrail(program, std::move(entry), file, none ? file : whole);
}

void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file,
                     const std::filesystem::path &name) {
    logFailureOf(program.log, kProcedure, [&] {
        entry.FilePath = textOf(name);
        if (const auto hashes = hashesOfFile(file)) {
            entry.FileSize = static_cast<std::int64_t>(hashes->size);
            entry.MD5Hash = hashes->MD5;
            entry.SHA256Hash = hashes->SHA256;
        }
    });
    noteInTrail(program, std::move(entry));
}

void noteImport(Program &program, const ImportSummary &summary) {
    const auto failure = failureOf(program.log, kProcedure, [&] {
        SQLite::Database &project = program.thisClass.ProjectDB.connection();
        WriteBatch batch(project);
        CaseTrail trail(project);
        if (const TimeZoneClass &zone = program.thisClass.GMTZone; zone.exact) {
            TrailEntry entry;
            entry.Action = "Time Zone";
            entry.Detail = fmt::format("Local dates of the import: {}", exactZoneText(zone));
            complete(program, entry);
            trail.add(entry);
        }
        for (const ArtefactResult &artefact : summary.artefacts) {
            if (artefact.state == ArtefactState::notReached)
                continue;
            TrailEntry entry = entryOf(artefact);
            complete(program, entry);
            trail.add(entry);
            batch.written();
        }
        for (const UnreadPlace &place : summary.gaps.unreadable) {
            TrailEntry entry = entryOf(place);
            complete(program, entry);
            trail.add(entry);
            batch.written();
        }
        batch.commit();
    });
    tellWhenMissing(program, failure);
}

void noteVerify(Program &program, const SourceCheck &check) {
    TrailEntry entry;
    entry.Action = "Verify";
    entry.Detail = summaryText(check);
    noteInTrail(program, std::move(entry));
}

void noteRebuild(Program &program, std::size_t rebuilt, std::size_t asked, TaskEnd end) {
    TrailEntry entry;
    entry.Action = "Rebuild";
    const std::string_view how = end == TaskEnd::cancelled ? ", then cancelled"
                                 : end == TaskEnd::failed  ? ", then a failure ended it"
                                                           : "";
    entry.Detail = fmt::format("{} of {} rebuilt{}", rebuilt, counted(asked, "page"), how);
    entry.RowCount = static_cast<std::int64_t>(rebuilt);
    noteInTrail(program, std::move(entry));
}

void noteTemplate(Program &program, const std::filesystem::path &file, const std::string &outcome,
                  std::int64_t rows) {
    TrailEntry entry;
    entry.Action = "Template";
    entry.Detail = outcome;
    entry.RowCount = rows;
    noteFileInTrail(program, std::move(entry), file);
}

/// The report lies in the scratch folder, which the next start empties: a path in there would name
/// nothing that anybody finds later. Its hashes do, since publishing copies byte by byte.
void noteReport(Program &program, const ReportClass &report, std::int64_t rows) {
    TrailEntry entry;
    entry.Action = "Report";
    entry.Detail = fmt::format("{} report of {}; in the program's scratch folder until it is "
                               "published, with the same hashes",
                               report.ReportType == 0 ? "Graphical" : "Tabular",
                               counted(static_cast<std::uint64_t>(rows), "row"));
    entry.RowCount = rows;
    noteFileInTrail(program, std::move(entry), report.ReportFilePath,
                    report.ReportFilePath.filename());
}

void notePublish(Program &program, const std::filesystem::path &page, const Published &published) {
    TrailEntry entry;
    entry.Action = "Publish";
    entry.Detail = fmt::format("{} copied to {}", counted(published.files, "file"),
                               textOf(page.parent_path()));
    noteFileInTrail(program, std::move(entry), page);
}

void noteExport(Program &program, const ExportClass &job, std::string_view place) {
    TrailEntry entry;
    entry.Action = "Export";
    entry.Detail = fmt::format("{} exported as {}",
                               counted(static_cast<std::uint64_t>(job.counts.rows), "row"),
                               extensionOf(job.format));
    entry.RowCount = job.counts.rows;
    if (place.empty())
        noteFileInTrail(program, std::move(entry), job.OutputFilePath);
    else
        noteFileInTrail(program, std::move(entry), job.OutputFilePath, place);
}

} // namespace nv
