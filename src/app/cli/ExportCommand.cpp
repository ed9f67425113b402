#include "app/Project.h"
#include "app/Trail.h"
#include "app/cli/ExportCommands.h"
#include "app/cli/FilterCommands.h"
#include "app/cli/LoadedTable.h"
#include "app/cli/OutputPath.h"
#include "base/Files.h"
#include "base/Text.h"
#include "reports/ExportRows.h"

#include <fmt/ranges.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

ExportFormat formatOf(const ExportArguments &arguments) {
    if (arguments.format)
        return *arguments.format;
    const std::string extension = toLower(textOf(fs::path(arguments.file).extension()));
    for (const ExportFormat format : {ExportFormat::csv, ExportFormat::jsonl, ExportFormat::xlsx})
        if (extension == "." + std::string(extensionOf(format)))
            return format;
    return ExportFormat::delimited;
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
        const auto column = columnOfKey(key);
        if (column)
            text += fmt::format("{}|{};", factsOf(*column).header, factsOf(*column).key);
        else if (equalsNoCase(key, kIndexColumn))
            text += "Index|Index;";
        else
            throw UsageError(fmt::format("there is no column \"{}\": Index, {} were expected", key,
                                         fmt::join(columnKeys(), ", ")));
    }
    return columnsFromString(text);
}

ExportClass jobOf(const ExportArguments &arguments) {
    ExportClass job;
    job.format = formatOf(arguments);
    job.delimiter = delimiterOf(arguments.delimiter);
    job.ExportAllRows = !arguments.tagged;
    job.ExportAllColumns = arguments.columns.empty();
    job.SelectedColumns = columnsOf(arguments.columns);
    job.guardFormulas = arguments.guardFormulas;
    return job;
}

bool toStandardOutput(const ExportArguments &arguments) {
    return arguments.file == "-";
}

void checkTarget(const ExportArguments &arguments, ThisClass &state) {
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
std::string closingLine(const ExportClass &job) {
    if (job.format == ExportFormat::delimited)
        return fmt::format("{} written as text delimited by {}\n",
                           counted(static_cast<std::uint64_t>(job.counts.rows), "row"),
                           job.delimiter == "\t" ? "tabs" : '"' + job.delimiter + '"');
    return fmt::format("{} written as {}\n",
                       counted(static_cast<std::uint64_t>(job.counts.rows), "row"),
                       extensionOf(job.format));
}

} // namespace

Exit exportCommand(Session &session, const ExportArguments &arguments) {
    ExportClass job = jobOf(arguments);
    session.program.thisClass.Filters = filtersFrom(arguments.filter);
    const bool notes = session.openForNote(arguments.project);
    ThisClass &state = session.program.thisClass;
    checkTarget(arguments, state);
    job.OutputFilePath = toStandardOutput(arguments) ? session.scratch() / "standard-output"
                                                     : fs::path(arguments.file);
    ExportEnd end = ExportEnd::cancelled;
    {
        SQLite::Database &project = session.program.thisClass.ProjectDB.connection();
        UrlTable table(project, session.program.log, state.GMTZone);
        const RowChoice choice{arguments.query, !arguments.host.empty(), arguments.host};
        if (loadTable(session, choice, table) == LoadResult::Loaded) {
            if (arguments.tagged)
                selectTagged(job, table, project);
            end = exportRows(job, table, session.scratch(), session.task);
            if (end == ExportEnd::exported && toStandardOutput(arguments))
                handOver(session, job.OutputFilePath);
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
    for (const std::string &note : notesOf(job.counts))
        session.err << note << '\n';
    return job.counts.unread.empty() ? Exit::ok : Exit::rowsNotRead;
}

} // namespace nv::cli
