#include "readers/firefox/cache/CacheRecord.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/cache/CachedAddress.h"
#include "time/SourceClocks.h"

#include <filesystem>

namespace nv {

namespace {

/// Zeros part the names and values of the headers and become blanks.
std::string textWithBlanks(ByteView bytes) {
    return bytesToString(bytes, 0, 0, false, true);
}

/// The cache's folder: bodies are fetched from `RootPath` + `CacheRootPath`.
void setPlace(UrlRecord &url, const HistoryFile &file, const Evidence &evidence) {
    if (evidence.kindOf(file.fullPath.parent_path()) != PlaceKind::folder)
        return;
    const std::filesystem::path map = evidence.relativeOf(file.fullPath);
    url.RootPath = evidence.rootOf(file.fullPath);
    url.CacheRootPath = textOf(map.parent_path());
    url.CacheFileRelativePath = url.CacheRootPath;
}

void setBody(UrlRecord &url, const CacheRecord &record) {
    url.CacheFileSize = record.recordMetaData->dataSize;
    url.CacheFileExists = true;
    const std::int64_t blockFile = record.bucketData.cacheBlockFileNumber;
    if (blockFile == 0) {
        url.DataBlockFile = record.bucket.hashNumberAsHex;
        return;
    }
    url.DataBlockFile = std::to_string(blockFile);
    url.DataBlockFileOffset = record.recordData.fileOffsetBOF;
}

void setEvent(UrlRecord &url, const CacheRecordMetaData &metaData, const Clock &clock) {
    url.Action = "Visited";
    url.ActionDateUTC = metaData.actionDateUTC;
    url.ActionDateLocal = utcDateToLocal(url.ActionDateUTC, clock);
    url.OtherDate = metaData.lastModified;
    url.OtherDateMeaning = "Last Modified";
    url.Visits = metaData.fetchCount;
    url.Status = "URL";
}

} // namespace

/// The key is counted with its closing zero, which is no part of the URL. The browser puts its
/// client's name before it: "HTTP:http:" is undone, and "HTTP:https:" stays, as it always has.
std::string firefoxCacheAddress(const Bytes &key) {
    ByteView bytes(key);
    if (!bytes.empty() && bytes.u8(bytes.size() - 1) == 0)
        bytes = bytes.sub(0, bytes.size() - 1);
    return bytes.empty() ? std::string() : replaceAll(textWithBlanks(bytes), "HTTP:http:", "http:");
}

std::optional<UrlRecord> parseFirefoxCacheURL(const CacheRecord &record, const HistoryFile &file,
                                              const Evidence &evidence, const Clock &clock) {
    if (!record.recordMetaData)
        return std::nullopt;
    std::optional<UrlRecord> url(std::in_place);
    url->SourceFile_ID = file.sourceFileID;
    url->cacheType = kFirefoxCache.word;
    url->HistoryFilePath = textOf(file.fullPath);
    url->HistoryVersion = file.version;
    // Of a separate file too, where it points nowhere: earlier cases have these values.
    url->MapFileOffset = record.recordData.fileOffsetBOF;
    url->RecordSize = static_cast<std::uint64_t>(record.recordData.fileOffsetEOF -
                                                 record.recordData.fileOffsetBOF);
    url->MetaData = textWithBlanks(ByteView(record.recordMetaData->metaData));
    url->MetaDataRecordOffset = 1;
    // Every entry leaves as a page, whatever its headers say: what a picture or script is comes
    // out when its body is looked at.
    url->IsWebPage = true;
    setPlace(*url, file, evidence);
    setBody(*url, record);
    setEvent(*url, *record.recordMetaData, clock);
    const std::string address = firefoxCacheAddress(record.recordMetaData->urlData);
    setCachedAddress(*url, address, address);
    return url;
}

std::string doubtOn(const CacheRecord &record) {
    const CacheRecordMetaData &metaData = *record.recordMetaData;
    if (metaData.version != record.header.version)
        return "metadata of another version than the map's: their blocks may hold something else";
    const auto there = static_cast<std::int64_t>(metaData.metaData.size());
    if (there < metaData.metaDataSize)
        return "headers that are longer than what is there";
    const std::int64_t blocks = record.bucketMetaData.numContBlocks + 1;
    if (kMetaDataHeader + metaData.urlSize + there > blocks * record.bucketMetaData.blockSize)
        return "headers that lead beyond their blocks: the end belongs to other entries";
    return {};
}

} // namespace nv
