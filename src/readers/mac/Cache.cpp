#include "readers/mac/Cache.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Body.h"
#include "readers/Dissection.h"
#include "readers/WholeFile.h"
#include "readers/mac/Kinds.h"

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseMACIECache()";

/// Taken from the file's size, since an offset and a size of the file may overflow when added.
bool liesIn(std::uint64_t fileSize, std::int64_t offset, std::int64_t size) {
    return offset > 0 && size > 0 && static_cast<std::uint64_t>(offset) <= fileSize &&
           static_cast<std::uint64_t>(size) <= fileSize - static_cast<std::uint64_t>(offset);
}

void setUrl(URLClass &record, const std::string &stored) {
    record.URLRawValue = stored;
    record.URL = percentDecode(ParseURLFromRawURL(stored));
    record.HashedURL = hashOfUrl(record.URL);
    record.host = ParseHost(record.URL);
    record.URLProtocol = GetURLProtocol(record.URL);
    record.URLParameters = parametersOf(record.URL);
    record.URLFileName = GetFilenameFromPath(record.URL);
    record.CacheFileName = record.URLFileName;
}

/// Where the record and its body lie: in the one cache file.
void setPlace(URLClass &record, const ReadContext &ctx) {
    const std::filesystem::path &file = ctx.file.FullPath;
    record.SourceFile_ID = ctx.file.SourceFile_ID;
    record.HistoryFilePath = textOf(file);
    record.HistoryVersion = ctx.file.Version;
    record.RootPath = ctx.evidence.rootOf(file);
    record.CacheFileRelativePath = ctx.evidence.relativeOf(file);
    record.CacheRootPath = textOf(file.parent_path());
    record.CacheFolderName = textOf(file.parent_path().filename());
    record.DataBlockFile = textOf(file.filename());
}

} // namespace

URLClass ParseMACIEURL(const macIEURLClass &entry, const ReadContext &ctx, std::uint64_t fileSize) {
    URLClass record;
    setUrl(record, entry.macURL);
    setPlace(record, ctx);
    record.cacheType = kMacIECache.word;
    record.Action = "Visited";
    record.Status = ctx.deleted ? "Deleted" : "URL";
    record.MIMEType = entry.macMime;
    record.IsWebPage = containsNoCase(entry.macMime, "text/html");
    record.ActionDateUTC = entry.macLastVisitDate;
    record.OtherDate = entry.macFirstVisitDate;
    record.OtherDateMeaning = "First Visit Date";
    record.Visits = entry.macFetchCount;
    record.MapFileOffset = static_cast<std::int64_t>(entry.recordOffset);
    record.DataBlockFileOffset = static_cast<std::int64_t>(entry.macDataFileOffset);
    record.CacheFileSize = entry.macDataSize;
    record.CacheFileExists = liesIn(fileSize, record.DataBlockFileOffset, record.CacheFileSize);
    return record;
}

ReadResult readMACIECache(ReadContext &ctx, ByteView bytes) {
    RecordTrap trap(ctx.log, kProcedure, textOf(ctx.file.FullPath));
    macIECache cache;
    ReadResult result = cache.ReadMACIECache(bytes, ctx.task, [&](const macIEURLClass &entry) {
        trap.attempt(entry.recordOffset, [&] {
            URLClass record = ParseMACIEURL(entry, ctx, bytes.size());
            ctx.sink.save(record);
        });
    });
    if (trap.failed() > 0)
        result.passedOver["damaged record"] += trap.failed();
    return result;
}

ReadResult ParseMACIECache(ReadContext &ctx) {
    return readWholeFile(ctx,
                         {"PARSING MACINTOSH CACHE FILE", "Internet Explorer", "", "ie-32.gif"},
                         kProcedure, [&ctx](ByteView bytes) { return readMACIECache(ctx, bytes); });
}

bool ExtractMACFile(const URLClass &record, const Evidence &evidence, BodyTarget &target) {
    const auto file = evidence.find(record.RootPath, record.CacheFileRelativePath);
    if (!file)
        return false;
    const EvidenceFile cache = evidence.open(*file);
    if (!liesIn(cache.size(), record.DataBlockFileOffset, record.CacheFileSize))
        return false;
    target.copy(cache, static_cast<std::uint64_t>(record.DataBlockFileOffset),
                static_cast<std::uint64_t>(record.CacheFileSize));
    return true;
}

} // namespace nv
