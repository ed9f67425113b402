#pragma once

#include "base/TaskMonitor.h"
#include "readers/chrome/cache/CacheBlockFiles.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace nv {

/// Where an entry hangs in the index.
struct ChromeChainPlace {
    std::uint64_t slot = 0;  ///< from 1
    std::uint64_t place = 1; ///< in the slot's chain: 1 is the slot's own
};

/// Entries that share a slot hang behind one another. Only the first of a slot becomes a classic
/// record; this finds the others.
class ChromeChains {
  public:
    using Take = std::function<void(const ChromeAddressMap &entry, const ChromeChainPlace &place)>;

    ChromeChains();

    /// Notes an entry that a slot leads to, and the next one after it.
    void add(const ChromeAddressMap &entry, const ChromeAddressMap &next, std::uint64_t slot);
    /// Notes an entry that the index leads to in another way. False when it was met before.
    bool meet(const ChromeAddressMap &entry);
    /// Whether the index leads to an entry at that address.
    bool isMet(const ChromeAddressMap &entry) const { return isMet(entry.address); }
    /// Hands on the entries that hang behind others and have no slot of their own, each once. False
    /// when cancelled. Throws EvidenceFailure.
    bool follow(ChromeBlockFiles &blocks, TaskMonitor &task, double fraction, const Take &take);
    /// How many there are. Nothing when cancelled. Throws EvidenceFailure.
    std::optional<std::uint64_t> countOthers(ChromeBlockFiles &blocks, TaskMonitor &task);

  private:
    struct Start {
        std::uint32_t address;
        std::uint64_t slot;
    };

    bool isMet(std::uint32_t address) const;
    void meet(std::uint32_t address);

    std::vector<bool> m_met;
    std::vector<Start> m_next;
};

} // namespace nv
