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
#include <string_view>

namespace nv {

/// An entry that makes no classic record.
struct ChromeFurtherEntry {
    ChromeEntry entry;
    std::string_view classicRule; ///< why an entry that the index lists makes none
    std::string foundHow;         ///< of one that it doesn't list; empty for the others
    std::string body;             ///< likewise: how far its body can be trusted
};

/// Chrome's block cache, opened by its index. Bodies are read only when asked for.
class ChromeBlockCache {
  public:
    using TakeEntry = std::function<void(const ChromeEntry &entry)>;
    using TakeFurther = std::function<void(const ChromeFurtherEntry &entry)>;

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
    /// The same, and then what makes no classic record: entries behind the first of a slot, and
    /// those without a header, and what no slot leads to. All are complete().
    ReadResult readCache(const TakeEntry &take, const TakeFurther &takeFurther);
    /// Of a cache whose index can't be had, as `lack` says: entries at the start of every block of
    /// the files that hold them.
    ReadResult readWithoutIndex(const TakeFurther &take, const std::string &lack);
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
    /// The first `size` bytes at the address; fewer when the file ends.
    std::optional<Bytes> getContentObject(const ChromeAddressMap &map, std::uint64_t size);

    /// Adds the whole key and the server's answer to an entry. False when a part of the key isn't
    /// there. Throws EvidenceFailure.
    bool complete(ChromeEntry &entry);

  private:
    const Evidence &m_evidence;
    FailureLog &m_log;
    TaskMonitor &m_task;
    ChromeBlockFiles m_blocks;
};

} // namespace nv
