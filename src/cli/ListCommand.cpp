#include "app/project/Project.h"
#include "base/Text.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/HashSetRows.h"
#include "cli/LayoutColumns.h"
#include "cli/LoadedTable.h"
#include "cli/NamedTagRows.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "views/table/LayoutBook.h"

#include <algorithm>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    RowsAsked rows;
    std::vector<std::string> tags; ///< names; none for all rows
    HashSetsAsked hashSets;
    std::vector<std::string> columns;
    std::string layout; ///< empty for none
    Format format = Format::table;
    FieldNames names = FieldNames::people;
    /// Dates of csv and jsonl as the window has them, not ISO 8601. Tables always have them so.
    bool datesAsShown = false;
};

/// What fits a screen when nobody asks for columns.
constexpr UrlColumn kUsualColumns[] = {
    UrlColumn::Id,     UrlColumn::Type,          UrlColumn::Status,
    UrlColumn::Action, UrlColumn::ActionDateUtc, UrlColumn::Visits,
    UrlColumn::Value,  UrlColumn::User};

std::vector<UrlColumn> allColumns() {
    std::vector<UrlColumn> columns;
    columns.reserve(kUrlColumnCount);
    for (const UrlColumnFacts &facts : kUrlColumns)
        columns.push_back(facts.column);
    return columns;
}

std::vector<UrlColumn> chosenColumns(const Arguments &arguments) {
    if (arguments.columns.empty()) {
        std::vector<UrlColumn> usual(std::begin(kUsualColumns), std::end(kUsualColumns));
        if (arguments.format != Format::table)
            usual = allColumns();
        if (!arguments.tags.empty())
            usual.push_back(UrlColumn::TagNames);
        if (arguments.hashSets.notable || !arguments.hashSets.sets.empty())
            usual.push_back(UrlColumn::HashSets);
        return usual;
    }
    std::vector<UrlColumn> columns;
    columns.reserve(arguments.columns.size());
    for (const std::string &name : arguments.columns)
        columns.push_back(columnAsked(name));
    return columns;
}

std::vector<std::string> headingsOf(const std::vector<UrlColumn> &columns,
                                    const Arguments &arguments) {
    std::vector<std::string> headings;
    headings.reserve(columns.size());
    for (const UrlColumn column : columns) {
        const std::string_view header = factsOf(column).header;
        headings.push_back(arguments.format == Format::table && !header.empty()
                               ? std::string(header)
                               : fieldName(column, arguments.names));
    }
    return headings;
}

/// The columns of the layout, without pictures where there are but texts. Rows without a date stand
/// where the window has them in this layout.
std::vector<UrlColumn> takeLayout(Session &session, const Arguments &arguments, UrlTable &table) {
    std::vector<UrlColumn> columns = columnsOfLayout(session, arguments.layout);
    if (arguments.format == Format::table)
        std::erase(columns, UrlColumn::Icon);
    if (!equalsNoCase(trim(arguments.layout), LayoutBook::kClassic))
        table.undated = Undated::Last;
    return columns;
}

Cell shownCell(UrlTable &table, std::size_t place, UrlColumn column) {
    if (column == UrlColumn::Tag) // a box in the window
        return table.isTagged(place) ? Cell("Yes") : Cell("");
    return table.cell(place, column);
}

void writeRows(const Arguments &arguments, const std::vector<UrlColumn> &columns, UrlTable &table,
               RowWriter &writer) {
    const bool shown = arguments.format == Format::table || arguments.datesAsShown;
    for (std::size_t place = 0; place < table.rowCount() && !interrupted; ++place) {
        std::vector<Cell> cells;
        cells.reserve(columns.size());
        for (const UrlColumn column : columns)
            cells.push_back(shown ? shownCell(table, place, column)
                                  : table.machineCell(place, column));
        writer.row(cells);
    }
    writer.finish();
}

Exit run(Session &session, const Arguments &arguments) {
    if (!arguments.layout.empty() && !arguments.columns.empty())
        throw UsageError("--layout and --columns both say which columns: one of them is enough");
    std::vector<UrlColumn> columns = chosenColumns(arguments);
    session.program.state.filters = filtersFrom(arguments.rows.filter);
    session.openForReading(arguments.project);
    const ProgramState &state = session.program.state;
    LoadResult loaded = LoadResult::Failed;
    Exit read = Exit::ok;
    {
        UrlTable table(session.program.state.projectDB.connection(), session.program.log,
                       state.gmtZone);
        if (!arguments.layout.empty())
            columns = takeLayout(session, arguments, table);
        table.showColumns(columns);
        limitToTags(session, arguments.tags, table);
        limitToHashSets(session, arguments.hashSets, table);
        loaded = loadTable(session, choiceOf(arguments.rows), table);
        const auto writer =
            makeRowWriter(arguments.format, session.out, headingsOf(columns, arguments));
        writeRows(arguments, columns, table, *writer);
        read = tellUnread(session, table.unread());
    }
    closeProject(session.program);
    return interrupted || loaded == LoadResult::Cancelled ? Exit::interrupted : read;
}

} // namespace

Command listCommand() {
    const auto given = std::make_shared<Arguments>();
    Command command{
        .name = "list",
        .what = "The rows of the table view",
        .readme = {"`list PROJECT`", "shows the rows of the table; `--host`, `--filter`, "
                                     "`--query`, `--tag`, `--hash-set`, `--columns` or `--layout`, "
                                     "`--format` table, csv, tsv, "
                                     "jsonl"},
        .examples = {{"list case.nvp --host example.com", "the rows of a host as a table"},
                     {"list case.nvp --layout Pictures", "what the window's layout shows"},
                     {"list case.nvp --format csv > rows.csv",
                      "all rows and columns for a spreadsheet"}},
        .arguments =
            {projectWord(given->project), queryOption(given->rows), hostOption(given->rows),
             filterOption(given->rows), tagsOption(given->tags),
             value("--columns", given->columns, "Columns, separated by commas").separatedByCommas(),
             value("--layout", given->layout,
                   "The columns of a layout: Examiner, Caches, Pictures, Classic or "
                   "your own"),
             flag("--dates-as-shown", given->datesAsShown,
                  "Dates of csv and jsonl as the window shows them, not ISO 8601"),
             formatOption(given->format), namesOption(given->names)},
        .run = [given](Session &session) { return run(session, *given); }};
    addHashSetOptions(command.arguments, given->hashSets);
    return command;
}

} // namespace nv::cli
