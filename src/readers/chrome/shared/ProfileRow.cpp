#include "readers/chrome/shared/ProfileRow.h"

#include "readers/FactSource.h"
#include "readers/sqlite/HistoryRow.h"

#include <optional>

namespace nv {

UrlRecord profileRecord(const ReadContext &ctx, const ProfileRow &row, std::string_view cacheType,
                        Date fileCreated) {
    UrlRecord record =
        historyRecord(ctx, {row.rowId, row.url, false, std::nullopt}, cacheType, fileCreated);
    record.IsHistory = false;
    record.Action.clear();
    record.WebpageTitle = row.title;
    addSource(record.facts, row.table, row.rowId);
    return record;
}

} // namespace nv
