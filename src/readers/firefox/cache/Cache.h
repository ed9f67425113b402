#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "readers/Reader.h"
#include "readers/firefox/cache/CacheTypes.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The four files of a disk cache and what the map says is in them. Positions are 0-based offsets
/// in a file. The log must outlive it.
class MozillaCache {
  public:
    explicit MozillaCache(FailureLog &log) : m_log(log) {}

    // Empty while a file isn't open. A block file may be missing: the others are read all the same.
    std::optional<EvidenceFile> fileHandleMap;
    std::optional<EvidenceFile> fileHandle001;
    std::optional<EvidenceFile> fileHandle002;
    std::optional<EvidenceFile> fileHandle003;
    bool openCache = false;

    bool isReading = false;      ///< while readCache runs
    std::string cacheError;      ///< why readCache gave nothing
    bool isLaterVersion = false; ///< and that is because the map is one of a later Firefox
    CacheRecords cacheRecords;
    CacheMapHeader mapHeader; ///< of the last readCache

    /// Whether readCache keeps in `further` what makes no classic record.
    bool listsFurther = false;
    std::vector<FurtherBucket> further;

    // Bit operations on words that are held in 64 bits.

    /// The lower 32 bits of both.
    static std::int64_t andLong(std::int64_t a, std::int64_t b);
    /// x * 2^n; n may be below 0.
    static std::int64_t lShiftLong(std::int64_t x, int n);
    /// x / 2^n, rounded down.
    static std::int64_t rShiftLong(std::int64_t x, int n);

    /// Fills cacheRecords from the open map and sets the file's version. What the map holds and
    /// the rules pass over is counted in `result`. False, with cacheError, when the map isn't one
    /// of Firefox 2 or 3, and for a call while another one runs.
    bool readCache(HistoryFile &file, TaskMonitor &task, ReadResult &result);

    /// Nothing, and a line in the log, when the map ends before.
    std::optional<CacheMapHeader> getHeader() const;
    /// Nothing when the map ends before.
    std::optional<CacheBucket> getBucket(std::int64_t n) const;
    /// Nothing when no body is stored.
    static std::optional<CacheRecordInfo> getBucketData(const CacheBucket &bucket);
    static std::optional<CacheRecordInfo> getBucketMetaData(const CacheBucket &bucket);
    static CacheRecordData getRecordData(const CacheRecordInfo &info);
    /// Nothing when the metadata isn't in an open block file. Throws when the block lies
    /// after the file's end, or the file ends within the URL.
    std::optional<CacheRecordMetaData> getRecordMetaData(const CacheRecordInfo &info) const;
    /// 1 to 3; null for any other number and for a file that isn't there.
    const EvidenceFile *getFileHandle(std::int64_t blockFileNumber) const;

    /// These throw OutOfBytes after the file's end.
    static std::int64_t getNextByte(std::int64_t position, const EvidenceFile &handle);
    static std::int64_t getNextDWord(std::int64_t position, const EvidenceFile &handle);
    /// Eight hexadecimal digits in file order.
    static std::string getNextDWordAsHex(std::int64_t position, const EvidenceFile &handle);

  private:
    /// Whole ones that the map holds.
    std::int64_t bucketCount() const;
    bool acceptVersion(HistoryFile &file);
    bool readBuckets(const CacheMapHeader &header, TaskMonitor &task, ReadResult &result);
    std::string_view takeBucket(const CacheBucket &bucket, const CacheMapHeader &header);
    void passOver(std::int64_t n, const CacheBucket &bucket, std::string_view rule,
                  ReadResult &result);
    void noteShortMap(const CacheMapHeader &header, ReadResult &result) const;
    void noteRefused(ReadResult &result);
    void noteBehindLastBucket(ReadResult &result);

    FailureLog &m_log;
};

/// "_CACHE_001_" to "_CACHE_003_".
std::string blockFileName(std::int64_t blockFileNumber);

/// Opens the map and the block files beside it. A failure is logged; false when there is no map.
bool openFirefoxCache(MozillaCache &cache, const std::filesystem::path &mapPath,
                      const Evidence &evidence, FailureLog &log);

} // namespace nv
