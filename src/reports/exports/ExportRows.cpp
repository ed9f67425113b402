#include "reports/exports/ExportRows.h"

#include "base/NoLog.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "reports/events/RecordEvents.h"
#include "reports/exports/ExportWriter.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

namespace nv {

namespace {

ExportColumn columnOf(const ListedColumn &chosen) {
    return {chosen.columnHeader, chosen.keyName, columnOfKey(chosen.keyName),
            chosen.defaultColWidth};
}

/// In forms that hold cells all columns are those of layout "Classic", and the names of tags where
/// the project has tags: what the examiner has marked mustn't get lost. A line of JSON has them as
/// a list.
SelectedColumns allColumns(const Export &job, UrlTable &table) {
    SelectedColumns columns = defaultUrlColumns();
    if (job.format == ExportFormat::jsonl || !table.hasNamedTags())
        return columns;
    const UrlColumnFacts &names = factsOf(UrlColumn::TagNames);
    columns.add({.keyName = std::string(names.key),
                 .defaultColWidth = names.widthTwips,
                 .sqlOrdinalIndex = static_cast<int>(indexOf(names.column)),
                 .columnHeader = std::string(names.header),
                 .hideColumn = false},
                names.key);
    return columns;
}

std::vector<ExportColumn> asked(std::span<const UrlColumn> columns) {
    std::vector<ExportColumn> all;
    all.reserve(columns.size());
    for (const UrlColumn column : columns) {
        const UrlColumnFacts &facts = factsOf(column);
        all.push_back({std::string(facts.header), std::string(facts.key), column, 0});
    }
    return all;
}

/// A project of an earlier build lacks columns that came later, and has events all the same.
std::vector<ExportColumn> columnsOfEvents(UrlTable &table) {
    const auto all = eventColumns();
    NoLog nobody;
    table.showColumns(all);
    const bool hasAll = succeeds(nobody, Severity::Low, "ExportColumns()", kNotSerious,
                                 [&table] { table.checkColumns(); });
    return asked(hasAll ? all : all.first(all.size() - kLaterEventColumns));
}

std::vector<ExportColumn> columnsOf(const Export &job, UrlTable &table) {
    std::vector<ExportColumn> columns;
    switch (factsOf(job.format).content) {
    case ExportContent::cells:
        break;
    case ExportContent::contents:
        return columns;
    case ExportContent::events:
    case ExportContent::places:
        return columnsOfEvents(table);
    }
    const SelectedColumns chosen =
        job.exportAllColumns ? allColumns(job, table) : job.selectedColumns;
    for (const ListedColumn &column : chosen)
        columns.push_back(columnOf(column));
    return columns;
}

void selectAll(Export &job, const UrlTable &table) {
    job.selectedURLs.clear();
    for (std::size_t row = 1; row <= table.rowCount(); ++row)
        job.selectedURLs.add({row});
}

std::unique_ptr<ExportWriter> makeWriter(Export &job, const std::filesystem::path &scratch) {
    switch (job.format) {
    case ExportFormat::csv:
        return makeCsvWriter(job);
    case ExportFormat::jsonl:
        return makeJsonLinesWriter(job);
    case ExportFormat::xlsx:
        return makeXlsxWriter(job, scratch);
    case ExportFormat::warc:
        return makeWarcWriter(job);
    case ExportFormat::timesketch:
    case ExportFormat::timesketchCsv:
        return makeTimesketchWriter(job);
    case ExportFormat::body:
        return makeBodyWriter(job);
    case ExportFormat::l2tcsv:
        return makeL2tWriter(job);
    case ExportFormat::kml:
        return makeKmlWriter(job);
    case ExportFormat::delimited:
        break;
    }
    return makeDelimitedWriter(job);
}

/// Rows are read with what they need at once.
void showColumns(UrlTable &table, const std::vector<ExportColumn> &columns, ExportFormat format) {
    std::vector<UrlColumn> needed;
    for (const ExportColumn &column : columns)
        if (column.column)
            needed.push_back(*column.column);
    // A line of JSON names event, time and source whatever columns were chosen.
    if (format == ExportFormat::jsonl)
        needed.insert(needed.end(),
                      {UrlColumn::Action, UrlColumn::ActionDateUtc, UrlColumn::Value,
                       UrlColumn::CacheType, UrlColumn::WebpageTitle, UrlColumn::TagNames});
    table.showColumns(needed);
}

void showProgress(TaskMonitor &task, std::int64_t row, std::size_t total) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = "Collecting row data...";
    step.topCounter = row;
    step.topTotal = static_cast<std::int64_t>(total);
    step.bottomMessage = fmt::format("Exporting {} of {}", row, total);
    task.show(step);
}

} // namespace

ExportEnd exportRows(Export &job, UrlTable &table, const std::filesystem::path &scratch,
                     TaskMonitor &task) {
    task.describe({"EXPORTING URLS", "", "", ""});
    job.counts = {};
    job.exportText.clear();
    const auto columns = columnsOf(job, table);
    showColumns(table, columns, job.format);
    // Before anything is written: a column that the project lacks would be empty in every row.
    table.checkColumns();
    if (job.exportAllRows)
        selectAll(job, table);
    const auto writer = makeWriter(job, scratch);
    ExportCells cells(table);
    writer->begin(columns);
    const std::size_t total = job.selectedURLs.count();
    for (const ExportedRow &row : job.selectedURLs) {
        if (!task.advance(static_cast<double>(job.counts.rows) / static_cast<double>(total))) {
            job.exportText.clear();
            job.abandon();
            return ExportEnd::cancelled;
        }
        writer->row(cells, row.rowNumber - 1);
        if (factsOf(job.format).content != ExportContent::contents &&
            !cells.isRead(row.rowNumber - 1))
            noteUnread(job.counts.unread, table.idAt(row.rowNumber - 1));
        showProgress(task, ++job.counts.rows, total);
    }
    writer->finish();
    return ExportEnd::exported;
}

void selectTagged(Export &job, const UrlTable &table, SQLite::Database &project) {
    // One statement instead of reading a million rows for their ticks.
    std::unordered_set<std::int64_t> tagged;
    SQLite::Statement ids(project, "SELECT URL_ID FROM URLs WHERE Tagged <> 0");
    while (ids.executeStep())
        tagged.insert(ids.getColumn(0).getInt64());
    job.selectedURLs.clear();
    std::size_t row = 0;
    for (const std::int32_t id : table.ids()) {
        ++row;
        if (tagged.contains(id))
            job.selectedURLs.add({row});
    }
}

std::vector<std::string> notesOf(const Export &job) {
    const ExportCounts &counts = job.counts;
    std::vector<std::string> notes;
    if (!counts.unread.empty())
        notes.push_back(noteOf(counts.unread) +
                        (factsOf(job.format).content == ExportContent::cells
                             ? ". They stand in the file with their id only."
                             : ". They aren't in the file."));
    const auto note = [&notes](std::int64_t count, std::string_view what) {
        if (count > 0)
            notes.push_back(fmt::format("{} {}", count, what));
    };
    note(counts.charactersBeyond,
         "characters can't be held by Windows-1252: the file is in UTF-8, with its mark in front.");
    note(counts.cellsCut, "cells were cut at 32,767 characters: a sheet's cell holds no more.");
    note(counts.cellsGuarded, "cells got an apostrophe in front.");
    if (counts.sheets > 1)
        notes.push_back(
            fmt::format("The rows go on over {} sheets: one holds no more.", counts.sheets));
    const bool isOfEvents = factsOf(job.format).content == ExportContent::events;
    if (isOfEvents)
        notes.push_back(fmt::format("The file has {}: one for each date of a row.",
                                    counted(static_cast<std::uint64_t>(counts.events), "event")));
    note(counts.rowsWithoutDate,
         isOfEvents ? "rows have no date, and aren't in the file."
                    : "events have no date: \"datetime\" and \"timestamp\" are null.");
    note(counts.eventsTooEarly, "events before 1970 aren't in the file: it can't say so.");
    note(counts.signsReplaced, "signs that part fields of this form were replaced in texts.");
    if (factsOf(job.format).content == ExportContent::places)
        notes.push_back(fmt::format(
            "The file has {} of {}.", counted(static_cast<std::uint64_t>(counts.events), "place"),
            counted(static_cast<std::uint64_t>(counts.rowsWithPlace), "row")));
    note(counts.archived.others,
         "rows have no cached content that is left, and aren't in the file.");
    note(counts.archived.repeated, "answers have the content of an earlier one and refer to it.");
    note(counts.archived.bodyless, "answers stand without their content, which is gone.");
    note(counts.archived.undated, "records have no date: 1970-01-01 stands for it.");
    return notes;
}

} // namespace nv
