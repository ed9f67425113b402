#pragma once

#include "base/Trap.h"
#include "readers/chrome/CacheChains.h"
#include "readers/chrome/CacheClass.h"
#include "readers/chrome/CacheIndex.h"

namespace nv {

/// One walk through the table of an index, for ChromeCacheClass::ReadCache.
class ChromeCacheWalk {
  public:
    static constexpr std::string_view kProcedure = "ParserClass.ParseChromeCache()";

    /// All must outlive this. Throws EvidenceFailure when the index can't be opened.
    ChromeCacheWalk(ChromeCacheClass &cache, EvidenceFile index, ChromeBlockFiles &blocks,
                    FailureLog &log, TaskMonitor &task, const ChromeCacheClass::TakeEntry &take);

    ReadResult run();

  private:
    bool isReadable();
    // False when cancelled.
    bool walkTable();
    bool countBehindTable();
    bool countChains();
    bool goOn(std::uint64_t slot);

    void takeSlot(std::uint64_t slot);
    void miss(std::string_view what, const ChromeAddressMapClass &map, std::string_view reason);
    void notePartsLost(const ChromeEntryClass &entry);
    void noteHeaderCutShort(const ChromeAddressMapClass &map);
    void noteTableCutShort();
    void noteFailures();
    void showStep(std::uint64_t slot);

    std::uint64_t slots() const;
    void passOver(std::string_view reason) { ++m_result.passedOver[std::string(reason)]; }
    std::string damage(const std::string &text);
    void write(const std::string &text);

    ChromeCacheClass &m_cache;
    ChromeBlockFiles &m_blocks;
    FailureLog &m_log;
    TaskMonitor &m_task;
    const ChromeCacheClass::TakeEntry &m_take;
    ChromeIndexFile m_index;
    RecordTrap m_trap;
    ChromeChains m_chains;
    ReadResult m_result;
    std::uint64_t m_addresses = 0; ///< slots in use so far
};

} // namespace nv
