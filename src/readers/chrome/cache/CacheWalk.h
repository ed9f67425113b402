#pragma once

#include "base/Trap.h"
#include "readers/chrome/cache/BlockCache.h"
#include "readers/chrome/cache/CacheChains.h"
#include "readers/chrome/cache/CacheFurther.h"
#include "readers/chrome/cache/CacheIndex.h"

namespace nv {

/// One walk through the table of an index, for ChromeBlockCache::readCache.
class ChromeCacheWalk {
  public:
    static constexpr std::string_view kProcedure = "ParserClass.ParseChromeCache()";

    /// All must outlive this. Throws EvidenceFailure when the index can't be opened.
    ChromeCacheWalk(ChromeBlockCache &cache, EvidenceFile index, ChromeBlockFiles &blocks,
                    FailureLog &log, TaskMonitor &task, const ChromeBlockCache::TakeEntry &take,
                    const ChromeBlockCache::TakeFurther &takeFurther);

    ReadResult run();

  private:
    bool isReadable();
    // False when cancelled.
    bool walkTable();
    bool countBehindTable();
    bool countChains();
    bool goOn(std::uint64_t slot);

    bool walkFurther();

    void takeSlot(std::uint64_t slot);
    void keepHeadless(const ChromeEntry &entry, std::uint64_t slot);
    void noteKeyLost(const ChromeEntry &entry);
    void miss(std::string_view what, const ChromeAddressMap &map, std::string_view reason);
    void notePartsLost(const ChromeEntry &entry);
    void noteHeaderCutShort(const ChromeAddressMap &map);
    void noteTableCutShort();
    void noteFailures();
    void showStep(std::uint64_t slot);

    std::uint64_t slots() const;
    void passOver(std::string_view reason) { ++m_result.passedOver[std::string(reason)]; }
    std::string damage(const std::string &text);
    void write(const std::string &text);

    ChromeBlockCache &m_cache;
    ChromeBlockFiles &m_blocks;
    FailureLog &m_log;
    TaskMonitor &m_task;
    const ChromeBlockCache::TakeEntry &m_take;
    const ChromeBlockCache::TakeFurther &m_takeFurther; ///< empty: by the classic rules alone
    ChromeIndexFile m_index;
    RecordTrap m_trap;
    ChromeChains m_chains;
    ChromeFurther m_further;
    ReadResult m_result;
    std::uint64_t m_addresses = 0; ///< slots in use so far
};

} // namespace nv
