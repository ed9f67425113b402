// A folder with the files index, data_0 to data_3 and f_000001 and so on. The layout stands in
// CacheWalk.cpp (files) and cacheRecords.cpp (records).

#include "readers/chrome/Cache.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Dissection.h"
#include "readers/FactDate.h"
#include "readers/HttpHeaders.h"
#include "readers/chrome/BlockCache.h"
#include "readers/chrome/CacheFurther.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/LaterCache.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace nv {

namespace {

void setKeyURL(UrlRecord &record, const std::string &keyURL) {
    record.URL = keyURL;
    record.HashedURL = hashOfUrl(keyURL);
    record.host = parseHost(keyURL);
    record.URLProtocol = getURLProtocol(keyURL);
    record.CacheFileName = getFilenameFromPath(keyURL);
    record.URLFileName = record.CacheFileName;
}

void setDates(UrlRecord &record, const ChromeHeader &header, const Clock &clock) {
    record.ActionDateUTC = header.lastModifiedTime;
    record.ActionDateLocal = utcDateToLocal(header.lastModifiedTime, clock);
    record.LastVisited = header.lastModifiedTime;
    record.CacheFileLastAccessed = header.lastModifiedTime;
    record.OtherDate = header.lastRequestedTime;
    record.OtherDateMeaning = "Last Requested Time";
}

void setSource(UrlRecord &record, const ReadContext &ctx) {
    const std::filesystem::path folder = ctx.file.fullPath.parent_path();
    record.SourceFile_ID = ctx.file.sourceFileID;
    record.cacheType = kChromeCache.word;
    record.HistoryFilePath = textOf(ctx.file.fullPath);
    record.HistoryVersion = ctx.file.version;
    record.RootPath = ctx.evidence.rootOf(ctx.file.fullPath);
    record.CacheRootPath = textOf(folder);
    record.CacheFolderName = textOf(folder.filename());
    record.CacheFileRelativePath = ctx.evidence.relativeOf(ctx.file.fullPath);
    record.CacheFileCreatedGMTDOS = ctx.evidence.factsOf(ctx.file.fullPath).created;
}

/// That the body is there is taken for granted; extracting it shows.
void setBody(UrlRecord &record, const ChromeEntry &entry) {
    const ChromeAddressMap &body = entry.contentAddressMap;
    record.DataBlockFile = body.blockFileType == 0
                               ? body.separateFileName
                               : fmt::format("data_{}", body.dataBlockFileNumber);
    record.DataBlockFileOffset = static_cast<std::int64_t>(body.dataBlockFileOffset);
    record.CacheFileSize = entry.contentSize;
    record.CacheFileExists = true;
}

/// Shows the record in hand. How many there will be is known at the end only: until then the
/// index's own count stands for it.
void showRecord(ReadContext &ctx, std::int64_t number, std::int64_t counted,
                const std::string &url) {
    const std::int64_t total = std::max(number, counted);
    ctx.task.show({{}, 0, 0, fmt::format("Record {} of {} {}", number, total, url), number, total});
}

/// What no column of a classic record holds.
void addFacts(UrlRecord &record, const ChromeEntry &entry) {
    record.facts.add("cache_key", entry.wholeKey);
    record.facts.add("chain", entry.chain);
    if (entry.rankingObject) {
        record.facts.add("last_used", factDate(entry.rankingObject->lastUsedTime));
        record.facts.add("last_updated", factDate(entry.rankingObject->lastModifiedTime));
    }
}

void addAnswerFacts(UrlRecord &record, const ChromeEntry &entry) {
    record.facts.add("http_headers", entry.answer);
    record.facts.add("mime_type", mimeTypeOf(entry.answer));
}

void clearBody(UrlRecord &record) {
    record.DataBlockFile.clear();
    record.DataBlockFileOffset = 0;
    record.CacheFileExists = false;
}

UrlRecord furtherRecord(ChromeFurtherEntry &found, const ReadContext &ctx) {
    ChromeEntry &entry = found.entry;
    if (!entry.wholeKey.empty())
        entry.keyURL = std::move(entry.wholeKey);
    entry.wholeKey.clear();
    UrlRecord record = parseChromeCacheURL(entry, ctx);
    record.MetaData = entry.answer;
    record.MIMEType = mimeTypeOf(entry.answer);
    addFacts(record, entry);
    record.facts.add("classic_rule", std::string(found.classicRule));
    if (!found.foundHow.empty()) {
        record.cacheType = kChromeCacheRemnant.word;
        record.Status = "Recovered";
        record.facts.add("recovered_from", found.foundHow);
        record.facts.add("body", found.body);
        if (found.body.starts_with("none"))
            clearBody(record);
    }
    record.facts.add("source_offset", record.MapFileOffset);
    return record;
}

/// A cache may have been found by its second block file.
std::filesystem::path indexOf(const ReadContext &ctx) {
    const std::filesystem::path &file = ctx.file.fullPath;
    if (!toLower(textOf(file.filename())).starts_with("data_"))
        return file;
    return ctx.evidence.find(file.parent_path(), "index").value_or(file);
}

/// Nothing when it is a cache of the first layout.
std::optional<ReadResult> readAsLater(ReadContext &ctx) {
    const ReadResult unread{
        ReadState::failed, "could not be read: " + textOf(ctx.file.fullPath), 0, {}};
    return trapped(ctx.log, Severity::Serious, "ChromiumBlockCache.read()", kContactSupport,
                   std::optional(unread), [&ctx] { return parseLaterBlockCache(ctx); });
}

bool holdsFirstEntries(const ReadContext &ctx) {
    return trapped(
        ctx.log, Severity::Serious, "ParserClass.ParseChromeCache()", kContactSupport, false,
        [&ctx] { return hasFirstEntries(ctx.evidence, ctx.file.fullPath.parent_path()); });
}

} // namespace

UrlRecord parseChromeCacheURL(const ChromeEntry &entry, const ReadContext &ctx) {
    UrlRecord record;
    record.Action = "Visited";
    record.Status = "URL";
    record.Visits = kVisitsUnknown;
    record.RecordSize = entry.keyLength;
    record.MapFileOffset = static_cast<std::int64_t>(entry.mapFileOffset);
    setKeyURL(record, entry.keyURL);
    setSource(record, ctx);
    setBody(record, entry);
    if (entry.headerObject) {
        setDates(record, *entry.headerObject, ctx.clock);
        record.MetaData = entry.headerObject->headerValue;
        record.MetaDataRecordOffset = entry.headerAddressMap.dataBlockFileOffset;
    }
    return record;
}

ReadResult parseChromeCache(ReadContext &ctx) {
    const auto later = ctx.classicOnly ? std::nullopt : readAsLater(ctx);
    if (later && later->state != ReadState::failed)
        return *later;
    ChromeBlockCache cache(indexOf(ctx), ctx.evidence, ctx.log, ctx.task);
    std::int64_t count = 0;
    const auto save = [&](UrlRecord &record) {
        ctx.sink.save(record);
        ++count;
        if (ctx.task.wantsStep())
            showRecord(ctx, count, cache.indexInfo.entryCount, record.URL);
    };
    ChromeBlockCache::TakeFurther takeFurther;
    if (!ctx.classicOnly)
        takeFurther = [&](ChromeFurtherEntry entry) {
            UrlRecord record = furtherRecord(entry, ctx);
            save(record);
        };
    // Records leave as they are found: a hostile index may lead to more of them than memory holds.
    const auto take = [&](const ChromeEntry &entry) {
        UrlRecord record = parseChromeCacheURL(entry, ctx);
        if (!ctx.classicOnly) {
            addFacts(record, entry);
            addAnswerFacts(record, entry);
        }
        save(record);
    };
    ReadResult result = later ? *later : cache.readCache(take, takeFurther);
    if (result.state == ReadState::failed && takeFurther && holdsFirstEntries(ctx))
        result = cache.readWithoutIndex(takeFurther, result.reason);
    ctx.task.describe({"PARSING GOOGLE CHROME CACHE",
                       fmt::format("A total of {} URLs were found.", count),
                       textOf(ctx.file.fullPath), "chromeCache-32.gif"});
    ctx.task.show({"All done.", count, count, {}, 0, 0});
    return result;
}

} // namespace nv
