#include "readers/chrome/BlockCache.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Limits.h"
#include "readers/chrome/CacheWalk.h"
#include "readers/chrome/ResponseInfo.h"

#include <algorithm>

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

/// As much as a key or an answer that begins at the address can have.
std::uint64_t roomAt(const ChromeAddressMap &map) {
    constexpr std::uint64_t kMostBlocks = 4;
    return map.blockFileType == 0 ? limits::kChromeSeparateText : map.blockSize * kMostBlocks;
}

} // namespace

ChromeBlockCache::ChromeBlockCache(std::filesystem::path index, const Evidence &evidence,
                                   FailureLog &log, TaskMonitor &task)
    : indexPath(std::move(index)), m_evidence(evidence), m_log(log), m_task(task),
      m_blocks(evidence, indexPath.parent_path(), log, kProcedure) {}

ReadResult ChromeBlockCache::readCache(const TakeEntry &take) {
    return readCache(take, {});
}

ReadResult ChromeBlockCache::readCache(const TakeEntry &take, const TakeFurther &takeFurther) {
    const std::string path = textOf(indexPath);
    if (isReading)
        return {ReadState::failed, "is being read already: " + path, 0, {}};
    const ReadingFlag reading(isReading);
    entries.clear();
    m_task.describe(
        {"PARSING GOOGLE CHROME CACHE", "Reading INDEX File...", path, "chrome-32.gif"});
    const ReadResult unread{ReadState::failed, "could not be read: " + path, 0, {}};
    ReadResult result = trapped(m_log, Severity::Serious, kProcedure, kContactSupport, unread, [&] {
        return ChromeCacheWalk(*this, m_evidence.open(indexPath), m_blocks, m_log, m_task, take,
                               takeFurther)
            .run();
    });
    cacheError = result.reason;
    return result;
}

ReadResult ChromeBlockCache::readCache() {
    return readCache([this](const ChromeEntry &entry) { entries.add(entry); });
}

ReadResult ChromeBlockCache::readWithoutIndex(const TakeFurther &take, const std::string &lack) {
    ReadResult result{ReadState::cutShort, lack, 0, {}};
    trapped(m_log, Severity::Serious, kProcedure, kContactSupport, [&] {
        ChromeChains chains;
        RecordTrap trap(m_log, kProcedure, textOf(indexPath));
        if (!ChromeFurther(*this, m_blocks, chains).runWithoutIndex(take, m_task, trap, result))
            result.state = ReadState::cancelled;
        result.notReached += trap.failed();
    });
    return result;
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

std::optional<Bytes> ChromeBlockCache::getContentObject(const ChromeAddressMap &map,
                                                        std::uint64_t size) {
    Bytes bytes;
    if (map.blockFileType != 0)
        bytes = m_blocks.read(map, size);
    else if (const auto file = m_evidence.find(indexPath.parent_path(), map.separateFileName))
        bytes = m_evidence.open(*file).read(0, size);
    if (bytes.empty())
        return std::nullopt;
    return bytes;
}

bool ChromeBlockCache::complete(ChromeEntry &entry) {
    if (entry.headerAddress != 0)
        if (const auto response = getContentObject(
                entry.headerAddressMap,
                std::min<std::uint64_t>(entry.headerSize, roomAt(entry.headerAddressMap))))
            entry.answer = answerOf(ByteView(*response));
    if (entry.keyAddress == 0 && !entry.isKeyCutShort)
        return true;
    const bool isOutside = entry.keyAddress != 0;
    const ChromeAddressMap map =
        isOutside ? chromeAddressMapOf(entry.keyAddress) : entry.addressMap;
    const std::uint64_t start = isOutside ? 0 : ChromeEntry::kKeyAt;
    const std::uint64_t end = start + entry.keyLength;
    const auto bytes = end <= roomAt(map) ? getContentObject(map, end) : std::nullopt;
    if (!bytes || bytes->size() < end)
        return false;
    entry.wholeKey = fromAnsi(ByteView(*bytes).from(start).untilZero(0));
    return true;
}

} // namespace nv
