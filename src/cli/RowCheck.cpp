#include "cli/RowCheck.h"

#include "app/jobs/RebuildJob.h"
#include "app/jobs/RebuildText.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "cli/Session.h"
#include "db/sql/BindId.h"
#include "db/sql/Damage.h"
#include "rebuild/Harvest.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <unordered_set>

namespace nv::cli {

void namingDamage(const SQLite::Database &project, UrlId id, const std::function<void()> &body) {
    if (!unlessDamaged(body))
        throw StorageFailure(fmt::format("row {} can't be read: \"{}\" is damaged where it lies",
                                         id, project.getFilename()));
}

std::vector<UrlId> checkedRows(SQLite::Database &project, std::span<const std::int64_t> numbers) {
    std::vector<UrlId> ids;
    SQLite::Statement row(project, "SELECT 1 FROM URLs WHERE URL_ID = ?");
    for (const std::int64_t number : numbers) {
        const UrlId id{number};
        bool isThere = false;
        namingDamage(project, id, [&] {
            row.tryReset();
            bindId(row, 1, id);
            isThere = row.executeStep();
        });
        if (!isThere)
            throw UsageError(fmt::format("the project has no row {}", id));
        ids.push_back(id);
    }
    return ids;
}

std::vector<UrlId> differentRows(SQLite::Database &project, std::span<const std::int64_t> numbers) {
    std::vector<UrlId> ids = checkedRows(project, numbers);
    std::unordered_set<UrlId> seen;
    std::erase_if(ids, [&seen](UrlId id) { return !seen.insert(id).second; });
    return ids;
}

UrlId checkedRow(SQLite::Database &project, std::int64_t number) {
    return checkedRows(project, std::span(&number, 1)).front();
}

void unpackPage(UrlRecord &page, RecordTools &tools, const Program &program) {
    const RebuildContext &ctx = tools.context();
    if (needsWideIds(page.IngredientIDs, ctx.settings))
        throw UsageError(fmt::format("row {}: {} (here: --wide-ids)", page.URLID,
                                     reasonText(NotRebuilt::wideIds)));
    if (!unpackIngredients(page, ctx))
        throw StorageFailure(fmt::format("row {}: the rebuilt page can't be brought back; see "
                                         "\"{}\"",
                                         page.URLID, textOf(program.log.path())));
}

} // namespace nv::cli
