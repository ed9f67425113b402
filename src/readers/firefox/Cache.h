#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "readers/Reader.h"
#include "readers/firefox/CacheTypes.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// The four files of a disk cache and what the map says is in them. Positions are 0-based offsets
/// in a file. The log must outlive it.
class mzMozillaCache {
  public:
    explicit mzMozillaCache(FailureLog &log) : m_log(log) {}

    // Empty while a file isn't open. A block file may be missing: the others are read all the same.
    std::optional<EvidenceFile> FileHandleMap;
    std::optional<EvidenceFile> FileHandle001;
    std::optional<EvidenceFile> FileHandle002;
    std::optional<EvidenceFile> FileHandle003;
    bool OpenCache = false;

    bool Reading = false;        ///< while ReadCache runs
    std::string CacheError;      ///< why ReadCache gave nothing
    bool isLaterVersion = false; ///< and that is because the map is one of a later Firefox
    mzCacheRecords CacheRecords;

    // Bit operations on words that are held in 64 bits.

    /// The lower 32 bits of both.
    static std::int64_t AndLong(std::int64_t a, std::int64_t b);
    /// x * 2^n; n may be below 0.
    static std::int64_t LShiftLong(std::int64_t x, int n);
    /// x / 2^n, rounded down.
    static std::int64_t RShiftLong(std::int64_t x, int n);
    /// The same for a negative x as if it were an unsigned 32-bit word.
    static std::int64_t RShiftLongClrNeg(std::int64_t x, int n);

    /// Fills CacheRecords from the open map and sets the file's version. What the map holds and
    /// the rules pass over is counted in `result`. False, with CacheError, when the map isn't one
    /// of Firefox 2 or 3, and for a call while another one runs.
    bool ReadCache(HistoryFile &file, TaskMonitor &task, ReadResult &result);

    /// Nothing, and a line in the log, when the map ends before.
    std::optional<mzMapHeader> GetHeader() const;
    /// Nothing when the map ends before.
    std::optional<mzBucket> GetBucket(std::int64_t n) const;
    /// Nothing when no body is stored.
    static std::optional<mzRecordInfo> GetBucketData(const mzBucket &bucket);
    static std::optional<mzRecordInfo> GetBucketMetaData(const mzBucket &bucket);
    static mzRecordData GetRecordData(const mzRecordInfo &info);
    /// Nothing when the metadata isn't in an open block file. Throws when the block lies
    /// behind the file's end, or the file ends within the URL.
    std::optional<mzRecordMetaData> GetRecordMetaData(const mzRecordInfo &info) const;
    /// 1 to 3; null for any other number and for a file that isn't there.
    const EvidenceFile *GetFileHandle(std::int64_t blockFileNumber) const;

    /// These throw OutOfBytes behind the file's end.
    static std::int64_t GetNextByte(std::int64_t position, const EvidenceFile &handle);
    static std::int64_t GetNextDWord(std::int64_t position, const EvidenceFile &handle);
    /// Eight hexadecimal digits in file order.
    static std::string GetNextDWordAsHex(std::int64_t position, const EvidenceFile &handle);

  private:
    /// Whole ones that the map holds.
    std::int64_t bucketCount() const;
    bool acceptVersion(HistoryFile &file);
    bool readBuckets(const mzMapHeader &header, TaskMonitor &task, ReadResult &result);
    std::string_view takeBucket(const mzBucket &bucket, const mzMapHeader &header);
    void noteShortMap(const mzMapHeader &header, ReadResult &result) const;
    void noteRefused(ReadResult &result);
    void noteBehindLastBucket(ReadResult &result) const;

    FailureLog &m_log;
};

/// "_CACHE_001_" to "_CACHE_003_".
std::string blockFileName(std::int64_t blockFileNumber);

/// Opens the map and the block files beside it. A failure is logged; false when there is no map.
bool OpenFirefoxCache(mzMozillaCache &cache, const std::filesystem::path &mapPath,
                      const Evidence &evidence, FailureLog &log);

} // namespace nv
