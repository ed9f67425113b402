#include "readers/chrome/CacheClass.h"

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

ChromeCacheClass::ChromeCacheClass(std::filesystem::path index, const Evidence &evidence,
                                   FailureLog &log, TaskMonitor &task)
    : indexPath(std::move(index)), m_evidence(evidence), m_log(log), m_task(task),
      m_blocks(evidence, indexPath.parent_path(), log, kProcedure) {}

ReadResult ChromeCacheClass::ReadCache(const TakeEntry &take) {
    const std::string path = textOf(indexPath);
    if (Reading)
        return {ReadState::failed, "is being read already: " + path, 0, {}};
    const ReadingFlag reading(Reading);
    Entries.Clear();
    m_task.describe(
        {"PARSING GOOGLE CHROME CACHE", "Reading INDEX File...", path, "chrome-32.gif"});
    const ReadResult unread{ReadState::failed, "could not be read: " + path, 0, {}};
    ReadResult result = trapped(m_log, Severity::Serious, kProcedure, kContactSupport, unread, [&] {
        return ChromeCacheWalk(*this, m_evidence.open(indexPath), m_blocks, m_log, m_task, take)
            .run();
    });
    CacheError = result.reason;
    return result;
}

ReadResult ChromeCacheClass::ReadCache() {
    return ReadCache([this](const ChromeEntryClass &entry) { Entries.Add(entry); });
}

std::optional<ChromeAddressMapClass> ChromeCacheClass::GetAddressMap(std::uint32_t addressWord) {
    if (addressWord == 0)
        return std::nullopt;
    return chromeAddressMapOf(addressWord);
}

std::optional<ChromeEntryClass> ChromeCacheClass::GetEntry(const ChromeAddressMapClass &map) {
    const Bytes bytes = m_blocks.read(map, ChromeEntryClass::kSize);
    if (!isWholeChromeEntry(ByteView(bytes)))
        return std::nullopt;
    ChromeEntryClass entry = chromeEntryOf(ByteView(bytes));
    entry.AddressMap = map;
    entry.MapFileOffset = map.DataBlockFileOffset;
    entry.HeaderObject = GetHeaderObject(entry.HeaderAddressMap);
    entry.RankingObject = GetRankingObject(entry.RankingsAddressMap);
    return entry;
}

std::optional<ChromeHeaderClass>
ChromeCacheClass::GetHeaderObject(const ChromeAddressMapClass &map) {
    const Bytes bytes = m_blocks.read(map, ChromeHeaderClass::kSize);
    if (bytes.empty())
        return std::nullopt;
    return chromeHeaderOf(ByteView(bytes));
}

std::optional<ChromeRankingClass>
ChromeCacheClass::GetRankingObject(const ChromeAddressMapClass &map) {
    const Bytes bytes = m_blocks.read(map, ChromeRankingClass::kSize);
    if (bytes.empty())
        return std::nullopt;
    return chromeRankingOf(ByteView(bytes));
}

std::optional<ChromeContentClass>
ChromeCacheClass::GetContentObject(const ChromeAddressMapClass &map, std::uint64_t size) {
    Bytes bytes;
    if (map.BlockFileType != 0)
        bytes = m_blocks.read(map, size);
    else if (const auto file = m_evidence.find(indexPath.parent_path(), map.SeparateFileName))
        bytes = m_evidence.open(*file).read(0, size);
    if (bytes.empty())
        return std::nullopt;
    return ChromeContentClass{std::move(bytes)};
}

} // namespace nv
