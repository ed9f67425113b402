#include "app/cli/RowCheck.h"

#include "app/cli/Session.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

void checkRows(SQLite::Database &project, std::span<const std::int64_t> ids) {
    SQLite::Statement row(project, "SELECT 1 FROM URLs WHERE URL_ID = ?");
    for (const std::int64_t id : ids) {
        row.reset();
        row.bind(1, id);
        if (!row.executeStep())
            throw UsageError(fmt::format("the project has no row {}", id));
    }
}

void checkRow(SQLite::Database &project, std::int64_t id) {
    checkRows(project, std::span(&id, 1));
}

} // namespace nv::cli
