#pragma once

#include "base/Trap.h"
#include "readers/chrome/BlockCache.h"
#include "readers/chrome/CacheBlocks.h"
#include "readers/chrome/CacheChains.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// Whether the first file with entries holds one of the first layout. Throws EvidenceFailure.
bool hasFirstEntries(const Evidence &evidence, const std::filesystem::path &folder);

/// What a walk through an index finds beyond the classic records. First come entries that the index
/// lists: those without a header and those behind others. Then come remnants: what no slot and no
/// chain leads to, found at the start of every block of the files that hold entries.
class ChromeFurther {
  public:
    /// Addresses and the slots that they stand in.
    using Words = std::vector<std::pair<std::uint32_t, std::uint64_t>>;
    using Take = ChromeBlockCache::TakeFurther;

    /// The classic walk is this part of the task when all of the cache is read.
    static constexpr double kShareBefore = 0.7;

    /// All must outlive this.
    ChromeFurther(ChromeBlockCache &cache, ChromeBlockFiles &blocks, ChromeChains &chains)
        : m_cache(cache), m_blocks(blocks), m_chains(chains) {}

    /// Adds to an entry that the index lists what the classic rules leave out, and notes what is
    /// its own.
    void complete(ChromeEntry &entry, const ChromeChainPlace &place, ReadResult &result);
    /// Keeps an entry of a slot for run().
    void addHeadless(const ChromeAddressMap &entry, std::uint64_t slot) {
        m_headless.push_back({entry.address, slot});
    }

    /// What run() finds where there is no index. False when cancelled.
    bool runWithoutIndex(const Take &take, TaskMonitor &task, RecordTrap &trap, ReadResult &result);
    /// `behind` are addresses after the last of the `slots` that the index counts. False when
    /// cancelled.
    bool run(const Words &behind, std::uint32_t slots, const Take &take, TaskMonitor &task,
             RecordTrap &trap, ReadResult &result);

  private:
    void takeListed(const ChromeAddressMap &map, const ChromeChainPlace &place,
                    std::string_view rule, const Take &take, ReadResult &result);
    void takeHeadless(const Take &take, RecordTrap &trap, ReadResult &result);
    void takeUncounted(const Words &behind, const Take &take, RecordTrap &trap, ReadResult &result);
    void takeBehind(const Words &behind, std::uint32_t slots, const Take &take, RecordTrap &trap,
                    ReadResult &result);
    bool walkFiles(const Take &take, TaskMonitor &task, RecordTrap &trap, ReadResult &result);
    bool walkFile(std::uint8_t number, const Take &take, const std::function<bool(double)> &advance,
                  RecordTrap &trap, ReadResult &result);
    void addNextFiles();
    bool isEntry(const ChromeAddressMap &map);
    void tryBlock(const ChromeAddressMap &map, const Take &take, ReadResult &result);
    void takeRemnant(const ChromeAddressMap &map, std::string foundHow, const Take &take,
                     ReadResult &result);
    void dropWhatIsOwned(ChromeEntry &entry) const;
    std::string bodyOf(const ChromeEntry &entry);
    bool isFilled(const ChromeAddressMap &map, std::uint64_t size);

    ChromeBlockCache &m_cache;
    ChromeBlockFiles &m_blocks;
    ChromeChains &m_chains;
    ChromeOwnedBlocks m_owned;
    Words m_headless;
    std::set<std::uint8_t> m_files = {1}; ///< with entries
    bool m_hasIndex = true;
};

} // namespace nv
