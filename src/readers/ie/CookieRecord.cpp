#include "readers/ie/CookieRecord.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/Limits.h"
#include "readers/ie/IndexFacts.h"
#include "readers/ie/Kinds.h"
#include "time/SourceClocks.h"

#include <string_view>

namespace nv {

// A record, offsets from its signature:
//   cookie = "URL " blocks:u32 modified:filetime@08 used:filetime@10
//            expires:(dosdate:u16 dostime:u16 0:u32 | filetime)@18
//            size:i32@20 name:u32@3C hits:i32@54 text:text0@68
// name is an offset within the record; text is "Cookie:user@host/path"; text0 ends at a zero byte
// or with the record.

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kBlocks = 4;
constexpr std::uint64_t kModified = 8;
constexpr std::uint64_t kLastUsed = 0x10;
constexpr std::uint64_t kFileSize = 0x20;
constexpr std::uint64_t kFileName = 0x3C;
constexpr std::uint64_t kHits = 0x54;
constexpr std::uint64_t kText = 0x68;

std::string textAt(ByteView record, std::uint64_t at) {
    return fromAnsi(record.untilZero(at));
}

/// All in UTC, as every record has them: what a row says must not hang on the examiner's machine.
void setDates(UrlRecord &result, ByteView record, const Clock &clock) {
    result.OtherDate = fileTimeToUtc(record.u64le(kModified));
    result.OtherDateMeaning = "Cookie Modified";
    result.CacheFileLastAccessed = fileTimeToUtc(record.u64le(kLastUsed));
    result.ActionDateUTC = result.CacheFileLastAccessed;
    result.ActionDateLocal = utcDateToLocal(result.ActionDateUTC, clock);
    result.ExpiryDate = expiryOf(record);
}

void setCookieUrl(UrlRecord &result, ByteView record) {
    result.URLRawValue = textAt(record, kText);
    const std::string_view raw = result.URLRawValue;
    // With nothing before it, "@" parts no user from the host.
    const std::size_t at = raw.find('@');
    const bool hasUser = at != std::string_view::npos && at > 0;
    setUrl(result, hasUser ? raw.substr(at + 1) : raw);
    if (result.host.empty()) // a cookie's text names no protocol
        result.host = parseHost("://" + result.URL);
}

} // namespace

UrlRecord parseIECookie(ByteView record, const HistoryFile &file, std::uint64_t recordOffset,
                        DeletedFlag deletedFlag, const Clock &clock) {
    UrlRecord result;
    result.HistoryFilePath = textOf(file.fullPath);
    result.MapFileOffset = static_cast<std::int64_t>(recordOffset);
    result.HistoryVersion = file.version;
    result.SourceFile_ID = file.sourceFileID;
    result.Visits = record.i32le(kHits);
    result.RecordSize = std::uint64_t{record.u32le(kBlocks)} * 0x80;
    result.cacheType = kIECookies.word;
    result.Action = "Stored";
    setDates(result, record, clock);
    result.CacheFileSize = record.i32le(kFileSize);
    result.CacheFileNameRecordOffset = record.u32le(kFileName);
    if (result.CacheFileNameRecordOffset != 0) // 0 is no name, not one that begins "URL "
        result.CacheFileName = textAt(record, result.CacheFileNameRecordOffset);
    result.CacheFileExt = getFileExtension(result.CacheFileName);
    setCookieUrl(result, record);
    result.IsCookie = true;
    result.Status = deletedFlag == DeletedFlag::yes ? "Deleted" : "Cookie";
    result.Links = result.URL + ";";
    return result;
}

std::optional<fs::path> locateCookieFile(UrlRecord &record, const HistoryFile &file,
                                         const Evidence &evidence) {
    record.RootPath = evidence.rootOf(file.fullPath);
    if (record.CacheFileName.empty())
        return std::nullopt;
    const fs::path folder = file.fullPath.parent_path();
    std::optional<fs::path> found = evidence.find(folder, record.CacheFileName);
    if (!found)
        return std::nullopt;
    record.CacheFileExists = true;
    record.CacheFolderName = textOf(folder.filename());
    record.CacheRootPath = textOf(folder);
    record.Category = "Cookies";
    // The index and not the text file: that one's text stands in the record itself, and earlier
    // cases have the index here.
    record.CacheFileRelativePath = evidence.relativeOf(file.fullPath);
    record.RunTimeContentPath = *found;
    return found;
}

CookieText readCookieText(const EvidenceFile &file) {
    const Bytes bytes = file.read(0, limits::kCookieText);
    CookieText result{fromAnsi(ByteView(bytes)), bytes, file.size() <= bytes.size()};
    std::erase_if(result.text, [](char c) { return c == '\r' || c == '\n'; });
    return result;
}

} // namespace nv
