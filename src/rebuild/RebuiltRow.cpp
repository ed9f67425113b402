#include "rebuild/RebuiltRow.h"

#include "base/Files.h"
#include "db/sql/BindId.h"
#include "db/sql/Savepoint.h"
#include "time/DateFormat.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <utility>

namespace nv {

namespace {

void storeRow(UrlRecord &page, std::string_view method, const RebuildContext &ctx,
              const Clock &clock) {
    page.RebuiltMethod = method;
    page.RebuiltDateTime =
        formatDate(Date::fromTimePoint(clock.now() + clock.localOffset()), kRebuiltTimeFormat);
    page.CacheFileRebuilt = true;
    page.RebuiltFilePath = textOf(page.RunTimeRebuiltFilePath);
    page.CacheFileRebuiltBLOB.clear();
    SQLite::Statement update(ctx.project,
                             "UPDATE URLs SET RebuiltMethod = ?, RebuiltDateTime = ?, "
                             "CacheFileRebuilt = 1, RebuiltFilePath = ?, RebuiltSourceCode = ?, "
                             "IngredientIDs = ?, CacheFileRebuiltBLOB = NULL WHERE URL_ID = ?");
    update.bind(1, page.RebuiltMethod);
    update.bind(2, page.RebuiltDateTime);
    update.bind(3, page.RebuiltFilePath);
    update.bind(4, page.RebuiltSourceCode); // what a later session has to go by
    update.bind(5, page.IngredientIDs);
    bindId(update, 6, page.URLID);
    update.exec();
}

} // namespace

namespace {

void storeClassically(UrlRecord &page, std::string_view method,
                      std::span<const ReferenceNote> notes, const RebuildContext &ctx,
                      const Clock &clock) {
    Savepoint whole(ctx.project);
    storeRow(page, method, ctx, clock);
    RebuildAudit(ctx.project).store(page.URLID, notes);
    RebuiltParts(ctx.project).forget(page.URLID);
    whole.release();
}

} // namespace

void storeRebuilt(UrlRecord &page, std::span<const ReferenceNote> notes, const RebuildContext &ctx,
                  const Clock &clock) {
    storeClassically(page, kClassicMethod, notes, ctx, clock);
}

void storeFromTemplate(UrlRecord &page, RebuildMethod method, const RebuildContext &ctx,
                       const Clock &clock) {
    storeClassically(page, method == RebuildMethod::exact ? kExactTemplateMethod : kClassicMethod,
                     {}, ctx, clock);
}

void storeRebuiltExactly(UrlRecord &page, std::span<const PartNote> notes,
                         const RebuildContext &ctx, const Clock &clock) {
    Savepoint whole(ctx.project);
    storeRow(page, kExactMethod, ctx, clock);
    RebuildAudit(ctx.project).store(page.URLID, {});
    RebuiltParts(ctx.project).store(page.URLID, notes);
    whole.release();
}

void storeSubstitutions(UrlRecord &page, std::string log, const RebuildContext &ctx) {
    page.IngredientIDs = std::move(log);
    SQLite::Statement update(ctx.project, "UPDATE URLs SET IngredientIDs = ? WHERE URL_ID = ?");
    update.bind(1, page.IngredientIDs);
    bindId(update, 2, page.URLID);
    update.exec();
}

} // namespace nv
