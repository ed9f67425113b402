#include "readers/sqlite/HistoryRow.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"

#include <utility>

namespace nv {

namespace {

/// A row that the browser made by itself, such as a bookmark that was never opened, has no visits:
/// that it was the browser's tells more than that it was deleted.
std::string statusOf(const ReadContext &ctx, const URLClass &record) {
    if (record.Visits == 0)
        return "(autogen)";
    return ctx.deleted ? "Deleted" : "URL";
}

} // namespace

URLClass historyRecord(const ReadContext &ctx, const HistoryRow &row, std::string_view cacheType,
                       Date fileCreated) {
    URLClass record;
    record.Action = "Visited";
    record.SourceFile_ID = ctx.file.SourceFile_ID;
    record.Reference_ID = row.id;
    record.URLRawValue = row.url;
    setUrl(record, percentDecode(ParseURLFromRawURL(row.url)));
    record.RootPath = ctx.evidence.rootOf(ctx.file.FullPath);
    record.cacheType = cacheType;
    record.CacheFileCreatedGMTDOS = fileCreated;
    record.Hidden = row.hidden;
    record.HistoryFilePath = textOf(ctx.file.FullPath);
    record.HistoryVersion = ctx.file.Version;
    record.IsHistory = true;
    record.Visits = row.visitCount.value_or(kVisitsUnknown);
    record.Status = statusOf(ctx, record);
    return record;
}

void setUrl(URLClass &record, std::string url) {
    record.URL = std::move(url);
    record.URLFileName = GetFilenameFromPath(record.URL);
    record.HashedURL = hashOfUrl(record.URL);
    record.host = ParseHost(record.URL);
    record.RecordSize = charCount(record.URL);
    record.URLProtocol = GetURLProtocol(record.URL);
    if (!record.URL.starts_with('?')) // with nothing before it, it begins no parameters
        record.URLParameters = parametersOf(record.URL);
}

} // namespace nv
