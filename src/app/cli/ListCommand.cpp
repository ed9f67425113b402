#include "app/Project.h"
#include "app/cli/Commands.h"
#include "app/cli/FilterCommands.h"
#include "app/cli/LoadedTable.h"
#include "base/Text.h"

#include <fmt/ranges.h>

#include <algorithm>

namespace nv::cli {

namespace {

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

std::vector<UrlColumn> chosenColumns(const ListArguments &arguments) {
    if (arguments.columns.empty())
        return arguments.format == Format::table
                   ? std::vector<UrlColumn>(std::begin(kUsualColumns), std::end(kUsualColumns))
                   : allColumns();
    std::vector<UrlColumn> columns;
    for (const std::string &key : arguments.columns) {
        const auto column = columnOfKey(key);
        if (!column)
            throw UsageError(fmt::format("there is no column \"{}\": {} were expected", key,
                                         fmt::join(columnKeys(), ", ")));
        columns.push_back(*column);
    }
    return columns;
}

std::vector<std::string> headingsOf(const std::vector<UrlColumn> &columns, Format format) {
    std::vector<std::string> headings;
    for (const UrlColumn column : columns) {
        const UrlColumnFacts &facts = factsOf(column);
        headings.emplace_back(format == Format::table && !facts.header.empty() ? facts.header
                                                                               : facts.key);
    }
    return headings;
}

void writeRows(const ListArguments &arguments, const std::vector<UrlColumn> &columns,
               UrlTable &table, RowWriter &writer) {
    const bool shown = arguments.format == Format::table || arguments.dates == Dates::asShown;
    for (std::size_t place = 0; place < table.rowCount() && !interrupted; ++place) {
        std::vector<Cell> cells;
        cells.reserve(columns.size());
        for (const UrlColumn column : columns)
            cells.push_back(shown ? Cell(table.cell(place, column))
                                  : table.machineCell(place, column));
        writer.row(cells);
    }
    writer.finish();
}

} // namespace

Exit listCommand(Session &session, const ListArguments &arguments) {
    const std::vector<UrlColumn> columns = chosenColumns(arguments);
    session.program.thisClass.Filters = filtersFrom(arguments.filter);
    session.openForReading(arguments.project);
    const ThisClass &state = session.program.thisClass;
    LoadResult loaded = LoadResult::Failed;
    Exit read = Exit::ok;
    {
        UrlTable table(session.program.thisClass.ProjectDB.connection(), session.program.log,
                       state.GMTZone);
        table.showColumns(columns);
        loaded =
            loadTable(session, {arguments.query, !arguments.host.empty(), arguments.host}, table);
        const auto writer =
            makeRowWriter(arguments.format, session.out, headingsOf(columns, arguments.format));
        writeRows(arguments, columns, table, *writer);
        read = tellUnread(session, table.unread());
    }
    closeProject(session.program);
    return interrupted || loaded == LoadResult::Cancelled ? Exit::interrupted : read;
}

} // namespace nv::cli
