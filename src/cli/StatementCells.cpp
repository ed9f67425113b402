#include "cli/StatementCells.h"

#include "base/Text.h"
#include "db/records/UrlRecord.h"
#include "db/schema/Schema.h"
#include "views/rows/StoredCell.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv::cli {

StatementCells::StatementCells(SQLite::Statement &statement, For whom, DateSettings dates)
    : m_statement(statement), m_whom(whom), m_dates(std::move(dates)) {
    for (int i = 0; i < statement.getColumnCount(); ++i) {
        m_headings.emplace_back(statement.getColumnName(i));
        m_kinds.push_back(kindOf(statement.getColumnOriginName(i)));
    }
}

StatementCells::Kind StatementCells::kindOf(const char *origin) {
    if (!origin)
        return Kind::plain;
    if (equalsNoCase(origin, "ActionDateLocal"))
        return Kind::localDate;
    if (equalsNoCase(origin, "Visits"))
        return Kind::visits;
    for (const schema::Table &table : schema::projectTables())
        if (const schema::Column *column = schema::findColumn(table, origin);
            column && column->type == schema::ColumnType::Date)
            return Kind::utcDate;
    return Kind::plain;
}

std::vector<Cell> StatementCells::cells() const {
    std::vector<Cell> cells;
    cells.reserve(m_kinds.size());
    for (int i = 0; i < static_cast<int>(m_kinds.size()); ++i)
        cells.push_back(cell(i));
    return cells;
}

Cell StatementCells::cell(int index) const {
    const SQLite::Column column = m_statement.getColumn(index);
    const Kind kind = m_kinds[static_cast<std::size_t>(index)];
    if (kind == Kind::visits && column.isInteger() && column.getInt64() == kVisitsUnknown)
        return nullptr;
    if (kind != Kind::plain && kind != Kind::visits && (column.isFloat() || column.isInteger()))
        return dateText(column.getDouble(), kind);
    return storedCell(column);
}

std::string StatementCells::dateText(double days, Kind kind) const {
    const Date date = Date::fromDays(days);
    if (m_whom == For::people)
        return formatDate(date, m_dates.dateTimeFormat());
    std::string iso = isoUtc(date);
    if (kind == Kind::localDate && iso.ends_with('Z'))
        iso.pop_back();
    return iso;
}

} // namespace nv::cli
