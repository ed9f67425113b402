// Numbers are unsigned 32-bit and big-endian.
//   map        = header bucket{records}                     "_CACHE_MAP_"
//   header     = version:u32 dataSize:u32 entries:u32 dirty:u32 records:u32 unused[0x100]
//   bucket     = hash:u32 evictionRank:u32 data:location metadata:location
//   location   = valid:1@31 file:2@28 blocks:2@24 start:24@0        bits, of a u32
//   block file = bitmap[0x1000] block*                      "_CACHE_001_" to "_CACHE_003_"
//   metadata   = version:u32 location:u32 fetches:u32 fetched:u32 modified:u32 expires:u32
//                bodySize:u32 urlSize:u32 size:u32 url[urlSize] headers[size]
// Blocks have 256, 1024 and 4096 bytes in files 1, 2 and 3. A body in file 0 is a file of its own.

#include "readers/firefox/Cache.h"

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

mzRecordInfo infoOf(std::int64_t location) {
    using Cache = mzMozillaCache;
    mzRecordInfo info;
    info.CacheBlockFileNumber = Cache::RShiftLong(Cache::AndLong(location, kBlockFileBits), 28);
    info.StartBlock = Cache::AndLong(location, kStartBlockBits);
    info.NumContBlocks = Cache::RShiftLong(Cache::AndLong(location, kBlockCountBits), 24);
    info.BlockSize =
        Cache::LShiftLong(kSmallestBlock, 2 * static_cast<int>(info.CacheBlockFileNumber - 1));
    return info;
}

/// A stamp that was never set is 0, which is not the year 1970.
Date stampDate(std::uint32_t seconds) {
    return seconds == 0 ? Date() : UnixSecondsToDate(std::int64_t{seconds});
}

mzRecordMetaData fieldsOf(ByteView header) {
    mzRecordMetaData fields;
    fields.Version = header.u32be(0);
    fields.MetaLocation = header.u32be(4);
    fields.FetchCount = header.u32be(8);
    fields.ActionDateUTC = stampDate(header.u32be(0xC));
    fields.LastModified = stampDate(header.u32be(0x10));
    fields.ExpirationTime = stampDate(header.u32be(0x14));
    fields.DataSize = header.u32be(0x18);
    fields.URLSize = header.u32be(0x1C);
    fields.MetaDataSize = header.u32be(0x20);
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

std::int64_t mzMozillaCache::AndLong(std::int64_t a, std::int64_t b) {
    return a & b & 0xFFFFFFFF;
}

std::int64_t mzMozillaCache::LShiftLong(std::int64_t x, int n) {
    return n < 0 ? x >> std::min(-n, 63) : x << std::min(n, 63);
}

std::int64_t mzMozillaCache::RShiftLong(std::int64_t x, int n) {
    return LShiftLong(x, -n);
}

std::int64_t mzMozillaCache::RShiftLongClrNeg(std::int64_t x, int n) {
    if (x >= 0)
        return RShiftLong(x, n);
    const std::int64_t highBit = n <= 31 ? LShiftLong(1, 31 - n) : 0;
    return RShiftLong(AndLong(x, 0x7FFFFFFF), n) + highBit;
}

std::optional<mzMapHeader> mzMozillaCache::GetHeader() const {
    return trapped(m_log, Severity::Warning, "mzMozillaCache.GetHeader()", kContactSupport,
                   std::optional<mzMapHeader>(), [this] {
                       const EvidenceFile &map = *FileHandleMap;
                       return std::optional<mzMapHeader>(
                           {GetNextDWord(0, map), GetNextDWord(4, map), GetNextDWord(8, map),
                            GetNextDWord(0xC, map), GetNextDWord(0x10, map)});
                   });
}

std::int64_t mzMozillaCache::bucketCount() const {
    const auto size = static_cast<std::int64_t>(FileHandleMap->size());
    return size < kFirstBucket ? 0 : (size - kFirstBucket) / kBucket;
}

std::optional<mzBucket> mzMozillaCache::GetBucket(std::int64_t n) const {
    mzBucket bucket;
    bucket.FileOffset = kFirstBucket + n * kBucket;
    const Bytes bytes = bytesAt(*FileHandleMap, bucket.FileOffset, kBucket);
    const ByteView words = viewAt(bytes, bucket.FileOffset);
    if (!words.has(0, kBucket))
        return std::nullopt;
    bucket.HashNumber = words.u32be(0);
    bucket.HashNumberAsHex = BytesToHex(words, 0, 4);
    bucket.evictionRank = words.u32be(4);
    bucket.DataLocation = words.u32be(8);
    bucket.MetaDataLocation = words.u32be(0xC);
    return bucket;
}

std::optional<mzRecordInfo> mzMozillaCache::GetBucketData(const mzBucket &bucket) {
    if (AndLong(bucket.DataLocation, kValidLocation) == 0)
        return std::nullopt;
    return infoOf(bucket.DataLocation);
}

/// The bit that marks a location as valid is not asked for here: entries whose metadata lack it
/// have always been listed.
std::optional<mzRecordInfo> mzMozillaCache::GetBucketMetaData(const mzBucket &bucket) {
    if (bucket.MetaDataLocation == 0)
        return std::nullopt;
    return infoOf(bucket.MetaDataLocation);
}

mzRecordData mzMozillaCache::GetRecordData(const mzRecordInfo &info) {
    mzRecordData data;
    data.BlockSize = info.BlockSize;
    data.NumContBlocks = info.NumContBlocks;
    data.CacheBlockFileNumber = info.CacheBlockFileNumber;
    data.FileOffsetBOF = kBitmap + info.StartBlock * info.BlockSize;
    // The bits are one less than the blocks in use, so this is a block short. Record sizes of
    // earlier cases were counted this way.
    data.FileOffsetEOF = data.FileOffsetBOF + info.NumContBlocks * info.BlockSize;
    return data;
}

std::optional<mzRecordMetaData> mzMozillaCache::GetRecordMetaData(const mzRecordInfo &info) const {
    const EvidenceFile *file = GetFileHandle(info.CacheBlockFileNumber);
    if (!file)
        return std::nullopt;
    const std::int64_t at = GetRecordData(info).FileOffsetBOF;
    const Bytes header = bytesAt(*file, at, kMetaDataHeader);
    if (header.size() < static_cast<std::size_t>(kMetaDataHeader))
        throw damaged("no metadata", *file, at, header.size());
    mzRecordMetaData fields = fieldsOf(viewAt(header, at));
    const std::int64_t claimed = fields.URLSize + fields.MetaDataSize; // 33 bits at most
    const Bytes rest =
        bytesAt(*file, at + kMetaDataHeader, std::min(claimed, limits::kFirefoxCacheMetaData));
    const auto urlSize = static_cast<std::uint64_t>(fields.URLSize);
    const ByteView view = viewAt(rest, at + kMetaDataHeader);
    if (!view.has(0, urlSize))
        throw damaged("no whole URL", *file, at, rest.size());
    fields.URLData = partOf(view.sub(0, urlSize));
    fields.MetaData = partOf(view.from(urlSize));
    return fields;
}

const EvidenceFile *mzMozillaCache::GetFileHandle(std::int64_t blockFileNumber) const {
    const auto opened = [](const std::optional<EvidenceFile> &file) {
        return file ? &*file : nullptr;
    };
    switch (blockFileNumber) {
    case 1:
        return opened(FileHandle001);
    case 2:
        return opened(FileHandle002);
    case 3:
        return opened(FileHandle003);
    default:
        return nullptr;
    }
}

std::int64_t mzMozillaCache::GetNextByte(std::int64_t position, const EvidenceFile &handle) {
    const Bytes bytes = bytesAt(handle, position, 1);
    return viewAt(bytes, position).u8(0);
}

std::int64_t mzMozillaCache::GetNextDWord(std::int64_t position, const EvidenceFile &handle) {
    std::int64_t word = 0;
    for (std::int64_t i = 0; i < 4; ++i)
        word = word * 0x100 + GetNextByte(position + i, handle);
    return word;
}

std::string mzMozillaCache::GetNextDWordAsHex(std::int64_t position, const EvidenceFile &handle) {
    return fmt::format("{:08X}", GetNextDWord(position, handle));
}

std::string blockFileName(std::int64_t blockFileNumber) {
    return fmt::format("_CACHE_{:03}_", blockFileNumber);
}

bool OpenFirefoxCache(mzMozillaCache &cache, const std::filesystem::path &mapPath,
                      const Evidence &evidence, FailureLog &log) {
    if (evidence.kindOf(mapPath) == PlaceKind::nothing)
        return false;
    return succeeds(log, Severity::Warning, "MainBAS.OpenFirefoxCache()", kContactSupport, [&] {
        cache.FileHandleMap.emplace(evidence.open(mapPath));
        const std::filesystem::path folder = mapPath.parent_path();
        openBlockFile(1, cache.FileHandle001, folder, evidence, log);
        openBlockFile(2, cache.FileHandle002, folder, evidence, log);
        openBlockFile(3, cache.FileHandle003, folder, evidence, log);
        cache.OpenCache = true;
    });
}

} // namespace nv
