#include "readers/chrome/CacheChains.h"

#include "readers/Limits.h"

namespace nv {

namespace {

/// File and block of an address tell an entry from all others.
std::size_t blockOf(std::uint32_t address) {
    return address % limits::kChromeCacheBlocks;
}

bool leadsOn(const ChromeAddressMap &map) {
    return map.initialised && map.dataBlockFileOffset != 0;
}

/// The address of the entry after this one; 0 when the block isn't there.
std::uint32_t nextOf(const ChromeAddressMap &entry, ChromeBlockFiles &blocks) {
    constexpr std::uint64_t kNextAt = 4;
    const Bytes head = blocks.read(entry, kNextAt + 4);
    return head.size() < kNextAt + 4 ? 0 : ByteView(head).u32le(kNextAt);
}

} // namespace

ChromeChains::ChromeChains() : m_met(limits::kChromeCacheBlocks) {}

bool ChromeChains::isMet(std::uint32_t address) const {
    return m_met[blockOf(address)];
}

void ChromeChains::meet(std::uint32_t address) {
    m_met[blockOf(address)] = true;
}

void ChromeChains::add(const ChromeAddressMap &entry, const ChromeAddressMap &next) {
    if (leadsOn(next) && !isMet(entry.address))
        m_next.push_back(next.address);
    meet(entry.address);
}

std::optional<std::uint64_t> ChromeChains::countOthers(ChromeBlockFiles &blocks,
                                                       TaskMonitor &task) {
    std::uint64_t count = 0;
    for (const std::uint32_t start : m_next) {
        ChromeAddressMap entry = chromeAddressMapOf(start);
        while (leadsOn(entry) && !isMet(entry.address)) {
            if (!task.advance(1))
                return std::nullopt;
            meet(entry.address);
            ++count;
            entry = chromeAddressMapOf(nextOf(entry, blocks));
        }
    }
    return count;
}

} // namespace nv
