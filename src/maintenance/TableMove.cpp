#include "maintenance/TableMove.h"

#include "base/Files.h"
#include "base/Text.h"
#include "db/sql/Dialect.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace nv {

namespace {

std::vector<std::string> columnNames(SQLite::Database &database, const std::string &table) {
    std::vector<std::string> names;
    SQLite::Statement rows(database, "SELECT name FROM pragma_table_xinfo(?)");
    rows.bind(1, table);
    while (rows.executeStep())
        names.push_back(rows.getColumn(0).getString());
    return names;
}

/// Quoted; in the order of `to`.
std::vector<std::string> sharedColumns(SQLite::Database &from, SQLite::Database &to,
                                       const std::string &table) {
    const auto there = columnNames(from, table);
    std::vector<std::string> shared;
    for (const std::string &name : columnNames(to, table))
        if (std::ranges::any_of(
                there, [&name](const std::string &other) { return equalsNoCase(name, other); }))
            shared.push_back(quotedName(name));
    return shared;
}

/// As it is stored: a text in a column of numbers stays a text.
void bindAsStored(SQLite::Statement &into, int at, const SQLite::Column &value) {
    if (value.isNull())
        into.bind(at);
    else if (value.isInteger())
        into.bind(at, value.getInt64());
    else if (value.isFloat())
        into.bind(at, value.getDouble());
    else if (value.isBlob())
        // Of no bytes the database gives no place, and binding that would store NULL.
        into.bind(at, value.getBytes() > 0 ? value.getBlob() : "", value.getBytes());
    else
        into.bind(at, value.getString());
}

/// One table's move.
class Move {
  public:
    Move(SQLite::Database &from, SQLite::Database &to, const std::string &table,
         const std::vector<std::string> &columns)
        : m_count(static_cast<int>(columns.size())),
          m_read(from,
                 fmt::format("SELECT {} FROM {}", fmt::join(columns, ", "), quotedName(table))),
          m_write(to, fmt::format("INSERT INTO {} ({}) VALUES ({})", quotedName(table),
                                  fmt::join(columns, ", "),
                                  fmt::join(std::vector<char>(columns.size(), '?'), ", "))) {}

    bool step() {
        if (!m_read.executeStep())
            return false;
        for (int at = 0; at < m_count; ++at)
            bindAsStored(m_write, at + 1, m_read.getColumn(at));
        m_write.exec();
        m_write.reset();
        return true;
    }

  private:
    int m_count;
    SQLite::Statement m_read;
    SQLite::Statement m_write;
};

std::int64_t rowsOf(SQLite::Database &database, const std::string &table) {
    return database.execAndGet("SELECT count(*) FROM " + quotedName(table)).getInt64();
}

} // namespace

std::optional<std::int64_t> moveTable(SQLite::Database &from, SQLite::Database &to,
                                      const std::string &table, TaskMonitor &task) {
    const auto columns = sharedColumns(from, to, table);
    if (columns.empty())
        return 0;
    const std::int64_t total = rowsOf(from, table);
    SQLite::Transaction transaction(to);
    Move move(from, to, table, columns);
    std::int64_t rows = 0;
    while (move.step()) {
        ++rows;
        if (!task.advance(static_cast<double>(rows) / static_cast<double>(std::max(total, rows))))
            return std::nullopt;
    }
    transaction.commit();
    if (rows != total || rowsOf(to, table) != total)
        throw StorageFailure(
            fmt::format("table \"{}\": {} of {} rows were moved", table, rows, total));
    return rows;
}

void moveRowNumbers(SQLite::Database &from, SQLite::Database &to) {
    if (!from.tableExists("sqlite_sequence"))
        return;
    SQLite::Statement numbers(from, "SELECT name, seq FROM sqlite_sequence");
    SQLite::Statement raise(to, "UPDATE sqlite_sequence SET seq = max(seq, ?2) WHERE name = ?1");
    SQLite::Statement add(to, "INSERT INTO sqlite_sequence (name, seq) SELECT ?1, ?2 WHERE EXISTS "
                              "(SELECT 1 FROM sqlite_master WHERE name = ?1) AND NOT EXISTS "
                              "(SELECT 1 FROM sqlite_sequence WHERE name = ?1)");
    while (numbers.executeStep())
        for (SQLite::Statement *statement : {&raise, &add}) {
            statement->bind(1, numbers.getColumn(0).getString());
            statement->bind(2, numbers.getColumn(1).getInt64());
            statement->exec();
            statement->reset();
        }
}

} // namespace nv
