#include "app/project/Project.h"
#include "base/TextRows.h"
#include "cli/Commands.h"
#include "cli/ReadProject.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/project/ProjectFields.h"
#include "db/records/RecordFacts.h"
#include "db/records/RecordStore.h"
#include "db/sql/BindId.h"
#include "db/sql/Connection.h"
#include "readers/CachedBody.h"
#include "reports/exports/FactsJson.h"
#include "views/record/HttpHeaders.h"
#include "views/record/Properties.h"
#include "views/record/RecordCard.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    bool card = false; ///< what is asked first, in words
    Format format = Format::table;
};

/// A line a property, but HTTP headers one below the other.
void showProperty(std::ostream &out, std::string_view name, const std::string &value) {
    std::vector<std::string> lines = {value};
    if (name == "MetaData")
        lines = httpHeaderLines(value);
    if (lines.empty())
        lines.emplace_back();
    for (const std::string &line : lines) {
        out << fmt::format("{:<24}{}\n", name, printable(line));
        name = {};
    }
}

/// The project stays unopened: it may lie where nothing can be written.
std::optional<std::filesystem::path> pictureOf(Session &session, const std::string &project,
                                               UrlId urlId, const std::string &root) {
    Program &program = session.program;
    const auto database = connectToProject(project, Access::read);
    const ProgramState &state = program.state;
    RecordStore records(*database, {state.gmtZone, state.enableDSTChanges}, program.around.clock,
                        program.log);
    auto record = records.getURL(urlId);
    if (!record)
        return std::nullopt;
    const Evidence evidence(root);
    return contentOf(*record, {evidence, session.scratch(), program.log});
}

DateSettings datesOfAnyAge(const Program &program) {
    DateSettings dates = dateSettings(program);
    dates.currentYear = 0; // no date is too old to be printed
    return dates;
}

/// The properties of a row as the window has them, but with dates of any age. `database` is the
/// project, opened for reading.
void showForPeople(Session &session, SQLite::Database &database, const std::string &project,
                   UrlId urlId) {
    Program &program = session.program;
    const ProjectFields fields(database, program.log);
    takeStoredZone(program, fields);
    const std::string root = fields.getDefault("RootPath");
    const PropertySource source{database, program.state.gmtZone, datesOfAnyAge(program),
                                program.log,
                                [&] { return pictureOf(session, project, urlId, root); }};
    for (const Property &property : loadProperties(urlId, source))
        showProperty(session.out, property.name, property.value);
}

Exit showCard(Session &session, SQLite::Database &database, UrlId urlId, Format format) {
    Program &program = session.program;
    takeStoredZone(program, ProjectFields(database, program.log));
    const auto card =
        loadCard(urlId, {database, program.state.gmtZone, datesOfAnyAge(program), program.log});
    if (!card)
        return Exit::rowsNotRead;
    std::vector<CardLine> lines = {{"Title", card->title}, {"Address", card->address}};
    lines.insert(lines.end(), card->lines.begin(), card->lines.end());
    if (format == Format::table) {
        for (const CardLine &line : lines)
            showProperty(session.out, printable(line.label), line.text);
        return Exit::ok;
    }
    const auto writer = makeRowWriter(format, session.out, {"Label", "Text"});
    for (const CardLine &line : lines)
        writer->row({line.label, line.text});
    writer->finish();
    return Exit::ok;
}

Exit run(Session &session, const Arguments &arguments) {
    const auto database = readProject(arguments.project);
    const UrlId urlId = checkedRow(*database, arguments.urlId);
    if (arguments.card)
        return showCard(session, *database, urlId, arguments.format);
    if (arguments.format == Format::table) {
        showForPeople(session, *database, arguments.project, urlId);
        return Exit::ok;
    }
    SQLite::Statement row(*database, "SELECT * FROM URLs WHERE URL_ID = ?");
    bindId(row, 1, urlId);
    namingDamage(*database, urlId, [&row] { row.executeStep(); });
    const StatementCells cells = cellsOf(session, row, arguments.format);
    if (arguments.format == Format::jsonl)
        session.out << jsonLine(cells.headings(), cells.cells(),
                                factMembers(RecordFacts(*database).of(UrlId{urlId})));
    else
        makeRowWriter(arguments.format, session.out, cells.headings())->row(cells.cells());
    return Exit::ok;
}

} // namespace

Command showCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "show",
            .what = "All properties of a row",
            .readme = {"`show PROJECT ID`",
                       "shows all properties of a row; `--card` what is asked first, in words"},
            .examples = {{"show case.nvp 17", "a line a property, as in the window"},
                         {"show case.nvp 17 --card", "what, when, by whom, from which file"},
                         {"show case.nvp 17 --format jsonl", "every column of the row"}},
            .arguments = {projectWord(given->project), rowWord(given->urlId),
                          flag("--card", given->card,
                               "What is asked first, in words: when, who, what, from where"),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
