#include "views/rows/LocalDates.h"

#include "db/sql/SqliteErrors.h"
#include "time/TimeZone.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <utility>
#include <vector>

namespace nv {

namespace {

using DatedRow = std::pair<std::int64_t, double>; ///< its key and its action's date in UTC

/// Before the first is written: rows mustn't move below the statement that walks over them.
std::vector<DatedRow> datedRows(SQLite::Database &project) {
    std::vector<DatedRow> rows;
    SQLite::Statement query(project, "SELECT URL_ID, ActionDateUTC FROM URLs WHERE "
                                     "typeof(ActionDateUTC) IN ('real', 'integer')");
    while (query.executeStep())
        rows.emplace_back(query.getColumn(0).getInt64(), query.getColumn(1).getDouble());
    return rows;
}

void showRow(TaskMonitor &task, std::size_t row, std::size_t rows) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = "Storing Local Dates ";
    step.topCounter = static_cast<std::int64_t>(row);
    step.topTotal = static_cast<std::int64_t>(rows);
    task.show(step);
}

} // namespace

std::optional<std::int64_t> storeLocalDates(SQLite::Database &project, const ProjectZone &zone,
                                            TaskMonitor &task) {
    return onProject(project, [&]() -> std::optional<std::int64_t> {
        const std::vector<DatedRow> rows = datedRows(project);
        SQLite::Transaction transaction(project); // rolled back when it isn't committed
        SQLite::Statement update(project, "UPDATE URLs SET ActionDateLocal = ? WHERE URL_ID = ?");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            if (!task.advance(static_cast<double>(row) / static_cast<double>(rows.size())))
                return std::nullopt;
            showRow(task, row, rows.size());
            const Date local = convertDateToZone(Date::fromDays(rows[row].second), zone.gmtZone,
                                                 zone.enableDSTChanges);
            if (local.has())
                update.bind(1, local.days());
            else
                update.bind(1);
            update.bind(2, rows[row].first);
            update.exec();
            update.reset();
        }
        transaction.commit();
        return static_cast<std::int64_t>(rows.size());
    });
}

} // namespace nv
