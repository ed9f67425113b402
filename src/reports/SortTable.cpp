#include "reports/SortTable.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/ReadOnlyConnection.h"
#include "db/Savepoint.h"
#include "db/SqliteErrors.h"

namespace nv {

namespace {

Walk fill(SQLite::Database &project, std::span<const std::int32_t> ids, ReportRows rows,
          TaskMonitor &task) {
    Savepoint whole(project);
    SQLite::Statement addUnread(project, "INSERT INTO URLSortTable (URL_ID) VALUES (?)");
    SQLite::Statement add(project,
                          std::string("INSERT INTO URLSortTable (URL_ID, ActionDateLocal) "
                                      "SELECT URL_ID, ActionDateLocal FROM URLs WHERE URL_ID = ?") +
                              (rows == ReportRows::tagged ? " AND Tagged" : ""));
    NoLog unheard; // the entry of the row says that it couldn't be read, and the report logs it
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (!task.advance(static_cast<double>(i) / static_cast<double>(ids.size())))
            return Walk::Cancelled;
        add.bind(1, ids[i]);
        const bool isRead = trapped(unheard, Severity::Low, {}, {}, false, [&] {
            return onRow([&add] { return add.exec(); }) > 0 || rows == ReportRows::tagged;
        });
        add.tryReset();
        if (isRead)
            continue;
        addUnread.bind(1, ids[i]);
        addUnread.exec();
        addUnread.reset();
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
        project.exec("DELETE FROM URLSortTable");
        return fill(project, ids, rows, task);
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
