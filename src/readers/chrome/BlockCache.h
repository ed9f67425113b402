#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "readers/Reader.h"
#include "readers/chrome/CacheBlockFiles.h"
#include "readers/chrome/CacheRecords.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nv {

/// Chrome's block cache, opened by its index. Bodies are read only when asked for.
class ChromeBlockCache {
  public:
    using TakeEntry = std::function<void(const ChromeEntry &entry)>;

    /// All must outlive this.
    ChromeBlockCache(std::filesystem::path index, const Evidence &evidence, FailureLog &log,
                     TaskMonitor &task);

    const std::filesystem::path indexPath;
    ChromeIndex indexInfo;         ///< of the last readCache
    ChromeEntryCollection entries; ///< of the last readCache that kept them
    bool isReading = false;        ///< clearing it ends the walk at the next slot
    std::string cacheError;        ///< what went wrong in the last readCache

    /// Hands on the first entry of each slot that has a header, in the order of the slots.
    ReadResult readCache(const TakeEntry &take);
    /// Keeps them in `Entries`, which takes memory for all of them.
    ReadResult readCache();

    /// Nothing for the word 0.
    static std::optional<ChromeAddressMap> getAddressMap(std::uint32_t addressWord);

    // Nothing when the address names no block, or the block isn't there. They throw
    // EvidenceFailure.

    /// The entry with its header and rankings.
    std::optional<ChromeEntry> getEntry(const ChromeAddressMap &map);
    std::optional<ChromeHeader> getHeaderObject(const ChromeAddressMap &map);
    std::optional<ChromeRanking> getRankingObject(const ChromeAddressMap &map);

  private:
    const Evidence &m_evidence;
    FailureLog &m_log;
    TaskMonitor &m_task;
    ChromeBlockFiles m_blocks;
};

} // namespace nv
