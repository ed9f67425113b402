#pragma once

#include "app/program/Program.h"
#include "db/schema/Ids.h"
#include "db/trail/CaseTrail.h"
#include "db/trail/TrailChain.h"
#include "import/ImportSummary.h"
#include "maintenance/SourceCheck.h"
#include "reports/exports/Export.h"
#include "reports/report/PublishReport.h"
#include "reports/report/ReportWriter.h"
#include "search/KeywordList.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace nv {

// What the program adds to the case trail of the open project. A failure is told and costs the
// entry only: nobody's work stops because of it. A project that is only read gets none.

/// How a task that is noted ended.
enum class TaskEnd { whole, cancelled, failed };

/// Time and version are filled in.
void noteInTrail(Program &program, TrailEntry entry);
/// The same with a file that the program wrote or read, which is hashed now.
void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file);
/// The same under another name than the one where it lies now.
void noteFileInTrail(Program &program, TrailEntry entry, const std::filesystem::path &file,
                     const std::filesystem::path &name);
/// An entry for the begin of the program's import, safe on the disk before its first row: so that
/// one which is killed leaves a trace. `lastBefore` is the last row's id before it. That it
/// can't be written only the log tells: its end will.
void noteImportBegin(Program &program, std::int64_t lastBefore);
/// An entry for each file that the import of the program's job took up, and for each file and
/// folder that could not be read; before them one for the exact zone and its version, by which
/// local dates were stored, and behind them one for its end. `lastBefore` is the last row's id
/// before it. False, and told, when they couldn't be written.
bool noteImport(Program &program, const ImportSummary &summary, std::int64_t lastBefore = 0);
/// With what the chain of the trail's own entries said before this one.
void noteVerify(Program &program, const SourceCheck &check, const TrailChain &chain);
void noteRebuild(Program &program, std::size_t rebuilt, std::size_t asked, TaskEnd end);
/// The template's file is named; `outcome` is for people.
void noteTemplate(Program &program, const std::filesystem::path &file, const std::string &outcome,
                  std::int64_t rows);
/// Of a finished one: which rows were chosen, and how much of which kind was redacted. None of the
/// words that are redacted stands there.
void noteReport(Program &program, const ReportWriter &report, std::int64_t rows);
/// Of choices for reports that were kept with the project.
void noteReportChoices(Program &program, const ReportWriter &report);
/// `page` is the index page in the folder that is handed over.
void notePublish(Program &program, const std::filesystem::path &page, const Published &published);
/// The first of them, which is all of them for most.
std::string idsInWords(std::span<const std::int32_t> ids);
/// Rows that got or lost a mark of the examiner's.
struct Marking {
    std::string mark = "tick"; ///< or the name of a tag
    bool isSet = true;
    std::int64_t rows = 0;
    std::string which; ///< in words: "row 17", "Visits > 5"
};
void noteMarking(Program &program, const Marking &marking);
/// Something of a tag itself: `detail` says of which and what.
void noteTagChange(Program &program, std::string detail, std::int64_t rows = 0);
/// A note that was written, or taken away when `text` is empty: its length and hash, not its words.
void noteNote(Program &program, UrlId url, const std::string &text);
/// The same of what rows have noted of a tag.
void noteTagNote(Program &program, const std::string &tag, const std::string &text,
                 std::span<const std::int32_t> ids);
/// "note of 5 characters written, SHA-256 ...", "note taken away".
std::string noteInWords(const std::string &text);
/// A search that was asked for as a whole, not each letter of one on its way. The project may be
/// open for reading; it must be one that can be written.
void noteSearch(Program &program, const std::string &text, std::int64_t rows);
/// What the trail says of a list of keywords: its name and hashes.
void addList(TrailEntry &entry, const KeywordList &list);
/// The same of a list of keywords.
void noteKeywords(Program &program, const KeywordList &list, const std::string &found,
                  std::int64_t rows);
/// `place` stands for the name of the file where that says nothing: of the standard output.
void noteExport(Program &program, const Export &job, std::string_view place = {});

} // namespace nv
