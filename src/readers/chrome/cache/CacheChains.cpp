#include "readers/chrome/cache/CacheChains.h"

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

void ChromeChains::add(const ChromeAddressMap &entry, const ChromeAddressMap &next,
                       std::uint64_t slot) {
    if (leadsOn(next) && !isMet(entry.address))
        m_next.push_back({next.address, slot});
    meet(entry.address);
}

bool ChromeChains::meet(const ChromeAddressMap &entry) {
    if (isMet(entry.address))
        return false;
    meet(entry.address);
    return true;
}

bool ChromeChains::follow(ChromeBlockFiles &blocks, TaskMonitor &task, double fraction,
                          const Take &take) {
    for (const Start &start : m_next) {
        ChromeChainPlace place{start.slot, 1};
        ChromeAddressMap entry = chromeAddressMapOf(start.address);
        while (leadsOn(entry) && !isMet(entry.address)) {
            if (!task.advance(fraction))
                return false;
            meet(entry.address);
            ++place.place;
            take(entry, place);
            entry = chromeAddressMapOf(nextOf(entry, blocks));
        }
    }
    return true;
}

std::optional<std::uint64_t> ChromeChains::countOthers(ChromeBlockFiles &blocks,
                                                       TaskMonitor &task) {
    std::uint64_t count = 0;
    const bool isDone = follow(
        blocks, task, 1, [&count](const ChromeAddressMap &, const ChromeChainPlace &) { ++count; });
    return isDone ? std::optional(count) : std::nullopt;
}

} // namespace nv
