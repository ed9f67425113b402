#include "app/jobs/Trail.h"

#include "app/jobs/ThumbnailJob.h"
#include "app/messages/TrailMessages.h"
#include "app/project/HeldIndex.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/Connection.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/WriteBatch.h"
#include "import/ImportTrail.h"
#include "reports/case/Redactor.h"
#include "time/ExactZone.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr const char *kProcedure = "MainBAS.CaseTrail()";

void complete(const Program &program, TrailEntry &entry) {
    entry.actionDateUTC = Date::fromTimePoint(program.around.clock.now());
    entry.appVersion = program.state.appVersion;
}

void add(Program &program, SQLite::Database &project, TrailEntry entry) {
    complete(program, entry);
    HeldIndex index(program, project);
    CaseTrail(project).add(entry);
    index.keep();
}

std::string_view typeOf(const ReportWriter &report) {
    return report.reportType == kCaseType        ? "Case"
           : report.reportType == kGraphicalType ? "Graphical"
                                                 : "Tabular";
}

/// How much of which kind was chosen: "leave out 1 host; blur 2 people".
std::string redactionsIn(const CaseOptions &options) {
    std::string text;
    for (const auto &[way, words] :
         {std::pair(RedactionWay::leaveOut, "leave out"), std::pair(RedactionWay::blur, "blur")}) {
        RedactionRules rules;
        for (const RedactionRule &rule : options.redactions)
            if (rule.way == way)
                rules.push_back(rule);
        if (!rules.empty())
            text += fmt::format("{}{} {}", text.empty() ? "" : "; ", words, chosenText(rules));
    }
    return text.empty() ? "nothing redacted" : "redactions chosen: " + text;
}

/// What was chosen, and what came of it.
std::string redactedIn(const ReportWriter &report) {
    std::string text = redactionsIn(report.caseOptions);
    if (report.caseOptions.redactions.empty())
        return text;
    const std::string done = redactedText(report.redacted);
    text += fmt::format(" ({}", done.empty() ? "nothing was redacted" : done);
    if (!report.unmetRedactions.empty())
        text += fmt::format("; nothing fits {}", chosenText(report.unmetRedactions));
    return text + ")";
}

/// In words, but none that a redaction keeps secret: who gets the trail gets them too.
std::string selectionIn(const ReportWriter &report) {
    const CaseOptions &options = report.caseOptions;
    const std::string chosen = !options.content.empty() ? options.content
                               : report.includeAll      ? "all rows"
                                                        : "rows with a tick or a chosen tag";
    return Redactor(options.redactions).text(chosen);
}

/// What was done is done, but nobody could prove it later.
void tellWhenMissing(Program &program, const std::optional<std::string> &failure) {
    if (failure)
        program.around.examiner.tell(messages::trailNotWritten(*failure));
}

/// Of those that only look, and have the project open for reading: over a connection of its own,
/// which leaves all but the trail as it is.
void noteLook(Program &program, TrailEntry entry) {
    tellWhenMissing(program, failureOf(program.log, kProcedure, [&] {
                        const auto project =
                            connectToProject(program.state.projectDBPath, Access::note);
                        add(program, *project, std::move(entry));
                    }));
}

void addHashes(Program &program, TrailEntry &entry, const std::filesystem::path &file,
               const std::filesystem::path &name) {
    logFailureOf(program.log, kProcedure, [&] {
        entry.filePath = textOf(name);
        if (const auto hashes = hashesOfFile(file)) {
            entry.fileSize = static_cast<std::int64_t>(hashes->size);
            entry.md5Hash = hashes->md5;
            entry.sha256Hash = hashes->sha256;
        }
    });
}

/// Where the program was started is known to nobody later.
std::filesystem::path wholeName(const std::filesystem::path &file) {
    std::error_code none;
    const std::filesystem::path whole = std::filesystem::absolute(file, none);
    return none ? file : whole;
}

/// Empty without any.
std::filesystem::path folderAboveAll(const HistoryFiles &files) {
    std::filesystem::path folder;
    for (const HistoryFile &file : files) {
        const std::filesystem::path own = file.fullPath.parent_path();
        if (folder.empty())
            folder = own;
        std::filesystem::path shared;
        const auto end = std::ranges::mismatch(folder, own).in1;
        for (auto part = folder.begin(); part != end; ++part)
            shared /= *part;
        folder = shared;
    }
    return folder;
}

} // namespace

void noteInTrail(Program &program, TrailEntry entry) {
    if (isReadOnly(program.state.projectDB.connection()))
        return;
    tellWhenMissing(program, failureOf(program.log, kProcedure, [&] {
                        add(program, program.state.projectDB.connection(), std::move(entry));
                    }));
}

void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file) {
    noteFileInTrail(program, std::move(entry), file, wholeName(file));
}

void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file,
                     const std::filesystem::path &name) {
    addHashes(program, entry, file, name);
    noteInTrail(program, std::move(entry));
}

void noteImportBegin(Program &program, std::int64_t lastBefore) {
    logFailureOf(program.log, kProcedure, [&] {
        SQLite::Database &project = program.state.projectDB.connection();
        const HistoryFiles &files = program.import.historyFiles;
        TrailEntry entry =
            trailEntry(ImportBegin{files.count(), lastBefore}, folderAboveAll(files));
        complete(program, entry);
        CaseTrail(project).add(entry);
        project.tryExec("PRAGMA wal_checkpoint(PASSIVE)"); // commits alone reach the disk later
    });
}

bool noteImport(Program &program, const ImportSummary &summary, std::int64_t lastBefore) {
    const auto failure = failureOf(program.log, kProcedure, [&] {
        SQLite::Database &project = program.state.projectDB.connection();
        WriteBatch batch(project);
        CaseTrail trail(project);
        const auto add = [&](TrailEntry entry) {
            complete(program, entry);
            trail.add(entry);
            batch.written();
        };
        if (const TimeZone &zone = program.state.gmtZone; zone.exact) {
            TrailEntry entry;
            entry.action = "Time Zone";
            entry.detail = fmt::format("Local dates of the import: {}", exactZoneText(zone));
            add(entry);
        }
        for (const ArtefactResult &artefact : summary.artefacts)
            if (artefact.state != ArtefactState::notReached) {
                add(trailEntry(artefact, program.import));
                for (const FileBeside &file : artefact.beside)
                    add(trailEntry(file, artefact));
            }
        for (const UnreadPlace &place : summary.gaps.unreadable)
            add(trailEntry(place));
        add(trailEntry(importEnd(summary, lastBefore, lastRow(program))));
        batch.commit();
    });
    tellWhenMissing(program, failure);
    return !failure;
}

void noteVerify(Program &program, const SourceCheck &check, const TrailChain &chain) {
    TrailEntry entry;
    entry.action = "Verify";
    entry.detail = summaryText(check) + ' ' + chainText(chain);
    noteInTrail(program, std::move(entry));
}

std::string idsInWords(std::span<const std::int32_t> ids) {
    constexpr std::size_t kTold = 20;
    const auto told = ids.first(std::min(ids.size(), kTold));
    return fmt::format("URL_ID {}{}", fmt::join(told, ", "), ids.size() > kTold ? " ..." : "");
}

void noteMarking(Program &program, const Marking &marking) {
    TrailEntry entry;
    entry.action = "Tag";
    entry.detail =
        fmt::format("{} {} {}: {}", marking.mark, marking.isSet ? "set on" : "taken from",
                    counted(static_cast<std::uint64_t>(marking.rows), "row"), marking.which);
    entry.rowCount = marking.rows;
    noteInTrail(program, std::move(entry));
}

void noteTagChange(Program &program, std::string detail, std::int64_t rows) {
    TrailEntry entry;
    entry.action = "Tag";
    entry.detail = std::move(detail);
    entry.rowCount = rows;
    noteInTrail(program, std::move(entry));
}

void noteNote(Program &program, UrlId url, const std::string &text) {
    TrailEntry entry;
    entry.action = "Note";
    entry.rowCount = 1;
    entry.detail = fmt::format("row {}: {}", url, noteInWords(text));
    noteInTrail(program, std::move(entry));
}

void noteTagNote(Program &program, const std::string &tag, const std::string &text,
                 std::span<const std::int32_t> ids) {
    TrailEntry entry;
    entry.action = "Note";
    entry.rowCount = static_cast<std::int64_t>(ids.size());
    entry.detail = fmt::format("tag \"{}\" of {}: {}: {}", tag, counted(ids.size(), "row"),
                               noteInWords(text), idsInWords(ids));
    noteInTrail(program, std::move(entry));
}

std::string noteInWords(const std::string &text) {
    if (text.empty())
        return "note taken away";
    Digest digest(DigestAlgorithm::sha256);
    digest.add(text);
    return fmt::format("note of {} written, SHA-256 {}", counted(charCount(text), "character"),
                       digest.takeHex());
}

void noteSearch(Program &program, const std::string &text, std::int64_t rows) {
    TrailEntry entry;
    entry.action = "Search";
    entry.detail =
        fmt::format("{} found by \"{}\"", counted(static_cast<std::uint64_t>(rows), "row"), text);
    entry.rowCount = rows;
    noteLook(program, std::move(entry));
}

/// A list that came through a pipe can't be read again.
void addList(TrailEntry &entry, const KeywordList &list) {
    entry.action = "Keywords";
    entry.filePath = list.file;
    entry.fileSize = static_cast<std::int64_t>(list.hashes.size);
    entry.md5Hash = list.hashes.md5;
    entry.sha256Hash = list.hashes.sha256;
}

void noteKeywords(Program &program, const KeywordList &list, const std::string &found,
                  std::int64_t rows) {
    TrailEntry entry;
    addList(entry, list);
    entry.detail = found;
    entry.rowCount = rows;
    noteLook(program, std::move(entry));
}

void noteRebuild(Program &program, std::size_t rebuilt, std::size_t asked, TaskEnd end) {
    TrailEntry entry;
    entry.action = "Rebuild";
    const std::string_view how = end == TaskEnd::cancelled ? ", then cancelled"
                                 : end == TaskEnd::failed  ? ", then a failure ended it"
                                                           : "";
    entry.detail = fmt::format("{} of {} rebuilt{}", rebuilt, counted(asked, "page"), how);
    entry.rowCount = static_cast<std::int64_t>(rebuilt);
    noteInTrail(program, std::move(entry));
}

void noteTemplate(Program &program, const std::filesystem::path &file, const std::string &outcome,
                  std::int64_t rows) {
    TrailEntry entry;
    entry.action = "Template";
    entry.detail = outcome;
    entry.rowCount = rows;
    noteFileInTrail(program, std::move(entry), file);
}

/// The report lies in the scratch folder, which the next start empties: a path in there would name
/// nothing that anybody finds later. Its hashes do, since publishing copies byte by byte.
void noteReport(Program &program, const ReportWriter &report, std::int64_t rows) {
    TrailEntry entry;
    entry.action = "Report";
    entry.detail =
        fmt::format("{} report of {} ({}); ", typeOf(report),
                    counted(static_cast<std::uint64_t>(rows), "row"), selectionIn(report));
    // The other types show all.
    if (report.reportType == kCaseType)
        entry.detail += redactedIn(report) + "; ";
    entry.detail += "in the program's scratch folder until it is published, with the same hashes";
    entry.rowCount = rows;
    noteFileInTrail(program, std::move(entry), report.reportFilePath,
                    report.reportFilePath.filename());
}

void noteReportChoices(Program &program, const ReportWriter &report) {
    TrailEntry entry;
    entry.action = "Report";
    entry.detail = "Choices for reports kept with the project: " + redactionsIn(report.caseOptions);
    noteInTrail(program, std::move(entry));
}

void notePublish(Program &program, const std::filesystem::path &page, const Published &published) {
    TrailEntry entry;
    entry.action = "Publish";
    entry.detail = fmt::format("{} copied to {}", counted(published.files, "file"),
                               textOf(page.parent_path()));
    noteFileInTrail(program, std::move(entry), page);
}

void noteExport(Program &program, const Export &job, std::string_view place) {
    TrailEntry entry;
    entry.action = "Export";
    entry.detail = fmt::format("{} exported as {}",
                               counted(static_cast<std::uint64_t>(job.counts.rows), "row"),
                               factsOf(job.format).word);
    entry.rowCount = job.counts.rows;
    if (place.empty())
        noteFileInTrail(program, std::move(entry), job.outputFilePath);
    else
        noteFileInTrail(program, std::move(entry), job.outputFilePath, place);
}

} // namespace nv
