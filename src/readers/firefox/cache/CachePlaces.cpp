#include "readers/firefox/cache/CachePlaces.h"

#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/HttpHeaders.h"
#include "readers/firefox/cache/Cache.h"
#include "readers/firefox/cache/CacheRecord.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

namespace nv {

namespace {

namespace fs = std::filesystem;
using F = SourceForm;
using enum ByteOrder;

/// Of the metadata, by the layout that Cache.cpp tells.
constexpr std::array<NumberRule, 8> kNumbers = {{
    {"ActionDateUTC", 0xC, 4, F::unixSeconds, big},
    {"LastVisited", 0xC, 4, F::unixSeconds, big},
    {"OtherDate", 0x10, 4, F::unixSeconds, big},
    {"ExpiryDate", 0x14, 4, F::unixSeconds, big},
    {"expires", 0x14, 4, F::unixSeconds, big},
    {"CacheFileSize", 0x18, 4, F::number, big},
    {"Visits", 8, 4, F::number, big},
    {"count", 8, 4, F::number, big},
}};

/// The record's entry in the files of its cache.
class EntrySearch {
  public:
    explicit EntrySearch(const PlaceSearch &search) : m_record(search.record), m_cache(m_log) {
        if (!openFirefoxCache(m_cache, search.source, search.evidence, m_log))
            throw std::runtime_error("the map can't be opened");
    }

    /// Where its metadata lie. Throws when no entry of the cache is the record's.
    CacheRecordInfo find() const {
        const auto at = factNumber(m_record, "source_offset");
        const bool isRemnant = factWords(m_record, "recovered_from").starts_with("metadata");
        if (at && !isRemnant)
            if (const auto bucket = bucketAt(*at))
                return *bucket;
        const auto found = at ? inBlocks(*at) : inMap();
        if (!found)
            throw std::runtime_error("no bucket of the map and no block has the record's address "
                                     "any more");
        return *found;
    }
    const EvidenceFile &fileOf(const CacheRecordInfo &info) const {
        return *m_cache.getFileHandle(info.cacheBlockFileNumber);
    }

  private:
    bool isOurs(const CacheRecordInfo &info) const {
        NoLog unsaid; // blocks may hold something else
        return trapped(unsaid, Severity::Low, {}, {}, false, [&] {
            const auto metaData = m_cache.getRecordMetaData(info);
            return metaData && firefoxCacheAddress(metaData->urlData) == m_record.URLRawValue;
        });
    }

    std::optional<CacheRecordInfo> infoIn(const CacheBucket &bucket) const {
        const auto info = MozillaCache::getBucketMetaData(bucket);
        return info && isOurs(*info) ? info : std::nullopt;
    }

    std::optional<CacheRecordInfo> bucketAt(std::int64_t offset) const {
        constexpr std::int64_t kFirst = 0x114;
        constexpr std::int64_t kSize = 0x10;
        const auto bucket =
            offset < kFirst ? std::nullopt : m_cache.getBucket((offset - kFirst) / kSize);
        return bucket && bucket->fileOffset == offset ? infoIn(*bucket) : std::nullopt;
    }

    /// Metadata that no bucket leads to: the project has their offset, and not in which file.
    std::optional<CacheRecordInfo> inBlocks(std::int64_t offset) const {
        constexpr std::int64_t kBitmap = 0x1000;
        constexpr std::int64_t kFiles = 3;
        std::int64_t size = 0x100;
        for (std::int64_t number = 1; number <= kFiles; ++number, size *= 4) {
            const CacheRecordInfo info{size, 0, (offset - kBitmap) / size, number};
            if (offset >= kBitmap && (offset - kBitmap) % size == 0 && isOurs(info))
                return info;
        }
        return std::nullopt;
    }

    /// The project has the body's place, and not the bucket's.
    std::optional<CacheRecordInfo> inMap() const {
        constexpr std::int64_t kMost = 0x10000;
        for (std::int64_t n = 0; n < kMost; ++n) {
            const auto bucket = m_cache.getBucket(n);
            if (!bucket)
                break;
            const auto body = MozillaCache::getBucketData(*bucket);
            if (!body || MozillaCache::getRecordData(*body).fileOffsetBOF != m_record.MapFileOffset)
                continue;
            if (const auto info = infoIn(*bucket))
                return info;
        }
        return std::nullopt;
    }

    const UrlRecord &m_record;
    NoLog m_log;
    MozillaCache m_cache;
};

} // namespace

void locateInFirefoxCache(const PlaceSearch &search, FieldPlaces &places) {
    const EntrySearch entries(search);
    const CacheRecordInfo info = entries.find();
    const EvidenceFile &file = entries.fileOf(info);
    const auto at = static_cast<std::uint64_t>(MozillaCache::getRecordData(info).fileOffsetBOF);
    constexpr std::uint64_t kHead = kMetaDataHeader;
    const SourceBytes head = sourceBytes(file, "the entry's metadata", at, kHead);
    const std::uint64_t urlSize = head.view().u32be(0x1C);
    const std::uint64_t size = head.view().u32be(0x20);
    const SourceBytes url = sourceBytes(file, "the entry's key", at + kHead, urlSize);
    const std::string address = firefoxCacheAddress(url.bytes);
    for (const std::string_view field : {"URL", "URLRawValue"})
        places.value(field, url, 0, urlSize, address,
                     "without its closing zero; of \"HTTP:http:\" the first five characters go");
    places.numbers(head, kNumbers);
    constexpr std::uint64_t kMostHeaders = std::uint64_t{1} << 20;
    const SourceBytes lines{"the entry's headers",
                            file.path(),
                            {},
                            url.at + urlSize,
                            file.read(url.at + urlSize, std::min(size, kMostHeaders))};
    std::string text = bytesToString(lines.view(), 0, 0, false, true);
    const std::string &kept = search.record.MetaData;
    const bool isCut = kept.size() < text.size() && text.starts_with(kept);
    if (isCut)
        text = kept;
    places.value("MetaData", lines, 0, lines.bytes.size(), text,
                 isCut ? "zeros made blanks; up to the first block that another entry has"
                       : "zeros made blanks");
    // The whole head is one element of the metadata, so its lines follow a name.
    places.headerLine("MIMEType", lines, "content-type", mimeTypeOf(text),
                      "without what follows \";\"");
    places.derived("MIMEType", "of the line \"Content-Type\" among the headers");
    places.derived("DataBlockFile", "number of the block file, or the hash that names a file, by "
                                    "the map's bucket");
    places.derived("DataBlockFileOffset", "by the location of the body in the map's bucket");
    places.derived("MapFileOffset", "by the location of the body in the map's bucket");
    places.derived("source_offset", "where this program found the entry");
    places.derivedOfAddress();
}

} // namespace nv
