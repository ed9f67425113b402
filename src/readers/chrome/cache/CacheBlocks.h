#pragma once

#include "readers/chrome/cache/CacheRecords.h"

#include <cstdint>
#include <map>
#include <unordered_set>
#include <vector>

namespace nv {

/// What of the block files and which separate files belong to entries that an index lists.
class ChromeOwnedBlocks {
  public:
    /// What the entry's addresses lead to, and its own blocks.
    void own(const ChromeEntry &entry);
    void own(const ChromeAddressMap &map);
    /// Whether any of it is owned.
    bool isOwned(const ChromeAddressMap &map) const;

  private:
    std::map<std::uint8_t, std::vector<bool>> m_parts; ///< of 256 bytes, by file
    std::unordered_set<std::uint32_t> m_files;         ///< by number
};

/// The address of that block of 256 bytes.
ChromeAddressMap chromeEntryAddress(std::uint8_t file, std::uint16_t block, std::uint64_t blocks);

} // namespace nv
