#include "readers/chrome/profile/ProfileRecord.h"

#include "base/Files.h"
#include "time/SourceClocks.h"

namespace nv {

UrlRecord profileRecord(const ReadContext &ctx, const RecordKind &kind, std::string_view action,
                        std::string_view status) {
    UrlRecord record;
    record.Action = action;
    record.Status = status;
    record.SourceFile_ID = ctx.file.sourceFileID;
    record.RootPath = ctx.evidence.rootOf(ctx.file.fullPath);
    record.cacheType = kind.word;
    record.HistoryFilePath = textOf(ctx.file.fullPath);
    record.HistoryVersion = ctx.file.version;
    record.Visits = kVisitsUnknown;
    record.IsBookmark = kind.group == RecordGroup::bookmarks;
    return record;
}

void setEvent(UrlRecord &record, Date utc, const Clock &clock) {
    record.ActionDateUTC = utc;
    record.LastVisited = utc;
    record.ActionDateLocal = utcDateToLocal(utc, clock);
}

} // namespace nv
