#pragma once

#include "base/TaskMonitor.h"
#include "readers/chrome/CacheBlockFiles.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace nv {

/// Entries that share a slot hang behind one another. Only the first of a slot becomes a record;
/// this counts the others.
class ChromeChains {
  public:
    ChromeChains();

    /// Notes an entry that a slot leads to, and the next one behind it.
    void add(const ChromeAddressMapClass &entry, const ChromeAddressMapClass &next);
    /// How many entries hang behind others and have no slot of their own; each is counted once.
    /// Nothing when cancelled. Throws EvidenceFailure.
    std::optional<std::uint64_t> countOthers(ChromeBlockFiles &blocks, TaskMonitor &task);

  private:
    bool isMet(std::uint32_t address) const;
    void meet(std::uint32_t address);

    std::vector<bool> m_met;
    std::vector<std::uint32_t> m_next;
};

} // namespace nv
