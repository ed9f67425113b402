#include "readers/firefox/CacheRecord.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/PageObjects.h"
#include "readers/firefox/Kinds.h"
#include "time/SourceClocks.h"

#include <filesystem>

namespace nv {

namespace {

/// Zeros part the names and values of the headers and become blanks.
std::string textWithBlanks(ByteView bytes) {
    return BytesToString(bytes, 0, 0, false, true);
}

/// The key is counted with its closing zero, which is no part of the URL. The browser puts its
/// client's name before it: "HTTP:http:" is undone, and "HTTP:https:" stays, as it always has.
std::string urlOf(const Bytes &key) {
    ByteView bytes(key);
    if (!bytes.empty() && bytes.u8(bytes.size() - 1) == 0)
        bytes = bytes.sub(0, bytes.size() - 1);
    return bytes.empty() ? std::string() : replaceAll(textWithBlanks(bytes), "HTTP:http:", "http:");
}

void setUrl(URLClass &url, const mzRecordMetaData &metaData) {
    url.URL = urlOf(metaData.URLData);
    url.URLRawValue = url.URL;
    url.host = ParseHost(url.URL);
    url.HashedURL = hashOfUrl(url.URL);
    url.CacheFileName = GetFilenameFromPath(url.URL);
    url.CacheFileNameDecoded = url.CacheFileName;
    url.URLProtocol = GetURLProtocol(url.URL);
    url.URLParameters = parametersOf(url.URL);
    url.User = ParseUserFromURL(url.URL);
    setPageObjects(url);
}

/// The cache's folder: bodies are fetched from `RootPath` + `CacheRootPath`.
void setPlace(URLClass &url, const HistoryFile &file, const Evidence &evidence) {
    if (evidence.kindOf(file.FullPath.parent_path()) != PlaceKind::folder)
        return;
    const std::filesystem::path map = evidence.relativeOf(file.FullPath);
    url.RootPath = evidence.rootOf(file.FullPath);
    url.CacheRootPath = textOf(map.parent_path());
    url.CacheFileRelativePath = url.CacheRootPath;
}

void setBody(URLClass &url, const mzCacheRecord &record) {
    url.CacheFileSize = record.RecordMetaData->DataSize;
    url.CacheFileExists = true;
    const std::int64_t blockFile = record.BucketData.CacheBlockFileNumber;
    if (blockFile == 0) {
        url.DataBlockFile = record.Bucket.HashNumberAsHex;
        return;
    }
    url.DataBlockFile = std::to_string(blockFile);
    url.DataBlockFileOffset = record.RecordData.FileOffsetBOF;
}

void setEvent(URLClass &url, const mzRecordMetaData &metaData, const Clock &clock) {
    url.Action = "Visited";
    url.ActionDateUTC = metaData.ActionDateUTC;
    url.ActionDateLocal = UTCDateToLocal(url.ActionDateUTC, clock);
    url.OtherDate = metaData.LastModified;
    url.OtherDateMeaning = "Last Modified";
    url.Visits = metaData.FetchCount;
    url.Status = "URL";
}

} // namespace

std::optional<URLClass> ParseFirefoxCacheURL(const mzCacheRecord &record, const HistoryFile &file,
                                             const Evidence &evidence, const Clock &clock) {
    if (!record.RecordMetaData)
        return std::nullopt;
    std::optional<URLClass> url(std::in_place);
    url->SourceFile_ID = file.SourceFile_ID;
    url->cacheType = kFirefoxCache.word;
    url->HistoryFilePath = textOf(file.FullPath);
    url->HistoryVersion = file.Version;
    // Of a separate file too, where it points nowhere: earlier cases have these values.
    url->MapFileOffset = record.RecordData.FileOffsetBOF;
    url->RecordSize = static_cast<std::uint64_t>(record.RecordData.FileOffsetEOF -
                                                 record.RecordData.FileOffsetBOF);
    url->MetaData = textWithBlanks(ByteView(record.RecordMetaData->MetaData));
    url->MetaDataRecordOffset = 1;
    // Every entry leaves as a page, whatever its headers say: what a picture or script is comes
    // out when its body is looked at.
    url->IsWebPage = true;
    setPlace(*url, file, evidence);
    setBody(*url, record);
    setEvent(*url, *record.RecordMetaData, clock);
    setUrl(*url, *record.RecordMetaData);
    return url;
}

} // namespace nv
