#include "readers/sqlite/FurtherTables.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/sqlite/ColumnList.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

bool FurtherTables::each(std::string_view table, Columns columns, Stretch stretch,
                         const TakeRow &take) {
    SubTask task(m_ctx.task, stretch.from, stretch.to);
    ReadContext ctx = withTask(m_ctx, task);
    return guarded(table, [&] {
        return eachFurtherRow(m_database, table, columns, ctx, m_procedure, m_result, take);
    });
}

bool FurtherTables::eachByKey(std::string_view table, Columns columns, Stretch stretch,
                              const TakeRow &take) {
    return guarded(table, [&] { return walkByKey(table, columns, stretch, take); });
}

bool FurtherTables::guarded(std::string_view table, const std::function<bool()> &walk) {
    KeptMessage failure;
    const bool wentOn = trapped(failure, Severity::Warning, "", "", true, walk);
    if (!failure.text.empty())
        addDamage(m_result, fmt::format("in table \"{}\": {}", table, failure.text));
    return wentOn;
}

bool FurtherTables::walkByKey(std::string_view table, Columns columns, Stretch stretch,
                              const TakeRow &take) {
    if (!m_database.hasTable(table))
        return true;
    const ColumnList list(m_database.columnsOf(table), columns, {});
    if (list.sql.empty())
        return true;
    SQLite::Statement rows =
        m_database.prepare(fmt::format("SELECT {} FROM main.\"{}\" NOT INDEXED", list.sql, table));
    RecordTrap trap(m_ctx.log, m_procedure, textOf(m_ctx.file.fullPath));
    m_database.expectWholeTable();
    std::int64_t place = 0;
    for (int code = rows.tryExecuteStep(); code != SQLITE_DONE; code = rows.tryExecuteStep()) {
        if (code != SQLITE_ROW)
            throw EvidenceDamage(fmt::format("{} behind row {} in the order of its key; an unknown "
                                             "number of rows could not be read",
                                             m_database.lastError(), place));
        ++place;
        if (!m_ctx.task.advance(stretch.from)) {
            m_result.state = ReadState::cancelled;
            return false;
        }
        trap.attempt(static_cast<std::uint64_t>(place),
                     [&] { take(place, Row(rows, list.positions)); });
    }
    if (trap.failed() > 0)
        m_result.passedOver[fmt::format("damaged record of table {}", table)] += trap.failed();
    return true;
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

ReadContext withTask(const ReadContext &ctx, TaskMonitor &task) {
    return {ctx.file, ctx.evidence, ctx.content, ctx.clock,   ctx.scratch,
            ctx.sink, ctx.log,      task,        ctx.deleted, ctx.classicOnly};
}

} // namespace nv
