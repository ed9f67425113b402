#include "readers/opera/HistoryRecord.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/opera/Kinds.h"
#include "time/SourceClocks.h"

#include <algorithm>

namespace nv {

bool holdsNoText(std::string_view line) {
    return std::ranges::any_of(line, [](char each) {
        return (each >= 0 && each < ' ' && each != '\t') || each == '\x7F';
    });
}

URLClass operaHistoryRecord(const OperaHistorySource &source, const std::string &url, Date visited,
                            std::uint64_t offset) {
    const ReadContext &ctx = source.ctx;
    URLClass record;
    record.Action = "Visited";
    record.SourceFile_ID = ctx.file.SourceFile_ID;
    record.URL = url;
    record.URLRawValue = url;
    record.RootPath = ctx.evidence.rootOf(ctx.file.FullPath);
    record.cacheType = kOperaHistory.word;
    record.CacheFileCreatedGMTDOS = source.fileCreated;
    record.HashedURL = hashOfUrl(url);
    record.HistoryFilePath = textOf(ctx.file.FullPath);
    record.HistoryVersion = ctx.file.Version;
    record.MapFileOffset = static_cast<std::int64_t>(offset);
    record.host = ParseHost(url);
    record.IsHistory = true;
    record.ActionDateUTC = visited;
    record.LastVisited = visited;
    record.ActionDateLocal = UTCDateToLocal(visited, ctx.clock);
    record.RecordSize = charCount(url);
    record.Status = ctx.deleted ? "Deleted" : "URL";
    record.URLParameters = parametersOf(url);
    record.URLProtocol = GetURLProtocol(url);
    record.Visits = kVisitsUnknown;
    return record;
}

} // namespace nv
