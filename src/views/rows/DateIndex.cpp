#include "views/rows/DateIndex.h"

#include "db/hashes/FoundHashSets.h"
#include "db/hashes/HashLookup.h"
#include "db/sql/Damage.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string_view>

namespace nv {
namespace {

bool hasIndex(SQLite::Database &database, std::string_view name) {
    SQLite::Statement statement(database,
                                "SELECT 1 FROM sqlite_master WHERE type = 'index' AND name = ?");
    statement.bind(1, std::string(name));
    return statement.executeStep();
}

void showBuilding(TaskMonitor &task) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = "Indexing Records ";
    task.show(step);
}

} // namespace

IndexState ensureIndex(SQLite::Database &database, TaskMonitor &task, std::string_view name,
                       std::string_view columns) {
    if (hasIndex(database, name))
        return IndexState::Present;
    showBuilding(task);
    SQLite::Statement statement(database, fmt::format("CREATE INDEX {} ON {}", name, columns));
    StatementWatch watch(database, task);
    Step step = Step::Done;
    if (!unlessDamaged([&] { step = watch.step(statement); }))
        return IndexState::Damaged;
    return step == Step::Cancelled ? IndexState::Cancelled : IndexState::Made;
}

IndexState ensureDateIndex(SQLite::Database &database, TaskMonitor &task) {
    return ensureIndex(database, task, "URLDateIndex", "URLs(ActionDateLocal)");
}

IndexState ensureLinkIndexes(SQLite::Database &database, TaskMonitor &task) {
    const IndexState parents =
        ensureIndex(database, task, "LinkParentIndex", "LinkAnalysis(Parent_ID)");
    if (parents == IndexState::Cancelled)
        return parents;
    const IndexState children =
        ensureIndex(database, task, "LinkChildIndex", "LinkAnalysis(Child_ID)");
    return children == IndexState::Present ? parents : children;
}

IndexState ensureLinkHashIndex(SQLite::Database &database, TaskMonitor &task) {
    return ensureIndex(database, task, "LinkHashIndex", "Links(HashedURL, URL_ID)");
}

IndexState ensureGalleryIndex(SQLite::Database &database, TaskMonitor &task) {
    return ensureIndex(database, task, "URLGalleryIndex",
                       "URLs(Host, ThumbnailMD5Hash, PARDValue, PictureWidth, PictureHeight, "
                       "IsPicture, IsWebPage, Category, CacheFileExists) "
                       "WHERE length(ThumbnailMD5Hash) > 0");
}

IndexState ensureHashSetIndex(SQLite::Database &database, TaskMonitor &task) {
    if (!hasFacts(database))
        return IndexState::Present;
    return ensureIndex(database, task, "FoundHashSetsIndex",
                       fmt::format("RecordFacts(URL_ID, Name, Value) WHERE Name IN ('{}')",
                                   fmt::join(kHashSetFacts, "', '")));
}

} // namespace nv
