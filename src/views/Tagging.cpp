#include "views/Tagging.h"

#include "base/Trap.h"
#include "db/ProjectFields.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {
namespace {

constexpr std::string_view kProcedure = "MainForm.URLGrid_Click()";

bool writeAll(SQLite::Database &database, std::span<const std::int32_t> ids, bool tagged,
              TaskMonitor &task) {
    SQLite::Transaction transaction(database);
    SQLite::Statement update(database, "UPDATE URLs SET Tagged = ? WHERE URL_ID = ?");
    update.bind(1, tagged ? 1 : 0);
    std::size_t done = 0;
    for (const std::int32_t id : ids) {
        if (!task.advance(static_cast<double>(done++) / static_cast<double>(ids.size())))
            return false;
        update.bind(2, id);
        update.exec();
        update.reset();
    }
    transaction.commit();
    return true;
}

} // namespace

bool setTagged(SQLite::Database &database, FailureLog &log, UrlId id, bool tagged) {
    return trapped(log, Severity::Low, kProcedure, kNotSerious, false, [&] {
        return ProjectFields(database, log)
            .PutDBField(tagged ? "1" : "0", std::to_string(number(id)), "URL_ID", "URLs", "Tagged",
                        Severity::Low);
    });
}

bool setTagged(SQLite::Database &database, FailureLog &log, std::span<const std::int32_t> ids,
               bool tagged, TaskMonitor &task) {
    return trapped(log, Severity::Low, kProcedure, kNotSerious, false,
                   [&] { return writeAll(database, ids, tagged, task); });
}

} // namespace nv
