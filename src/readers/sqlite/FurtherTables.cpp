#include "readers/sqlite/FurtherTables.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/sqlite/ColumnList.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

bool FurtherTables::each(std::string_view table, Columns columns, Stretch stretch,
                         const TakeRow &take) {
    ReadingPart part(m_ctx, stretch);
    return guarded(table, [&] { return walk(table, columns, part.context, take); });
}

bool FurtherTables::eachByKey(std::string_view table, Columns columns, Stretch stretch,
                              const TakeRow &take) {
    return guarded(table, [&] { return walkByKey(table, columns, stretch, take); });
}

/// What `walk` throws is damage of the table, not of the file.
bool FurtherTables::guarded(std::string_view table, const std::function<bool()> &walk) {
    KeptMessage failure;
    const bool wentOn = trapped(failure, Severity::Warning, "", "", true, walk);
    if (!failure.text.empty())
        addDamage(m_result, fmt::format("table \"{}\" can't be read: {}", table, failure.text));
    return wentOn;
}

bool FurtherTables::walk(std::string_view table, Columns columns, ReadContext &ctx,
                         const TakeRow &take) {
    if (!m_database.hasTable(table))
        return true;
    const ReadResult rows = mainRows(m_database, table, columns, ctx, m_procedure, take);
    for (const auto &[reason, count] : rows.passedOver)
        passOver(table, reason, count);
    m_result.notReached += rows.notReached;
    if (rows.state == ReadState::cancelled)
        m_result.state = rows.state;
    else if (rows.state != ReadState::complete)
        addDamage(m_result, rows.reason);
    return m_result.state != ReadState::cancelled;
}

bool FurtherTables::walkByKey(std::string_view table, Columns columns, Stretch stretch,
                              const TakeRow &take) {
    if (!m_database.hasTable(table))
        return true;
    // The constant is there for a table that has none of the columns.
    const ColumnList list(m_database.columnsOf(table), columns, {"1"});
    SQLite::Statement rows =
        m_database.prepare(fmt::format("SELECT {} FROM main.\"{}\" NOT INDEXED", list.sql, table));
    RecordTrap trap(m_ctx.log, m_procedure, textOf(m_ctx.file.fullPath));
    for (std::uint64_t place = 1;; ++place) {
        if (place > m_database.mostRows())
            throw EvidenceDamage("its pages point at each other");
        m_database.expectOneRow();
        const int code = rows.tryExecuteStep();
        if (code == SQLITE_DONE)
            break;
        if (code != SQLITE_ROW) {
            addDamage(m_result, fmt::format("in table \"{}\": {} behind row {} in the order of its "
                                            "key; an unknown number of rows could not be read",
                                            table, m_database.lastError(), place - 1));
            break;
        }
        if (!m_ctx.task.advance(stretch.from)) {
            m_result.state = ReadState::cancelled;
            return false;
        }
        trap.attempt(place,
                     [&] { take(static_cast<std::int64_t>(place), Row(rows, list.positions)); });
    }
    passOver(table, "damaged record", trap.failed());
    return true;
}

void FurtherTables::passOver(std::string_view table, std::string_view reason, std::uint64_t rows) {
    if (rows > 0)
        m_result.passedOver[fmt::format("{} of table {}", reason, table)] += rows;
}

void addLosses(ReadResult &result, const ReadResult &further) {
    result.notReached += further.notReached;
    for (const auto &[reason, count] : further.passedOver)
        result.passedOver[reason] += count;
    for (const auto &[reason, count] : further.noted)
        result.noted[reason] += count;
    if (!further.reason.empty() && result.state != ReadState::cancelled)
        addDamage(result, further.reason);
}

} // namespace nv
