// Numbers are unsigned 32-bit and big-endian.
//   map        = header bucket{records}                     "_CACHE_MAP_"
//   header     = version:u32 dataSize:u32 entries:u32 dirty:u32 records:u32 unused[0x100]
//   bucket     = hash:u32 evictionRank:u32 data:location metadata:location
//   location   = valid:1@31 file:2@28 blocks:2@24 start:24@0        bits, of a u32
//   block file = bitmap[0x1000] block*                      "_CACHE_001_" to "_CACHE_003_"
//   metadata   = version:u32 location:u32 fetches:u32 fetched:u32 modified:u32 expires:u32
//                bodySize:u32 urlSize:u32 size:u32 url[urlSize] headers[size]
// Blocks have 256, 1024 and 4096 bytes in files 1, 2 and 3. A body in file 0 is a file of its own.

#include "readers/firefox/cache/Cache.h"

#include "base/Succeeds.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/Limits.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::int64_t kFirstBucket = 0x114;
constexpr std::int64_t kBucket = 0x10;
constexpr std::int64_t kBitmap = 0x1000;
constexpr std::int64_t kSmallestBlock = 0x100;

constexpr std::int64_t kValidLocation = 0x80000000;
constexpr std::int64_t kBlockFileBits = 0x30000000;
constexpr std::int64_t kBlockCountBits = 0x03000000;
constexpr std::int64_t kStartBlockBits = 0x00FFFFFF;

Bytes bytesAt(const EvidenceFile &file, std::int64_t position, std::int64_t count) {
    return file.read(static_cast<std::uint64_t>(position), static_cast<std::uint64_t>(count));
}

ByteView viewAt(const Bytes &bytes, std::int64_t position) {
    return ByteView(bytes, static_cast<std::uint64_t>(position));
}

CacheRecordInfo infoOf(std::int64_t location) {
    using Cache = MozillaCache;
    CacheRecordInfo info;
    info.cacheBlockFileNumber = Cache::rShiftLong(Cache::andLong(location, kBlockFileBits), 28);
    info.startBlock = Cache::andLong(location, kStartBlockBits);
    info.numContBlocks = Cache::rShiftLong(Cache::andLong(location, kBlockCountBits), 24);
    info.blockSize =
        Cache::lShiftLong(kSmallestBlock, 2 * static_cast<int>(info.cacheBlockFileNumber - 1));
    return info;
}

/// A stamp that was never set is 0, which is not the year 1970.
Date stampDate(std::uint32_t seconds) {
    return seconds == 0 ? Date() : unixSecondsToDate(std::int64_t{seconds});
}

CacheRecordMetaData fieldsOf(ByteView header) {
    CacheRecordMetaData fields;
    fields.version = header.u32be(0);
    fields.metaLocation = header.u32be(4);
    fields.fetchCount = header.u32be(8);
    fields.actionDateUTC = stampDate(header.u32be(0xC));
    fields.lastModified = stampDate(header.u32be(0x10));
    fields.expirationTime = stampDate(header.u32be(0x14));
    fields.dataSize = header.u32be(0x18);
    fields.urlSize = header.u32be(0x1C);
    fields.metaDataSize = header.u32be(0x20);
    return fields;
}

Bytes partOf(ByteView view) {
    return {view.raw().begin(), view.raw().end()};
}

std::runtime_error damaged(std::string_view what, const EvidenceFile &file, std::int64_t at,
                           std::size_t there) {
    return std::runtime_error(fmt::format("{} at {} of {}: {} bytes of it are there", what, at,
                                          textOf(file.path().filename()), there));
}

/// A block file that is gone takes the metadata and bodies in it along, and no others.
void openBlockFile(std::int64_t number, std::optional<EvidenceFile> &handle,
                   const std::filesystem::path &folder, const Evidence &evidence, FailureLog &log) {
    const std::string name = blockFileName(number);
    trapped(log, Severity::Warning, "MainBAS.OpenFirefoxCache()", kContactSupport, [&] {
        const auto found = evidence.find(folder, name);
        if (!found)
            throw FileFailure("cannot find", folder / name, ENOENT);
        tellingGaps(log, [&] { handle.emplace(evidence.open(*found)); });
    });
}

} // namespace

std::int64_t MozillaCache::andLong(std::int64_t a, std::int64_t b) {
    return a & b & 0xFFFFFFFF;
}

std::int64_t MozillaCache::lShiftLong(std::int64_t x, int n) {
    return n < 0 ? x >> std::min(-n, 63) : x << std::min(n, 63);
}

std::int64_t MozillaCache::rShiftLong(std::int64_t x, int n) {
    return lShiftLong(x, -n);
}

std::optional<CacheMapHeader> MozillaCache::getHeader() const {
    return trapped(m_log, Severity::Warning, "mzMozillaCache.GetHeader()", kContactSupport,
                   std::optional<CacheMapHeader>(), [this] {
                       const EvidenceFile &map = *fileHandleMap;
                       return std::optional<CacheMapHeader>(
                           {getNextDWord(0, map), getNextDWord(4, map), getNextDWord(8, map),
                            getNextDWord(0xC, map), getNextDWord(0x10, map)});
                   });
}

std::int64_t MozillaCache::bucketCount() const {
    const auto size = static_cast<std::int64_t>(fileHandleMap->size());
    return size < kFirstBucket ? 0 : (size - kFirstBucket) / kBucket;
}

std::optional<CacheBucket> MozillaCache::getBucket(std::int64_t n) const {
    CacheBucket bucket;
    bucket.fileOffset = kFirstBucket + n * kBucket;
    const Bytes bytes = bytesAt(*fileHandleMap, bucket.fileOffset, kBucket);
    const ByteView words = viewAt(bytes, bucket.fileOffset);
    if (!words.has(0, kBucket))
        return std::nullopt;
    bucket.hashNumber = words.u32be(0);
    bucket.hashNumberAsHex = bytesToHex(words, 0, 4);
    bucket.evictionRank = words.u32be(4);
    bucket.dataLocation = words.u32be(8);
    bucket.metaDataLocation = words.u32be(0xC);
    return bucket;
}

std::optional<CacheRecordInfo> MozillaCache::getBucketData(const CacheBucket &bucket) {
    if (andLong(bucket.dataLocation, kValidLocation) == 0)
        return std::nullopt;
    return infoOf(bucket.dataLocation);
}

/// The bit that marks a location as valid is not asked for here: entries whose metadata lack it
/// have always been listed.
std::optional<CacheRecordInfo> MozillaCache::getBucketMetaData(const CacheBucket &bucket) {
    if (bucket.metaDataLocation == 0)
        return std::nullopt;
    return infoOf(bucket.metaDataLocation);
}

CacheRecordData MozillaCache::getRecordData(const CacheRecordInfo &info) {
    CacheRecordData data;
    data.blockSize = info.blockSize;
    data.numContBlocks = info.numContBlocks;
    data.cacheBlockFileNumber = info.cacheBlockFileNumber;
    data.fileOffsetBOF = kBitmap + info.startBlock * info.blockSize;
    // The bits are one less than the blocks in use, so this is a block short. Record sizes of
    // earlier cases were counted this way.
    data.fileOffsetEOF = data.fileOffsetBOF + info.numContBlocks * info.blockSize;
    return data;
}

std::optional<CacheRecordMetaData>
MozillaCache::getRecordMetaData(const CacheRecordInfo &info) const {
    const EvidenceFile *file = getFileHandle(info.cacheBlockFileNumber);
    if (!file)
        return std::nullopt;
    const std::int64_t at = getRecordData(info).fileOffsetBOF;
    const Bytes header = bytesAt(*file, at, kMetaDataHeader);
    if (header.size() < static_cast<std::size_t>(kMetaDataHeader))
        throw damaged("no metadata", *file, at, header.size());
    CacheRecordMetaData fields = fieldsOf(viewAt(header, at));
    const std::int64_t claimed = fields.urlSize + fields.metaDataSize; // 33 bits at most
    const Bytes rest =
        bytesAt(*file, at + kMetaDataHeader, std::min(claimed, limits::kFirefoxCacheMetaData));
    const auto urlSize = static_cast<std::uint64_t>(fields.urlSize);
    const ByteView view = viewAt(rest, at + kMetaDataHeader);
    if (!view.has(0, urlSize))
        throw damaged("no whole URL", *file, at, rest.size());
    fields.urlData = partOf(view.sub(0, urlSize));
    fields.metaData = partOf(view.from(urlSize));
    return fields;
}

const EvidenceFile *MozillaCache::getFileHandle(std::int64_t blockFileNumber) const {
    const auto opened = [](const std::optional<EvidenceFile> &file) {
        return file ? &*file : nullptr;
    };
    switch (blockFileNumber) {
    case 1:
        return opened(fileHandle001);
    case 2:
        return opened(fileHandle002);
    case 3:
        return opened(fileHandle003);
    default:
        return nullptr;
    }
}

std::int64_t MozillaCache::getNextByte(std::int64_t position, const EvidenceFile &handle) {
    const Bytes bytes = bytesAt(handle, position, 1);
    return viewAt(bytes, position).u8(0);
}

std::int64_t MozillaCache::getNextDWord(std::int64_t position, const EvidenceFile &handle) {
    std::int64_t word = 0;
    for (std::int64_t i = 0; i < 4; ++i)
        word = word * 0x100 + getNextByte(position + i, handle);
    return word;
}

std::string MozillaCache::getNextDWordAsHex(std::int64_t position, const EvidenceFile &handle) {
    return fmt::format("{:08X}", getNextDWord(position, handle));
}

std::string blockFileName(std::int64_t blockFileNumber) {
    return fmt::format("_CACHE_{:03}_", blockFileNumber);
}

bool openFirefoxCache(MozillaCache &cache, const std::filesystem::path &mapPath,
                      const Evidence &evidence, FailureLog &log) {
    if (evidence.kindOf(mapPath) == PlaceKind::nothing)
        return false;
    return succeeds(log, Severity::Warning, "MainBAS.OpenFirefoxCache()", kContactSupport, [&] {
        cache.fileHandleMap.emplace(evidence.open(mapPath));
        const std::filesystem::path folder = mapPath.parent_path();
        openBlockFile(1, cache.fileHandle001, folder, evidence, log);
        openBlockFile(2, cache.fileHandle002, folder, evidence, log);
        openBlockFile(3, cache.fileHandle003, folder, evidence, log);
        cache.openCache = true;
    });
}

} // namespace nv
