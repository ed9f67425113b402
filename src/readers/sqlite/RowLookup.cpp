#include "readers/sqlite/RowLookup.h"

#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/sqlite/ColumnList.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

RowLookup::RowLookup(EvidenceDatabase &database, std::string_view table, std::string_view key,
                     std::span<const std::string_view> columns)
    : m_database(database), m_table(table) {
    // Of a view or a virtual table not even the columns are asked for: that would run it.
    const std::set<std::string> present =
        database.hasTable(table) ? database.columnsOf(table) : std::set<std::string>();
    if (!present.contains(toLower(key)))
        throw EvidenceDamage(fmt::format("in its list of tables: table \"{}\" with column \"{}\" "
                                         "was expected and is not there",
                                         table, key));
    const ColumnList list(present, columns, {fmt::format("\"{}\"", key)});
    m_positions = list.positions;
    // Never by way of an index: what it holds may differ from the rows in a damaged file. The key
    // of an honest table is its row id.
    m_query.emplace(database.prepare(fmt::format(
        "SELECT {} FROM main.\"{}\" NOT INDEXED WHERE \"{}\" = ?1", list.sql, table, key)));
}

std::optional<Row> RowLookup::find(std::int64_t key) {
    if (m_slow >= limits::kSlowLookUps)
        throw EvidenceDamage(fmt::format("table \"{}\" has lost its key: its rows are no longer "
                                         "looked for",
                                         m_table));
    m_query->tryReset();
    m_query->bind(1, key);
    m_database.expectOneRow();
    const int code = m_query->tryExecuteStep();
    if (code == SQLITE_DONE)
        return std::nullopt;
    if (code == SQLITE_ROW)
        return Row(*m_query, m_positions);
    m_slow += code == SQLITE_INTERRUPT ? 1 : 0;
    throw EvidenceDamage(
        fmt::format("table \"{}\", row {}: {}", m_table, key, m_database.lastError()));
}

} // namespace nv
