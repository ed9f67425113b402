#include "readers/chrome/BlockCache.h"

#include "base/Trap.h"
#include "readers/chrome/CacheWalk.h"

namespace nv {

namespace {

constexpr std::string_view kProcedure = ChromeCacheWalk::kProcedure;

/// Holds `Reading` while a walk lasts, however it ends.
class ReadingFlag {
  public:
    explicit ReadingFlag(bool &flag) : m_flag(flag) { m_flag = true; }
    ~ReadingFlag() { m_flag = false; }
    ReadingFlag(const ReadingFlag &) = delete;
    ReadingFlag &operator=(const ReadingFlag &) = delete;

  private:
    bool &m_flag;
};

} // namespace

ChromeBlockCache::ChromeBlockCache(std::filesystem::path index, const Evidence &evidence,
                                   FailureLog &log, TaskMonitor &task)
    : indexPath(std::move(index)), m_evidence(evidence), m_log(log), m_task(task),
      m_blocks(evidence, indexPath.parent_path(), log, kProcedure) {}

ReadResult ChromeBlockCache::readCache(const TakeEntry &take) {
    const std::string path = textOf(indexPath);
    if (isReading)
        return {ReadState::failed, "is being read already: " + path, 0, {}};
    const ReadingFlag reading(isReading);
    entries.clear();
    m_task.describe(
        {"PARSING GOOGLE CHROME CACHE", "Reading INDEX File...", path, "chrome-32.gif"});
    const ReadResult unread{ReadState::failed, "could not be read: " + path, 0, {}};
    ReadResult result = trapped(m_log, Severity::Serious, kProcedure, kContactSupport, unread, [&] {
        return ChromeCacheWalk(*this, m_evidence.open(indexPath), m_blocks, m_log, m_task, take)
            .run();
    });
    cacheError = result.reason;
    return result;
}

ReadResult ChromeBlockCache::readCache() {
    return readCache([this](const ChromeEntry &entry) { entries.add(entry); });
}

std::optional<ChromeAddressMap> ChromeBlockCache::getAddressMap(std::uint32_t addressWord) {
    if (addressWord == 0)
        return std::nullopt;
    return chromeAddressMapOf(addressWord);
}

std::optional<ChromeEntry> ChromeBlockCache::getEntry(const ChromeAddressMap &map) {
    const Bytes bytes = m_blocks.read(map, ChromeEntry::kSize);
    if (!isWholeChromeEntry(ByteView(bytes)))
        return std::nullopt;
    ChromeEntry entry = chromeEntryOf(ByteView(bytes));
    entry.addressMap = map;
    entry.mapFileOffset = map.dataBlockFileOffset;
    entry.headerObject = getHeaderObject(entry.headerAddressMap);
    entry.rankingObject = getRankingObject(entry.rankingsAddressMap);
    return entry;
}

std::optional<ChromeHeader> ChromeBlockCache::getHeaderObject(const ChromeAddressMap &map) {
    const Bytes bytes = m_blocks.read(map, ChromeHeader::kSize);
    if (bytes.empty())
        return std::nullopt;
    return chromeHeaderOf(ByteView(bytes));
}

std::optional<ChromeRanking> ChromeBlockCache::getRankingObject(const ChromeAddressMap &map) {
    const Bytes bytes = m_blocks.read(map, ChromeRanking::kSize);
    if (bytes.empty())
        return std::nullopt;
    return chromeRankingOf(ByteView(bytes));
}

} // namespace nv
