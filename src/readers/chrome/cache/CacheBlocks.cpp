#include "readers/chrome/cache/CacheBlocks.h"

namespace nv {

namespace {

constexpr std::uint64_t kPart = 0x100;
constexpr std::uint32_t kSeparateFileMask = 0x0FFF'FFFF;

struct Parts {
    std::size_t first;
    std::size_t end;
};

/// Those that the blocks of the address lie in.
Parts partsOf(const ChromeAddressMap &map) {
    const std::uint64_t start = map.dataBlockFileOffset - ChromeDataFile::kSize;
    const std::uint64_t end = start + (std::uint64_t{map.dataBlocksUsed} + 1) * map.blockSize;
    return {start / kPart, (end + kPart - 1) / kPart};
}

bool isSeparateFile(const ChromeAddressMap &map) {
    return map.initialised && map.blockFileType == 0;
}

} // namespace

void ChromeOwnedBlocks::own(const ChromeEntry &entry) {
    own(entry.addressMap);
    own(entry.headerAddressMap);
    own(entry.contentAddressMap);
    own(chromeAddressMapOf(entry.keyAddress));
}

void ChromeOwnedBlocks::own(const ChromeAddressMap &map) {
    if (isSeparateFile(map))
        m_files.insert(map.address & kSeparateFileMask);
    if (map.dataBlockFileOffset == 0)
        return;
    const auto [first, end] = partsOf(map);
    std::vector<bool> &parts = m_parts[map.dataBlockFileNumber];
    if (parts.size() < end)
        parts.resize(end);
    for (std::size_t part = first; part < end; ++part)
        parts[part] = true;
}

bool ChromeOwnedBlocks::isOwned(const ChromeAddressMap &map) const {
    if (isSeparateFile(map))
        return m_files.contains(map.address & kSeparateFileMask);
    const auto found = m_parts.find(map.dataBlockFileNumber);
    if (map.dataBlockFileOffset == 0 || found == m_parts.end())
        return false;
    const auto [first, end] = partsOf(map);
    for (std::size_t part = first; part < end && part < found->second.size(); ++part)
        if (found->second[part])
            return true;
    return false;
}

ChromeAddressMap chromeEntryAddress(std::uint8_t file, std::uint16_t block, std::uint64_t blocks) {
    constexpr std::uint32_t kInUse = 0x8000'0000;
    constexpr std::uint32_t kBlocksOf256 = 0x2000'0000;
    const auto more = static_cast<std::uint32_t>(blocks - 1) & 0x3;
    return chromeAddressMapOf(kInUse | kBlocksOf256 | more << 24 | std::uint32_t{file} << 16 |
                              block);
}

} // namespace nv
