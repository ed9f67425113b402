// A folder with the files index, data_0 to data_3 and f_000001 and so on. The layout stands in
// CacheWalk.cpp (files) and CacheRecords.cpp (records).

#include "readers/chrome/Cache.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/chrome/CacheClass.h"
#include "readers/chrome/Kinds.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

void setKeyURL(URLClass &record, const std::string &keyURL) {
    record.URL = keyURL;
    record.HashedURL = hashOfUrl(keyURL);
    record.host = ParseHost(keyURL);
    record.URLProtocol = GetURLProtocol(keyURL);
    record.CacheFileName = GetFilenameFromPath(keyURL);
    record.URLFileName = record.CacheFileName;
}

void setDates(URLClass &record, const ChromeHeaderClass &header, const Clock &clock) {
    record.ActionDateUTC = header.LastModifiedTime;
    record.ActionDateLocal = UTCDateToLocal(header.LastModifiedTime, clock);
    record.LastVisited = header.LastModifiedTime;
    record.CacheFileLastAccessed = header.LastModifiedTime;
    record.OtherDate = header.LastRequestedTime;
    record.OtherDateMeaning = "Last Requested Time";
}

void setSource(URLClass &record, const ReadContext &ctx) {
    const std::filesystem::path folder = ctx.file.FullPath.parent_path();
    record.SourceFile_ID = ctx.file.SourceFile_ID;
    record.cacheType = kChromeCache.word;
    record.HistoryFilePath = textOf(ctx.file.FullPath);
    record.HistoryVersion = ctx.file.Version;
    record.RootPath = ctx.evidence.rootOf(ctx.file.FullPath);
    record.CacheRootPath = textOf(folder);
    record.CacheFolderName = textOf(folder.filename());
    record.CacheFileRelativePath = ctx.evidence.relativeOf(ctx.file.FullPath);
    record.CacheFileCreatedGMTDOS = ctx.evidence.factsOf(ctx.file.FullPath).created;
}

/// That the body is there is taken for granted; extracting it shows.
void setBody(URLClass &record, const ChromeEntryClass &entry) {
    const ChromeAddressMapClass &body = entry.ContentAddressMap;
    record.DataBlockFile = body.BlockFileType == 0
                               ? body.SeparateFileName
                               : fmt::format("data_{}", body.DataBlockFileNumber);
    record.DataBlockFileOffset = static_cast<std::int64_t>(body.DataBlockFileOffset);
    record.CacheFileSize = entry.ContentSize;
    record.CacheFileExists = true;
}

/// Shows the record in hand. How many there will be is known at the end only: until then the
/// index's own count stands for it.
void showRecord(ReadContext &ctx, std::int64_t number, std::int64_t counted,
                const std::string &url) {
    const std::int64_t total = std::max(number, counted);
    ctx.task.show({{}, 0, 0, fmt::format("Record {} of {} {}", number, total, url), number, total});
}

} // namespace

URLClass ParseChromeCacheURL(const ChromeEntryClass &entry, const ReadContext &ctx) {
    URLClass record;
    record.Action = "Visited";
    record.Status = "URL";
    record.Visits = kVisitsUnknown;
    record.RecordSize = entry.KeyLength;
    record.MapFileOffset = static_cast<std::int64_t>(entry.MapFileOffset);
    setKeyURL(record, entry.keyURL);
    setSource(record, ctx);
    setBody(record, entry);
    if (entry.HeaderObject) {
        setDates(record, *entry.HeaderObject, ctx.clock);
        record.MetaData = entry.HeaderObject->HeaderValue;
        record.MetaDataRecordOffset = entry.HeaderAddressMap.DataBlockFileOffset;
    }
    return record;
}

ReadResult ParseChromeCache(ReadContext &ctx) {
    ChromeCacheClass cache(ctx.file.FullPath, ctx.evidence, ctx.log, ctx.task);
    std::int64_t count = 0;
    // Records leave as they are found: a hostile index may lead to more of them than memory holds.
    ReadResult result = cache.ReadCache([&](const ChromeEntryClass &entry) {
        URLClass record = ParseChromeCacheURL(entry, ctx);
        ctx.sink.save(record);
        ++count;
        if (ctx.task.wantsStep())
            showRecord(ctx, count, cache.IndexInfo.EntryCount, record.URL);
    });
    ctx.task.describe({"PARSING GOOGLE CHROME CACHE",
                       fmt::format("A total of {} URLs were found.", count),
                       textOf(ctx.file.FullPath), "chromeCache-32.gif"});
    ctx.task.show({"All done.", count, count, {}, 0, 0});
    return result;
}

} // namespace nv
