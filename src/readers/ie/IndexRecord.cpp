#include "readers/ie/IndexRecord.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/ie/IndexFields.h"
#include "readers/ie/Kinds.h"
#include "time/SourceClocks.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

// A record, offsets from its signature:
//   record   = signature[4] blocks:i32 ( redirect | entry )     its length is blocks * 0x80
//   redirect = unused[8] url:text0                              "REDR"
//   entry    = date1:filetime@08 date2:filetime@10 size:i32@20 folder:u8@38 name:i32@3C
//              headers:i32@44 hits:i32@54 created:u16[2]@5C url:text0@68   "URL ", "LEAK", "FILE"
// name and headers are offsets within the record; text0 ends at a zero byte or with the record.

namespace {

using namespace indexfields;

constexpr std::string_view kRedirect = "REDR";

// The lists that the program is delivered with.
constexpr std::array<std::string_view, 8> kHrefExtensions = {"js",  "css",  "php", "txt",
                                                             "asp", "aspx", "htm", "html"};
constexpr std::array<std::string_view, 7> kPictureExtensions = {"jpe", "jpeg", "jpg", "gif",
                                                                "bmp", "png",  "tif"};

template <class List>
bool contains(const List &list, std::string_view word) {
    return std::find(list.begin(), list.end(), word) != list.end();
}

std::string textAt(ByteView record, std::uint64_t at) {
    return fromAnsi(record.untilZero(at));
}

/// An offset within a record that must not be negative. Throws OutOfBytes.
std::uint64_t offsetAt(ByteView record, std::uint64_t at) {
    const std::int32_t offset = record.i32le(at);
    if (offset < 0)
        throw OutOfBytes(record.place() + at, record.u32le(at), record.size());
    return static_cast<std::uint64_t>(offset);
}

bool isPictureUrl(std::string_view url) {
    const std::string_view tail = url.substr(url.size() - std::min<std::size_t>(url.size(), 4));
    const std::size_t point = tail.rfind('.');
    return contains(kPictureExtensions,
                    toLower(point == std::string_view::npos ? tail : tail.substr(point + 1)));
}

void setHeaders(UrlRecord &result, ByteView record) {
    const std::int32_t offset = record.i32le(kHeaders);
    if (offset < 0)
        return;
    result.MetaDataRecordOffset = static_cast<std::uint64_t>(offset);
    result.MetaData = textAt(record, result.MetaDataRecordOffset);
    // A record without headers has an offset of 0 and so gives its own signature here.
    if (charCount(result.MetaData) >= 4 && !startsWithNoCase(result.MetaData, "http"))
        result.MetaData.clear();
}

void setCacheFields(UrlRecord &result, ByteView record, const FolderList &folders) {
    result.CacheFileNameRecordOffset = offsetAt(record, kFileName);
    if (result.CacheFileNameRecordOffset != 0) // 0 is no name, not one that begins "URL "
        result.CacheFileName = textAt(record, result.CacheFileNameRecordOffset);
    if (result.CacheFileName.find('%') != std::string::npos)
        result.CacheFileNameDecoded = percentDecode(result.CacheFileName);
    result.CacheFileSize = record.i32le(kFileSize);
    setHeaders(result, record);
    // Records without a file of their own have a number after the folders, such as 254.
    if (const std::uint8_t folder = record.u8(kFolder); folder < folders.size())
        result.CacheFolderName = folders[folder];
    result.IsValidHTMLTagObject = contains(kHrefExtensions, getFileExtension(result.URL));
    result.IsValidHTMLPictureObject = isPictureUrl(result.URL);
}

/// What the words and dates of a record mean in an index of its kind.
struct Meaning {
    HistoryFileType type;
    std::string_view cacheType;
    enum class Links { unset, toItself } links;
    std::string_view otherDate; ///< empty when the first date is not told
};

using Links = Meaning::Links;
constexpr std::array<Meaning, 8> kMeanings = {{
    {HistoryFileType::ieHistory, kIEHistory.word, Links::toItself, "Last Visited (GMT)"},
    {HistoryFileType::ieDaily, kIEDaily.word, Links::toItself, "Last Visited (GMT)"},
    {HistoryFileType::ieCookies, kIECookies.otherWord, Links::toItself, ""},
    {HistoryFileType::importedBinary, kImportedBinary.word, Links::toItself, ""},
    {HistoryFileType::histEx, kUnallocated.word, Links::toItself, ""},
    {HistoryFileType::histExIndex, kUnallocated.word, Links::toItself, ""},
    {HistoryFileType::ieWeekly, kIEWeekly.word, Links::unset, "File Created (GMT)"},
    {HistoryFileType::ieCache, kIECache.word, Links::unset, "Server Modified (GMT)"},
}};

/// A weekly index has its first date in local time, and keeps the second one as shown to the user.
void setWeeklyDates(UrlRecord &result, ByteView record, const Clock &clock) {
    result.ActionDateLocal = fileTimeToUtc(record.u64le(kFirstDate));
    result.ActionDateUTC = localDateToUTC(result.ActionDateLocal, clock);
    result.OtherDate = fileTimeToLocalDate(record.u64le(kSecondDate), clock);
}

void setMeaning(UrlRecord &result, ByteView record, HistoryFileType type, const Clock &clock) {
    if (type == HistoryFileType::none) { // a file of unknown kind is history without an event
        result.Links = result.URL + ";";
        result.IsHistory = true;
    }
    const auto *meaning = std::find_if(kMeanings.begin(), kMeanings.end(),
                                       [type](const Meaning &m) { return m.type == type; });
    if (meaning == kMeanings.end())
        return;
    result.Action = "Visited";
    result.cacheType = meaning->cacheType;
    result.IsHistory = type != HistoryFileType::ieCache;
    if (meaning->links == Links::toItself)
        result.Links = result.URL + ";";
    result.OtherDateMeaning = meaning->otherDate;
    if (type == HistoryFileType::ieWeekly)
        return setWeeklyDates(result, record, clock);
    result.ActionDateUTC = fileTimeToUtc(record.u64le(kSecondDate));
    if (!meaning->otherDate.empty())
        result.OtherDate = fileTimeToUtc(record.u64le(kFirstDate));
}

void parseRedirect(UrlRecord &result, ByteView record, HistoryFileType type) {
    result.URLRawValue = textAt(record, kRedirectUrl);
    result.URL = result.URLRawValue;
    result.HashedURL = hashOfUrl(result.URL);
    result.Action = "Redirected";
    if (type >= HistoryFileType::ieHistory && type <= HistoryFileType::ieCache)
        result.cacheType = kIECache.word;
}

} // namespace

/// The field is told to be a FILETIME, but browsers wrote a DOS date and other data there: a value
/// that makes no sense as the one is tried as the other.
Date createdDate(ByteView record) {
    constexpr std::uint64_t kYear1980 = 119600064000000000; // in 100 ns since 1601
    constexpr std::uint64_t kYear2101 = 157784544000000000;
    const std::uint64_t ticks = record.u64le(kCreated);
    if (ticks >= kYear1980 && ticks < kYear2101)
        return fileTimeToUtc(ticks);
    return dosDateToUtc(record.u16le(kCreated), record.u16le(kCreated + 2));
}

void setUrl(UrlRecord &record, std::string_view text) {
    record.URL = percentDecode(parseURLFromRawURL(text));
    record.HashedURL = hashOfUrl(record.URL);
    for (const std::string_view scheme : {"http://", "https://", "file:///"})
        if (containsNoCase(record.URL, scheme))
            record.host = parseHost(record.URL);
    record.User = parseUserFromURL(record.URLRawValue);
    record.URLProtocol = getURLProtocol(record.URL);
    record.URLParameters = parametersOf(record.URL);
}

std::optional<UrlRecord> parseIEURL(ByteView record, const HistoryFile &file,
                                    std::uint64_t recordOffset, const FolderList &folders,
                                    DeletedFlag deletedFlag, const Clock &clock) {
    if (record.empty())
        return std::nullopt;
    std::optional<UrlRecord> result(std::in_place);
    result->Status = record.sub(0, 4).raw();
    result->HistoryFilePath = textOf(file.fullPath);
    result->MapFileOffset = static_cast<std::int64_t>(recordOffset);
    result->HistoryVersion = file.version;
    result->SourceFile_ID = file.sourceFileID;
    const HistoryFileType type = file.historyFileType;
    if (result->Status == kRedirect) {
        parseRedirect(*result, record, type);
        return result;
    }
    if (!contains(std::array{"LEAK", "FILE", "URL "}, result->Status))
        return std::nullopt;
    result->Visits = record.i32le(kHits);
    result->RecordSize = std::uint64_t{record.u32le(kBlocks)} * 0x80;
    result->CacheFileCreatedGMTDOS = createdDate(record);
    result->URLRawValue = textAt(record, kUrl);
    setUrl(*result, result->URLRawValue);
    if (type == HistoryFileType::ieCache)
        setCacheFields(*result, record, folders);
    else
        result->Status = deletedFlag == DeletedFlag::yes ? "Deleted" : "URL";
    setMeaning(*result, record, type, clock);
    return result;
}

} // namespace nv
