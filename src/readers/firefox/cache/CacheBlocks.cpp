#include "readers/firefox/cache/CacheBlocks.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::int64_t kBitmap = 0x1000;
constexpr std::int64_t kSmallestBlock = 0x100;
constexpr std::int64_t kMostBlocks = 0x1000000; ///< 24 bits of a location

std::size_t at(std::int64_t number) {
    return static_cast<std::size_t>(number);
}

bool holds(const std::vector<bool> &blocks, std::int64_t block) {
    return at(block) < blocks.size() && blocks[at(block)];
}

} // namespace

MozillaCacheBlocks::MozillaCacheBlocks(const MozillaCache &cache) {
    for (std::int64_t number = 1; number < std::int64_t{kFiles}; ++number) {
        const EvidenceFile *file = cache.getFileHandle(number);
        const std::int64_t size = file ? static_cast<std::int64_t>(file->size()) : 0;
        const std::int64_t blockSize = kSmallestBlock << (2 * (number - 1));
        const std::int64_t blocks = std::min(
            std::max<std::int64_t>(size - kBitmap + blockSize - 1, 0) / blockSize, kMostBlocks);
        m_owned.at(at(number)).resize(at(blocks));
        m_begun.at(at(number)).resize(at(blocks));
    }
}

void MozillaCacheBlocks::own(const CacheRecordInfo &info) {
    std::vector<bool> &blocks = m_owned.at(at(info.cacheBlockFileNumber));
    const std::int64_t end = info.startBlock + info.numContBlocks + 1;
    for (std::int64_t block = info.startBlock; block < end && at(block) < blocks.size(); ++block)
        blocks[at(block)] = true;
}

void MozillaCacheBlocks::begin(const CacheRecordInfo &info) {
    std::vector<bool> &blocks = m_begun.at(at(info.cacheBlockFileNumber));
    if (at(info.startBlock) < blocks.size())
        blocks[at(info.startBlock)] = true;
}

bool MozillaCacheBlocks::isOwned(std::int64_t file, std::int64_t block) const {
    return holds(m_owned.at(at(file)), block);
}

bool MozillaCacheBlocks::hasBegun(const CacheRecordInfo &info) const {
    return holds(m_begun.at(at(info.cacheBlockFileNumber)), info.startBlock);
}

bool MozillaCacheBlocks::isFree(const CacheRecordInfo &info) const {
    const std::int64_t end = info.startBlock + info.numContBlocks + 1;
    for (std::int64_t block = info.startBlock; block < end; ++block)
        if (block >= count(info.cacheBlockFileNumber) || isOwned(info.cacheBlockFileNumber, block))
            return false;
    return true;
}

std::int64_t MozillaCacheBlocks::count(std::int64_t file) const {
    return static_cast<std::int64_t>(m_owned.at(at(file)).size());
}

} // namespace nv
