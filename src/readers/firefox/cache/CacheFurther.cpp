#include "readers/firefox/cache/CacheFurther.h"

#include "readers/FactDate.h"
#include "readers/HttpHeaders.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/cache/CacheRecord.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

namespace {

constexpr std::string_view kFreeBody =
    "its blocks are no listed entry's, but others may have been written there since";

/// The browser's word for "never".
bool isNever(Date expiry) {
    return expiry == Date::fromCivil({2106, 2, 7, 6, 28, 15});
}

void clearBody(UrlRecord &url) {
    url.DataBlockFile.clear();
    url.DataBlockFileOffset = 0;
    url.CacheFileExists = false;
}

void setRecovered(UrlRecord &url, std::string foundHow) {
    url.cacheType = kFirefoxCacheRemnant.word;
    url.Status = "Recovered";
    url.facts.add("recovered_from", std::move(foundHow));
    // Totals add that column up.
    if (url.Visits > 0)
        url.facts.add("count", url.Visits);
    url.Visits = kVisitsUnknown;
}

std::uint64_t placeOf(const FurtherBucket &entry) {
    return static_cast<std::uint64_t>(entry.record.bucket.fileOffset);
}

} // namespace

void addCacheFacts(UrlRecord &url, const CacheRecordMetaData &metaData) {
    if (!isNever(metaData.expirationTime))
        url.facts.add("expires", factDate(metaData.expirationTime));
}

CacheFurther::CacheFurther(ReadContext &ctx, MozillaCache &cache, std::string_view procedure)
    : m_ctx(ctx), m_cache(cache), m_blocks(cache),
      m_records(ctx.log, procedure, textOf(ctx.file.fullPath)),
      m_searches(ctx.log, procedure, textOf(ctx.file.fullPath)) {}

bool CacheFurther::run(double from, ReadResult &result) {
    ownListed();
    for (const FurtherBucket &entry : m_cache.further) {
        if (!m_ctx.task.advance(from))
            return false;
        const std::int64_t file = entry.record.bucketMetaData.cacheBlockFileNumber;
        if (!m_cache.getFileHandle(file))
            ++result.passedOver[fmt::format("{}, with metadata in a file that can't be read",
                                            entry.rule)];
        else
            m_records.attempt(placeOf(entry), [&] {
                entry.isListed ? saveListed(entry, result) : saveUnlisted(entry, result);
            });
    }
    const bool isDone = walkRemnants(from, result);
    if (m_records.failed() > 0)
        result.passedOver["damaged record"] += m_records.failed();
    return isDone;
}

/// Block files that can't be read to their end end this part, and no more.
bool CacheFurther::walkRemnants(double from, ReadResult &result) {
    bool isDone = true;
    const bool isRead = m_searches.run(0, [&] {
        CacheRemnantWalk walk(m_cache, m_blocks, m_cache.mapHeader.version);
        isDone = walk.run(
            m_ctx.task, from, [this](const CacheRemnant &remnant) { saveRemnant(remnant); },
            result);
    });
    if (!isRead) {
        result.state = ReadState::cutShort;
        result.reason +=
            fmt::format("{}{}: the block files could not be searched to their end",
                        result.reason.empty() ? "" : "; ", textOf(m_ctx.file.fullPath));
    }
    return isDone;
}

void CacheFurther::ownListed() {
    const auto own = [this](const CacheRecord &record, bool hasBody) {
        m_blocks.own(record.bucketMetaData);
        m_blocks.begin(record.bucketMetaData);
        if (hasBody)
            m_blocks.own(record.bucketData);
        m_hashes.insert(record.bucket.hashNumber);
    };
    for (std::size_t i = 1; i <= m_cache.cacheRecords.count(); ++i)
        own(m_cache.cacheRecords.item(i), true);
    for (const FurtherBucket &entry : m_cache.further)
        if (entry.isListed)
            own(entry.record, entry.hasBody);
}

UrlRecord CacheFurther::recordOf(CacheRecord record) {
    UrlRecord url = parseFirefoxCacheURL(record, m_ctx.file, m_ctx.evidence, m_ctx.clock).value();
    if (!isNever(record.recordMetaData->expirationTime))
        url.ExpiryDate = record.recordMetaData->expirationTime;
    url.MIMEType = mimeTypeOf(url.MetaData);
    addCacheFacts(url, *record.recordMetaData);
    return url;
}

void CacheFurther::saveListed(const FurtherBucket &entry, ReadResult &result) {
    CacheRecord record = entry.record;
    record.recordMetaData = m_cache.getRecordMetaData(record.bucketMetaData);
    if (const std::string doubt = doubtOn(record); !doubt.empty())
        ++result.noted[doubt];
    UrlRecord url = recordOf(std::move(record));
    if (!entry.hasBody) {
        clearBody(url);
        url.MapFileOffset = 0;
    }
    url.facts.add("classic_rule", std::string(entry.rule));
    url.facts.add("source_offset", entry.record.bucket.fileOffset);
    m_ctx.sink.save(url);
}

/// What is left of an entry in a bucket that isn't in use. The browser moves entries within the map
/// when others are deleted, so another bucket may list it.
void CacheFurther::saveUnlisted(const FurtherBucket &entry, ReadResult &result) {
    const CacheRecordInfo &place = entry.record.bucketMetaData;
    if (m_blocks.hasBegun(place)) {
        ++result.passedOver[fmt::format("{}, whose entry another bucket has", entry.rule)];
        return;
    }
    if (m_blocks.isOwned(place.cacheBlockFileNumber, place.startBlock)) {
        ++result.passedOver[fmt::format("{}, whose metadata were written over", entry.rule)];
        return;
    }
    CacheRecord record = entry.record;
    record.recordMetaData = m_cache.getRecordMetaData(place);
    if (record.recordMetaData->version != m_cache.mapHeader.version) {
        ++result.passedOver[fmt::format("{}, whose metadata were written over", entry.rule)];
        return;
    }
    m_blocks.begin(place);
    UrlRecord url = recordOf(std::move(record));
    const std::string_view body = bodyOf(entry);
    if (body.starts_with("none"))
        clearBody(url);
    url.facts.add("body", std::string(body));
    setRecovered(url, fmt::format("{} at 0x{:X} of the map", entry.rule, placeOf(entry)));
    url.facts.add("source_offset", entry.record.bucket.fileOffset);
    m_ctx.sink.save(url);
}

std::string_view CacheFurther::bodyOf(const FurtherBucket &entry) const {
    const CacheRecord &record = entry.record;
    if (!entry.hasBody)
        return "none: the bucket names no body";
    if (record.bucketData.cacheBlockFileNumber != 0)
        return m_blocks.isFree(record.bucketData) ? kFreeBody
                                                  : "none: its blocks are a listed entry's";
    if (record.bucket.hashNumber == 0)
        return "none: its file was named by the hash number, which is gone";
    return m_hashes.contains(record.bucket.hashNumber) ? "none: a listed entry has its file"
                                                       : "the file of its hash number, if there";
}

void CacheFurther::saveRemnant(const CacheRemnant &remnant) {
    CacheRecord record;
    record.bucketMetaData = remnant.info;
    record.recordMetaData = remnant.metaData;
    UrlRecord url = recordOf(std::move(record));
    clearBody(url);
    const CacheRecordData place = MozillaCache::getRecordData(remnant.info);
    url.MapFileOffset = place.fileOffsetBOF;
    url.RecordSize = static_cast<std::uint64_t>(place.fileOffsetEOF - place.fileOffsetBOF +
                                                remnant.info.blockSize);
    url.facts.add("body", "none: only the map knew where it was");
    setRecovered(url, remnant.foundHow);
    url.facts.add("source_offset", place.fileOffsetBOF);
    m_ctx.sink.save(url);
}

} // namespace nv
