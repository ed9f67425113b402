#include "base/Files.h"
#include "base/Text.h"
#include "readers/firefox/Cache.h"

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

bool isFree(const mzBucket &bucket) {
    return bucket.HashNumber == 0 && bucket.DataLocation == 0 && bucket.MetaDataLocation == 0;
}

void showBucket(TaskMonitor &task, std::int64_t n) {
    if (task.wantsStep())
        task.show({fmt::format("MAP bucket {} of {}", n, kLastListed), n, kLastListed, {}, 0, 0});
}

} // namespace

bool mzMozillaCache::ReadCache(HistoryFile &file, TaskMonitor &task, ReadResult &result) {
    if (Reading)
        return false;
    const RunningMark running(Reading);
    CacheRecords.clear();
    CacheError.clear();
    task.describe({"PARSING MOZILLA FIREFOX CACHE", "Reading MAP File...", textOf(file.fullPath),
                   "firefox-32.gif"});
    if (!acceptVersion(file)) {
        if (isLaterVersion)
            noteRefused(result);
        return false;
    }
    const std::optional<mzMapHeader> header = GetHeader();
    if (!header) {
        CacheError =
            fmt::format("the map ends within its header, after {} bytes", FileHandleMap->size());
        return false;
    }
    if (!readBuckets(*header, task, result)) {
        result.state = ReadState::cancelled;
        return true;
    }
    noteBehindLastBucket(result);
    noteShortMap(*header, result);
    return true;
}

bool mzMozillaCache::acceptVersion(HistoryFile &file) {
    if (FileHandleMap->size() < 4) {
        CacheError = "the map ends before its version";
        return false;
    }
    const std::string version = GetNextDWordAsHex(0, *FileHandleMap);
    if (version == kFirefox2)
        file.version = "2.0";
    else if (version == kFirefox3)
        file.version = "3.0";
    else if (isLaterVersion = version > kFirefox3 && version.starts_with("0001"); isLaterVersion)
        CacheError = fmt::format("the map is of version {}, later than Firefox 3's ({}), and such "
                                 "caches are not read",
                                 version, kFirefox3);
    else
        CacheError = fmt::format("the map's version {} is neither Firefox 2's ({}) nor 3's ({})",
                                 version, kFirefox2, kFirefox3);
    return CacheError.empty();
}

/// False when cancelled.
bool mzMozillaCache::readBuckets(const mzMapHeader &header, TaskMonitor &task, ReadResult &result) {
    if (const auto first = GetBucket(0); first && !isFree(*first))
        ++result.passedOver["bucket 0"];
    for (std::int64_t n = kFirstListed; n <= kLastListed; ++n) {
        if (!task.advance(kShareOfMap * static_cast<double>(n) / kLastListed))
            return false;
        showBucket(task, n);
        const std::optional<mzBucket> bucket = GetBucket(n);
        if (!bucket)
            break;
        if (const std::string_view reason = takeBucket(*bucket, header); !reason.empty())
            ++result.passedOver[std::string(reason)];
    }
    return true;
}

/// Empty when the bucket is free or goes to CacheRecords, otherwise why it is passed over.
std::string_view mzMozillaCache::takeBucket(const mzBucket &bucket, const mzMapHeader &header) {
    if (isFree(bucket))
        return {};
    if (bucket.HashNumber == 0)
        return "bucket without a hash number"; // what is left of an entry that was taken out
    const auto data = GetBucketData(bucket);
    if (!data)
        return "entry without a body";
    const auto metaData = GetBucketMetaData(bucket);
    if (!metaData)
        return "entry without metadata";
    if (metaData->CacheBlockFileNumber == 0)
        return "metadata in a separate file";
    // The bits are one less than the blocks in use: entries with short metadata are not listed,
    // and never were.
    if (metaData->NumContBlocks == 0)
        return "metadata in one block";
    CacheRecords.add({bucket, *data, *metaData, header, GetRecordData(*data), std::nullopt});
    return {};
}

/// The map itself is laid out as before. Of a map that ends early only the header knows more.
void mzMozillaCache::noteRefused(ReadResult &result) {
    std::int64_t entries = 0;
    for (std::int64_t n = 0; n < std::min(bucketCount(), kLastCounted); ++n)
        if (const auto bucket = GetBucket(n); bucket && !isFree(*bucket))
            ++entries;
    if (const std::optional<mzMapHeader> header = GetHeader())
        entries = std::max(entries, std::min(header->EntryCount, kLastCounted));
    result.notReached = static_cast<std::uint64_t>(entries);
    CacheError +=
        fmt::format("; this one holds {}", counted(result.notReached, "entry", "entries"));
}

void mzMozillaCache::noteBehindLastBucket(ReadResult &result) const {
    const std::int64_t end = std::min(bucketCount(), kLastCounted);
    for (std::int64_t n = kLastListed + 1; n < end; ++n)
        if (const auto bucket = GetBucket(n); bucket && !isFree(*bucket))
            ++result.passedOver[fmt::format("bucket behind bucket {}", kLastListed)];
}

/// The header says how many buckets there are: what a shorter map lost isn't known, only how many
/// it could be.
void mzMozillaCache::noteShortMap(const mzMapHeader &header, ReadResult &result) const {
    const std::int64_t told = std::min(header.RecordCount, kLastListed + 1);
    const std::int64_t there = bucketCount();
    if (there >= told)
        return;
    result.state = ReadState::cutShort;
    result.reason = fmt::format("the map ends at {}, with {} of its {} buckets",
                                FileHandleMap->size(), there, header.RecordCount);
    result.notReached += static_cast<std::uint64_t>(told - there);
}

} // namespace nv
