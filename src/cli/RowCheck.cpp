#include "cli/RowCheck.h"

#include "app/Project.h"
#include "app/RebuildJob.h"
#include "app/RebuildText.h"
#include "base/Files.h"
#include "cli/Session.h"
#include "db/Damage.h"
#include "rebuild/Harvest.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace nv::cli {

void namingDamage(const SQLite::Database &project, std::int64_t id,
                  const std::function<void()> &body) {
    if (!unlessDamaged(body))
        throw StorageFailure(fmt::format("row {} can't be read: \"{}\" is damaged where it lies",
                                         id, project.getFilename()));
}

void checkRows(SQLite::Database &project, std::span<const std::int64_t> ids) {
    SQLite::Statement row(project, "SELECT 1 FROM URLs WHERE URL_ID = ?");
    for (const std::int64_t id : ids) {
        bool isThere = false;
        namingDamage(project, id, [&] {
            row.tryReset();
            row.bind(1, id);
            isThere = row.executeStep();
        });
        if (!isThere)
            throw UsageError(fmt::format("the project has no row {}", id));
    }
}

std::vector<std::int64_t> checkedRows(SQLite::Database &project,
                                      std::span<const std::int64_t> ids) {
    checkRows(project, ids);
    std::unordered_set<std::int64_t> seen;
    std::vector<std::int64_t> once;
    std::ranges::copy_if(ids, std::back_inserter(once),
                         [&seen](std::int64_t id) { return seen.insert(id).second; });
    return once;
}

void checkRow(SQLite::Database &project, std::int64_t id) {
    checkRows(project, std::span(&id, 1));
}

void unpackPage(URLClass &page, RecordTools &tools, const Program &program) {
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
