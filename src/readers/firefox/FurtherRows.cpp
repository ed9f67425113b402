#include "readers/firefox/FurtherRows.h"

#include "base/Trap.h"
#include "readers/sqlite/ColumnList.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

namespace {

/// Runs `walk`; what it throws is damage of the table, not of the file.
bool withLoss(std::string_view table, ReadResult &result, const std::function<bool()> &walk) {
    KeptMessage failure;
    const bool goesOn = trapped(failure, Severity::Low, "", "", true, walk);
    if (!failure.text.empty())
        addDamage(result, fmt::format("table \"{}\" can't be read: {}", table, failure.text));
    return goesOn;
}

bool walkJoining(EvidenceDatabase &database, std::string_view table,
                 std::span<const std::string_view> columns, ReadContext &ctx, ReadResult &result,
                 const std::function<void(const Row &row)> &take) {
    constexpr std::uint64_t kRowsBetweenQuestions = 1024;
    if (!database.hasTable(table))
        return true;
    // The constant is there for a table that has none of the columns.
    const ColumnList list(database.columnsOf(table), columns, {"1"});
    SQLite::Statement rows =
        database.prepare(fmt::format("SELECT {} FROM main.\"{}\" NOT INDEXED", list.sql, table));
    const Row row(rows, list.positions);
    for (std::uint64_t given = 0;; ++given) {
        if (given > database.mostRows())
            throw EvidenceDamage("its pages point at each other");
        database.expectOneRow();
        const int code = rows.tryExecuteStep();
        if (code != SQLITE_ROW) {
            if (code != SQLITE_DONE)
                addDamage(result, fmt::format("table \"{}\", after row {}: {}", table, given,
                                              database.lastError()));
            return true;
        }
        take(row);
        if (given % kRowsBetweenQuestions == 0 && !ctx.task.advance(0)) {
            result.state = ReadState::cancelled;
            return false;
        }
    }
}

} // namespace

void noteUserVersion(ReadContext &ctx, EvidenceDatabase &database, std::string_view name) {
    std::string &version = ctx.file.origin.browserVersion;
    if (!version.empty() || ctx.classicOnly)
        return;
    KeptMessage unheard; // damage is told by those who read the tables
    trapped(unheard, Severity::Low, "", "", [&] {
        SQLite::Statement query = database.prepare("PRAGMA user_version");
        database.expectOneRow();
        if (query.executeStep() && query.getColumn(0).getInt64() > 0)
            version = fmt::format("{} {}", name, query.getColumn(0).getInt64());
    });
}

ReadResult mainRows(EvidenceDatabase &database, std::string_view table,
                    std::span<const std::string_view> columns, ReadContext &ctx,
                    std::string_view procedure, const RowReceiver &save) {
    TableCursor cursor(database, table, columns);
    return eachRow(cursor, ctx, ctx.task, procedure,
                   [&](const Row &row) { save(cursor.rowId(), row); });
}

bool furtherRows(EvidenceDatabase &database, std::string_view table,
                 std::span<const std::string_view> columns, ReadContext &ctx,
                 std::string_view procedure, ReadResult &result, const RowReceiver &save) {
    return withLoss(table, result, [&] {
        return eachFurtherRow(database, table, columns, ctx, procedure, result, save);
    });
}

bool joiningRows(EvidenceDatabase &database, std::string_view table,
                 std::span<const std::string_view> columns, ReadContext &ctx, ReadResult &result,
                 const std::function<void(const Row &row)> &take) {
    return withLoss(table, result,
                    [&] { return walkJoining(database, table, columns, ctx, result, take); });
}

} // namespace nv
