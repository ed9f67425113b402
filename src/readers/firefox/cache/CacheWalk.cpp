#include "base/Files.h"
#include "base/Text.h"
#include "readers/firefox/cache/Cache.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::string_view kFirefox2 = "00010008";
constexpr std::string_view kFirefox3 = "0001000B";

// Bucket 0 is never listed, though browsers use it: examiners compare counts with earlier cases.
// It is counted, and so is what lies after the last bucket.
constexpr std::int64_t kFirstListed = 1;
constexpr std::int64_t kLastListed = 0x2000;
/// Later maps have up to 16384 buckets; looking for more in a hostile one must end.
constexpr std::int64_t kLastCounted = 0x10000;

constexpr std::string_view kBehindLast = "bucket behind bucket 8192";

/// Finding the records is that part of the whole task; storing them is the rest.
constexpr double kShareOfMap = 0.1;

class RunningMark {
  public:
    explicit RunningMark(bool &mark) : m_mark(mark) { m_mark = true; }
    ~RunningMark() { m_mark = false; }
    RunningMark(const RunningMark &) = delete;
    RunningMark &operator=(const RunningMark &) = delete;

  private:
    bool &m_mark;
};

bool isFree(const CacheBucket &bucket) {
    return bucket.hashNumber == 0 && bucket.dataLocation == 0 && bucket.metaDataLocation == 0;
}

void showBucket(TaskMonitor &task, std::int64_t n) {
    if (task.wantsStep())
        task.show({fmt::format("MAP bucket {} of {}", n, kLastListed), n, kLastListed, {}, 0, 0});
}

} // namespace

bool MozillaCache::readCache(HistoryFile &file, TaskMonitor &task, ReadResult &result) {
    if (isReading)
        return false;
    const RunningMark running(isReading);
    cacheRecords.clear();
    further.clear();
    cacheError.clear();
    task.describe({"PARSING MOZILLA FIREFOX CACHE", "Reading MAP File...", textOf(file.fullPath),
                   "firefox-32.gif"});
    if (!acceptVersion(file)) {
        if (isLaterVersion)
            noteRefused(result);
        return false;
    }
    const std::optional<CacheMapHeader> header = getHeader();
    if (!header) {
        cacheError =
            fmt::format("the map ends within its header, after {} bytes", fileHandleMap->size());
        return false;
    }
    mapHeader = *header;
    if (!readBuckets(*header, task, result)) {
        result.state = ReadState::cancelled;
        return true;
    }
    noteBehindLastBucket(result);
    noteShortMap(*header, result);
    return true;
}

bool MozillaCache::acceptVersion(HistoryFile &file) {
    if (fileHandleMap->size() < 4) {
        cacheError = "the map ends before its version";
        return false;
    }
    const std::string version = getNextDWordAsHex(0, *fileHandleMap);
    if (version == kFirefox2)
        file.version = "2.0";
    else if (version == kFirefox3)
        file.version = "3.0";
    else if (isLaterVersion = version > kFirefox3 && version.starts_with("0001"); isLaterVersion)
        cacheError = fmt::format("the map is of version {}, later than Firefox 3's ({}), and such "
                                 "caches are not read",
                                 version, kFirefox3);
    else
        cacheError = fmt::format("the map's version {} is neither Firefox 2's ({}) nor 3's ({})",
                                 version, kFirefox2, kFirefox3);
    return cacheError.empty();
}

/// False when cancelled.
bool MozillaCache::readBuckets(const CacheMapHeader &header, TaskMonitor &task,
                               ReadResult &result) {
    if (const auto first = getBucket(0); first && !isFree(*first))
        passOver(0, *first, "bucket 0", result);
    for (std::int64_t n = kFirstListed; n <= kLastListed; ++n) {
        if (!task.advance(kShareOfMap * static_cast<double>(n) / kLastListed))
            return false;
        showBucket(task, n);
        const std::optional<CacheBucket> bucket = getBucket(n);
        if (!bucket)
            break;
        if (const std::string_view reason = takeBucket(*bucket, header); !reason.empty())
            passOver(n, *bucket, reason, result);
    }
    return true;
}

/// Metadata in a file of its own are passed over by all rules.
void MozillaCache::passOver(std::int64_t n, const CacheBucket &bucket, std::string_view rule,
                            ReadResult &result) {
    const auto metaData = getBucketMetaData(bucket);
    if (!listsFurther || !metaData || metaData->cacheBlockFileNumber == 0) {
        ++result.passedOver[std::string(rule)];
        return;
    }
    const auto data = getBucketData(bucket);
    const bool isListed = bucket.hashNumber != 0 && n < mapHeader.recordCount;
    further.push_back({{bucket, data.value_or(CacheRecordInfo()), *metaData, mapHeader,
                        getRecordData(data.value_or(CacheRecordInfo())), std::nullopt},
                       rule,
                       isListed,
                       data.has_value()});
}

/// Empty when the bucket is free or goes to cacheRecords, otherwise why it is passed over.
std::string_view MozillaCache::takeBucket(const CacheBucket &bucket, const CacheMapHeader &header) {
    if (isFree(bucket))
        return {};
    if (bucket.hashNumber == 0)
        return "bucket without a hash number"; // what is left of an entry that was taken out
    const auto data = getBucketData(bucket);
    if (!data)
        return "entry without a body";
    const auto metaData = getBucketMetaData(bucket);
    if (!metaData)
        return "entry without metadata";
    if (metaData->cacheBlockFileNumber == 0)
        return "metadata in a separate file";
    // The bits are one less than the blocks in use: entries with short metadata are not listed,
    // and never were.
    if (metaData->numContBlocks == 0)
        return "metadata in one block";
    cacheRecords.add({bucket, *data, *metaData, header, getRecordData(*data), std::nullopt});
    return {};
}

/// The map itself is laid out as before. Of a map that ends early only the header knows more.
void MozillaCache::noteRefused(ReadResult &result) {
    std::int64_t entries = 0;
    for (std::int64_t n = 0; n < std::min(bucketCount(), kLastCounted); ++n)
        if (const auto bucket = getBucket(n); bucket && !isFree(*bucket))
            ++entries;
    if (const std::optional<CacheMapHeader> header = getHeader())
        entries = std::max(entries, std::min(header->entryCount, kLastCounted));
    result.notReached = static_cast<std::uint64_t>(entries);
    cacheError +=
        fmt::format("; this one holds {}", counted(result.notReached, "entry", "entries"));
}

void MozillaCache::noteBehindLastBucket(ReadResult &result) {
    const std::int64_t end = std::min(bucketCount(), kLastCounted);
    for (std::int64_t n = kLastListed + 1; n < end; ++n)
        if (const auto bucket = getBucket(n); bucket && !isFree(*bucket))
            passOver(n, *bucket, kBehindLast, result);
}

/// The header says how many buckets there are: what a shorter map lost isn't known, only how many
/// it could be.
void MozillaCache::noteShortMap(const CacheMapHeader &header, ReadResult &result) const {
    const std::int64_t told = std::min(header.recordCount, kLastListed + 1);
    const std::int64_t there = bucketCount();
    if (there >= told)
        return;
    result.state = ReadState::cutShort;
    result.reason = fmt::format("the map ends at {}, with {} of its {} buckets",
                                fileHandleMap->size(), there, header.recordCount);
    result.notReached += static_cast<std::uint64_t>(told - there);
}

} // namespace nv
