#include "app/jobs/ArchiveSource.h"
#include "app/jobs/RecordTools.h"
#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/HashSetRows.h"
#include "cli/LoadedTable.h"
#include "cli/NamedTagRows.h"
#include "cli/OutputPath.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "reports/exports/ExportRows.h"

#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::string file;                   ///< "-" for the standard output
    std::optional<ExportFormat> format; ///< nothing: by the file's extension
    std::string delimiter = "|";        ///< or "," ";" "tab"
    std::vector<std::string> columns;   ///< keys; empty for all
    RowsAsked rows;
    std::vector<std::string> tags; ///< names; none for all rows
    HashSetsAsked hashSets;
    FieldNames names = FieldNames::people;
    bool tagged = false;
    bool guardFormulas = false;
    bool overwrite = false;
};

ExportFormat formatOf(const Arguments &arguments) {
    if (arguments.format == ExportFormat::timesketch &&
        formatOfName(arguments.file) == ExportFormat::csv)
        return ExportFormat::timesketchCsv;
    if (arguments.format)
        return *arguments.format;
    return formatOfName(arguments.file).value_or(ExportFormat::delimited);
}

std::vector<std::pair<std::string, ExportFormat>> formatChoices() {
    std::vector<std::pair<std::string, ExportFormat>> choices;
    choices.reserve(exportFormats().size());
    for (const ExportFormatFacts &facts : exportFormats())
        choices.emplace_back(facts.word, facts.format);
    return choices;
}

std::string delimiterOf(const std::string &word) {
    if (equalsNoCase(word, "tab") || word == "\\t" || word == "\t")
        return "\t";
    if (word != "|" && word != "," && word != ";")
        throw UsageError(fmt::format("--delimiter: | , ; or tab were expected, not {}", word));
    return word;
}

SelectedColumns columnsOf(const std::vector<std::string> &keys) {
    std::string text;
    for (const std::string &key : keys) {
        if (equalsNoCase(key, kIndexColumn)) {
            text += "Index|Index;";
            continue;
        }
        const UrlColumnFacts &facts = factsOf(columnAsked(key));
        text += fmt::format("{}|{};", facts.header, facts.key);
    }
    return columnsFromString(text);
}

Export jobOf(const Arguments &arguments) {
    Export job;
    job.format = formatOf(arguments);
    job.names = arguments.names;
    job.delimiter = delimiterOf(arguments.delimiter);
    job.exportAllRows = !arguments.tagged;
    job.exportAllColumns = arguments.columns.empty();
    job.selectedColumns = columnsOf(arguments.columns);
    job.guardFormulas = arguments.guardFormulas;
    if (factsOf(job.format).content != ExportContent::cells && !arguments.columns.empty())
        throw UsageError(
            fmt::format("--columns: {} has no columns of the table", factsOf(job.format).word));
    return job;
}

bool toStandardOutput(const Arguments &arguments) {
    return arguments.file == "-";
}

void checkTarget(const Arguments &arguments, ProgramState &state) {
    if (toStandardOutput(arguments))
        return;
    refuseUntouchable(arguments.file, state);
    if (fs::exists(fs::path(arguments.file)) && !arguments.overwrite)
        throw UsageError(
            fmt::format("\"{}\" is there already; --overwrite replaces it", arguments.file));
}

/// A file that the writer left in the scratch folder goes to the standard output.
void handOver(Session &session, const fs::path &file) {
    readInBlocks(file, [&session](std::string_view block, std::uint64_t) {
        session.out.write(block.data(), static_cast<std::streamsize>(block.size()));
        return session.out.good();
    });
    session.flushOutput();
}

/// Which form it is isn't plain when the extension has none.
std::string closingLine(const Export &job) {
    if (job.format == ExportFormat::delimited)
        return fmt::format("{} written as text delimited by {}\n",
                           counted(static_cast<std::uint64_t>(job.counts.rows), "row"),
                           job.delimiter == "\t" ? "tabs" : '"' + job.delimiter + '"');
    return fmt::format("{} written as {}\n",
                       counted(static_cast<std::uint64_t>(job.counts.rows), "row"),
                       factsOf(job.format).word);
}

Exit run(Session &session, const Arguments &arguments) {
    Export job = jobOf(arguments);
    session.program.state.filters = filtersFrom(arguments.rows.filter);
    const bool notes = session.openForNote(arguments.project);
    ProgramState &state = session.program.state;
    checkTarget(arguments, state);
    job.outputFilePath = toStandardOutput(arguments) ? session.scratch() / "standard-output"
                                                     : fs::path(arguments.file);
    ExportEnd end = ExportEnd::cancelled;
    {
        SQLite::Database &project = session.program.state.projectDB.connection();
        UrlTable table(project, session.program.log, state.gmtZone);
        limitToTags(session, arguments.tags, table);
        limitToHashSets(session, arguments.hashSets, table);
        if (loadTable(session, choiceOf(arguments.rows), table) == LoadResult::Loaded) {
            if (arguments.tagged)
                selectTagged(job, table, project);
            const RecordTools tools(session.program, session.task, session.scratch());
            const WarcSource contents = warcSource(session.program, tools);
            job.contents = &contents;
            end = exportRows(job, table, session.scratch(), session.task);
            if (end == ExportEnd::exported && toStandardOutput(arguments))
                handOver(session, job.outputFilePath);
            if (end == ExportEnd::exported && notes)
                noteExport(session.program, job,
                           toStandardOutput(arguments) ? "standard output" : "");
        }
    }
    session.task.clear();
    closeProject(session.program);
    if (end == ExportEnd::cancelled)
        return Exit::interrupted;
    session.err << closingLine(job);
    for (const std::string &note : notesOf(job))
        session.err << note << '\n';
    return job.counts.unread.empty() ? Exit::ok : Exit::rowsNotRead;
}

} // namespace

Command exportCommand() {
    const auto given = std::make_shared<Arguments>();
    Command command{
        .name = "export",
        .what = "Write the rows of the table to a file for other programs",
        .readme = {"`export PROJECT FILE`",
                   "writes rows as csv, jsonl, xlsx or delimited text, events for "
                   "Timesketch, mactime and log2timeline, places as KML, and "
                   "cached contents as a web archive (WARC)"},
        .examples = {{"export case.nvp rows.xlsx", "the form follows from the name"},
                     {"export case.nvp events.jsonl --format timesketch", "every date as an event"},
                     {"export case.nvp cache.warc.gz --tagged",
                      "cached contents of rows with the tick, as a web archive"}},
        .arguments =
            {projectWord(given->project),
             value("FILE", given->file, "The file to write; - is the standard output").required(),
             choice<ExportFormat>(
                 "--format", given->format, formatChoices(),
                 "delimited, csv, jsonl, xlsx, warc (cached contents), timesketch, "
                 "timesketch-csv, body, l2tcsv (events) or kml (default: by the "
                 "extension of FILE)"),
             value("--delimiter", given->delimiter, "Of delimited: | , ; or tab").showingDefault(),
             value("--columns", given->columns,
                   "Index or columns, separated by commas (default: all)")
                 .separatedByCommas(),
             queryOption(given->rows), hostOption(given->rows), filterOption(given->rows),
             namesOption(given->names), flag("--tagged", given->tagged, "Only rows with the tick"),
             tagsOption(given->tags),
             flag("--guard-formulas", given->guardFormulas,
                  "Of csv: an apostrophe before texts that a spreadsheet takes for a formula"),
             flag("--overwrite", given->overwrite, "Replace FILE when it is there")},
        .run = [given](Session &session) { return run(session, *given); }};
    addHashSetOptions(command.arguments, given->hashSets);
    return command;
}

} // namespace nv::cli
