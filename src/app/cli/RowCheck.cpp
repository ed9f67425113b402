#include "app/cli/RowCheck.h"

#include "app/Project.h"
#include "app/RebuildJob.h"
#include "app/RebuildText.h"
#include "app/cli/Session.h"
#include "base/Files.h"
#include "rebuild/Harvest.h"

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

void unpackPage(URLClass &page, RebuildTools &tools, const Program &program) {
    const RebuildContext &ctx = tools.context();
    if (needsWideIds(page.IngredientIDs, ctx.settings))
        throw UsageError(fmt::format("row {}: {} (here: --wide-ids)", number(page.URLID),
                                     reasonText(NotRebuilt::wideIds)));
    if (!UnpackIngredients(page, ctx))
        throw StorageFailure(fmt::format("row {}: the rebuilt page can't be brought back; see "
                                         "\"{}\"",
                                         number(page.URLID), textOf(program.log.path())));
}

} // namespace nv::cli
