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
class ChromeCacheClass {
  public:
    using TakeEntry = std::function<void(const ChromeEntryClass &entry)>;

    /// All must outlive this.
    ChromeCacheClass(std::filesystem::path index, const Evidence &evidence, FailureLog &log,
                     TaskMonitor &task);

    const std::filesystem::path indexPath;
    ChromeIndexClass IndexInfo;    ///< of the last ReadCache
    ChromeEntryCollection Entries; ///< of the last ReadCache that kept them
    bool Reading = false;          ///< clearing it ends the walk at the next slot
    std::string CacheError;        ///< what went wrong in the last ReadCache

    /// Hands on the first entry of each slot that has a header, in the order of the slots.
    ReadResult ReadCache(const TakeEntry &take);
    /// Keeps them in `Entries`, which takes memory for all of them.
    ReadResult ReadCache();

    /// Nothing for the word 0.
    static std::optional<ChromeAddressMapClass> GetAddressMap(std::uint32_t addressWord);

    // Nothing when the address names no block, or the block isn't there. They throw
    // EvidenceFailure.

    /// The entry with its header and rankings.
    std::optional<ChromeEntryClass> GetEntry(const ChromeAddressMapClass &map);
    std::optional<ChromeHeaderClass> GetHeaderObject(const ChromeAddressMapClass &map);
    std::optional<ChromeRankingClass> GetRankingObject(const ChromeAddressMapClass &map);
    /// Up to `size` bytes of a body, from its block file or separate file.
    std::optional<ChromeContentClass> GetContentObject(const ChromeAddressMapClass &map,
                                                       std::uint64_t size);

  private:
    const Evidence &m_evidence;
    FailureLog &m_log;
    TaskMonitor &m_task;
    ChromeBlockFiles m_blocks;
};

} // namespace nv
