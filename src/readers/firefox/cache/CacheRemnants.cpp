#include "readers/firefox/cache/CacheRemnants.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::int64_t kBitmap = 0x1000;
constexpr std::int64_t kMostBlocks = 4;               ///< of one entry
constexpr std::int64_t kPart = std::int64_t{1} << 20; ///< bytes read at a time, of whole blocks
constexpr std::int64_t kFiles = 3;

CacheRecordInfo infoOf(std::int64_t file, std::int64_t block) {
    CacheRecordInfo info;
    info.cacheBlockFileNumber = file;
    info.startBlock = block;
    info.blockSize = std::int64_t{0x100} << (2 * (file - 1));
    return info;
}

std::int64_t lengthOf(const CacheRecordMetaData &metaData) {
    return kMetaDataHeader + metaData.urlSize + metaData.metaDataSize;
}

/// "HTTP:http://host/" with a zero after it.
bool isKey(const Bytes &key) {
    constexpr std::uint8_t kFirstPrintable = 0x20;
    return key.size() > 1 && key.back() == 0 &&
           std::all_of(key.begin(), key.end() - 1,
                       [](std::uint8_t letter) { return letter >= kFirstPrintable; }) &&
           std::ranges::find(key, std::uint8_t{':'}) != key.end();
}

/// Whether the browser has the block in use, by the bits at the start of the file.
bool isAllocated(const EvidenceFile &file, std::int64_t block) {
    const Bytes bits = file.read(static_cast<std::uint64_t>(block / 8), 1);
    return block / 8 < kBitmap && !bits.empty() && (bits[0] >> (block % 8) & 1) != 0;
}

} // namespace

bool CacheRemnantWalk::run(TaskMonitor &task, double from, const Take &take, ReadResult &result) {
    std::int64_t done = 0;
    for (std::int64_t file = 1; file <= kFiles; ++file, ++done) {
        const auto advance = [&](double part) {
            return task.advance(from + (1 - from) * (static_cast<double>(done) + part) / kFiles);
        };
        if (m_cache.getFileHandle(file) && !runFile(file, advance, take, result))
            return false;
    }
    return true;
}

bool CacheRemnantWalk::runFile(std::int64_t number, const std::function<bool(double)> &advance,
                               const Take &take, ReadResult &result) {
    const EvidenceFile &file = *m_cache.getFileHandle(number);
    const std::int64_t count = m_blocks.count(number);
    CacheRecordInfo info = infoOf(number, 0);
    while (info.startBlock < count) {
        if (!advance(static_cast<double>(info.startBlock) / static_cast<double>(count)))
            return false;
        const Bytes part =
            file.read(static_cast<std::uint64_t>(kBitmap + info.startBlock * info.blockSize),
                      static_cast<std::uint64_t>(kPart));
        const ByteView view(part);
        for (std::int64_t at = 0; at < kPart; at += info.blockSize, ++info.startBlock)
            if (view.has(static_cast<std::uint64_t>(at), kMetaDataHeader) &&
                view.u32be(static_cast<std::uint64_t>(at)) == m_version && !m_blocks.hasBegun(info))
                tryBlock(info, take, result);
    }
    return true;
}

void CacheRemnantWalk::tryBlock(const CacheRecordInfo &info, const Take &take, ReadResult &result) {
    const EvidenceFile &file = *m_cache.getFileHandle(info.cacheBlockFileNumber);
    const std::int64_t at = MozillaCache::getRecordData(info).fileOffsetBOF;
    const Bytes own = file.read(static_cast<std::uint64_t>(at),
                                static_cast<std::uint64_t>(kMostBlocks * info.blockSize));
    const ByteView view(own);
    // Lengths are looked at before anything is read by them.
    if (std::int64_t{view.u32be(0x1C)} + view.u32be(0x20) + kMetaDataHeader >
            kMostBlocks * info.blockSize ||
        !view.has(kMetaDataHeader, view.u32be(0x1C)))
        return;
    auto metaData = m_cache.getRecordMetaData(info);
    if (!metaData || !isKey(metaData->urlData))
        return;
    if (m_blocks.isOwned(info.cacheBlockFileNumber, info.startBlock)) {
        ++result.passedOver["metadata within the blocks of a listed entry"];
        return;
    }
    CacheRemnant remnant{info, std::move(*metaData), {}};
    remnant.foundHow = fmt::format(
        "metadata in block {} of {} (0x{:X}), which no bucket of the map leads to, {} by the "
        "file's map of blocks",
        info.startBlock, blockFileName(info.cacheBlockFileNumber), at,
        isAllocated(file, info.startBlock) ? "in use" : "free");
    if (cutToOwnBlocks(remnant))
        take(remnant);
    else
        ++result.passedOver["metadata of no bucket, whose URL was written over"];
}

/// The first block of a listed entry ends the remnant: what follows is that entry's. False when not
/// even the URL is left.
bool CacheRemnantWalk::cutToOwnBlocks(CacheRemnant &remnant) const {
    CacheRecordInfo &info = remnant.info;
    CacheRecordMetaData &metaData = remnant.metaData;
    const std::int64_t needed = (lengthOf(metaData) + info.blockSize - 1) / info.blockSize;
    std::int64_t own = 1;
    while (own < needed && !m_blocks.isOwned(info.cacheBlockFileNumber, info.startBlock + own))
        ++own;
    info.numContBlocks = own - 1;
    const std::int64_t left = own * info.blockSize - kMetaDataHeader - metaData.urlSize;
    if (left < 0)
        return false;
    if (left < static_cast<std::int64_t>(metaData.metaData.size()))
        metaData.metaData.resize(static_cast<std::size_t>(left));
    if (own < needed)
        remnant.foundHow += fmt::format(
            "; {} of its {} blocks are left, the others hold something else", own, needed);
    return true;
}

} // namespace nv
