#include "reports/report/SortTable.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "views/rows/UrlRow.h"

#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace nv {

namespace {

struct SortRow {
    std::int32_t id;
    StoredValue date; ///< nothing for a row that can't be read
};

/// Before anything is written: in a transaction that has met a damaged page the database writes
/// nothing more. A row that can't be read takes part, and of ticked ones too: its entry says so.
std::optional<std::vector<SortRow>> readDates(SQLite::Database &project,
                                              std::span<const std::int32_t> ids, ReportRows rows,
                                              TaskMonitor &task) {
    SQLite::Statement row(project, "SELECT ActionDateLocal, Tagged FROM URLs WHERE URL_ID = ?");
    NoLog unheard; // the report logs it
    std::vector<SortRow> found;
    found.reserve(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (!task.advance(static_cast<double>(i) / static_cast<double>(ids.size())))
            return std::nullopt;
        SortRow next{ids[i], {}};
        const bool isWanted = trapped(unheard, Severity::Low, {}, {}, true, [&] {
            row.bind(1, ids[i]);
            if (!onRow([&row] { return row.executeStep(); }))
                return true; // listed, but not there
            next.date = valueIn(row.getColumn(0));
            return rows == ReportRows::all || row.getColumn(1).getInt() != 0;
        });
        row.tryReset();
        if (isWanted)
            found.push_back(std::move(next));
    }
    return found;
}

Walk fill(SQLite::Database &project, const std::vector<SortRow> &rows, TaskMonitor &task) {
    Savepoint whole(project);
    SQLite::Statement add(project,
                          "INSERT INTO URLSortTable (URL_ID, ActionDateLocal) VALUES (?, ?)");
    for (const SortRow &row : rows) {
        if (!task.advance(1))
            return Walk::Cancelled;
        add.bind(1, row.id);
        add.bind(2);
        std::visit(
            [&add](const auto &value) {
                if constexpr (!std::is_same_v<std::decay_t<decltype(value)>, std::monostate>)
                    add.bind(2, value);
            },
            row.date);
        add.exec();
        add.reset();
    }
    whole.release();
    return Walk::Finished;
}

} // namespace

Walk fillSortTable(SQLite::Database &project, std::span<const std::int32_t> ids, ReportRows rows,
                   TaskMonitor &task) {
    return onProject([&] {
        // A table of this name beside the project comes before the project's own.
        if (isReadOnly(project))
            project.exec("CREATE TEMP TABLE IF NOT EXISTS URLSortTable "
                         "(URL_ID INTEGER, ActionDateLocal REAL)");
        const auto found = readDates(project, ids, rows, task);
        project.exec("DELETE FROM URLSortTable");
        return found ? fill(project, *found, task) : Walk::Cancelled;
    });
}

std::int64_t rowsReported(SQLite::Database &project) {
    return onProject(
        [&] { return project.execAndGet("SELECT count(*) FROM URLSortTable").getInt64(); });
}

RowIds sortedRows(SQLite::Database &project, DateOrder order) {
    return onProject([&] {
        RowIds ids;
        SQLite::Statement row(
            project, std::string("SELECT URL_ID FROM URLSortTable ORDER BY ActionDateLocal") +
                         (order == DateOrder::oldestFirst ? " ASC" : " DESC") + ", URL_ID");
        while (row.executeStep())
            ids.push_back(row.getColumn(0).getInt());
        return ids;
    });
}

} // namespace nv
