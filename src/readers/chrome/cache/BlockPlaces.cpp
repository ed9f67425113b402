#include "base/NoLog.h"
#include "base/TaskMonitor.h"
#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/BlockCache.h"
#include "readers/chrome/cache/CacheBlocks.h"
#include "readers/chrome/cache/CachePlaces.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/cache/LaterEntry.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>

namespace nv {

namespace {

namespace fs = std::filesystem;
using F = SourceForm;

constexpr std::uint64_t kLong = 8;
constexpr int kBlockFiles = 256;

// Of the first layout, as CacheRecords.cpp tells it.
constexpr std::array<NumberRule, 5> kFirstDates = {{
    {"ActionDateUTC", 0x10, kLong, F::chromeTime},
    {"LastVisited", 0x10, kLong, F::chromeTime},
    {"CacheFileLastAccessed", 0x10, kLong, F::chromeTime},
    {"OtherDate", 8, kLong, F::chromeTime},
    {"request_time", 8, kLong, F::chromeTime},
}};
constexpr std::array<NumberRule, 2> kFirstNumbers = {{
    {"CacheFileSize", 0x18},
    {"RecordSize", 0xC},
}};
constexpr std::array<NumberRule, 2> kUse = {{
    {"last_used", 0, kLong, F::chromeTime},
    {"last_updated", 8, kLong, F::chromeTime},
}};
/// Of the later one, as LaterEntry.h tells it.
constexpr std::array<NumberRule, 2> kLaterNumbers = {{
    {"created", 24, kLong, F::chromeTime},
    {"CacheFileSize", 44},
}};

/// The address of the entry that begins at `offset` of that block file, if one can begin there.
std::optional<ChromeAddressMap> entryAddress(int file, std::uint64_t offset) {
    constexpr std::uint64_t kBlock = LaterEntry::kBlock;
    if (offset < ChromeDataFile::kSize || (offset - ChromeDataFile::kSize) % kBlock != 0 ||
        (offset - ChromeDataFile::kSize) / kBlock > 0xFFFF)
        return std::nullopt;
    return chromeEntryAddress(static_cast<std::uint8_t>(file),
                              static_cast<std::uint16_t>((offset - ChromeDataFile::kSize) / kBlock),
                              1);
}

/// Blocks of one cache, and the bytes in them.
class CacheBlocksOf {
  public:
    explicit CacheBlocksOf(const PlaceSearch &search)
        : m_search(search), m_folder(search.source.parent_path()),
          m_blocks(search.evidence, m_folder) {}

    const fs::path &folder() const { return m_folder; }
    ChromeBlockFiles &files() { return m_blocks; }

    /// Nothing where the address leads to no bytes.
    std::optional<SourceBytes> bytes(const ChromeAddressMap &map, std::string name,
                                     std::uint64_t size) {
        if (!map.initialised || size == 0)
            return std::nullopt;
        const auto file = m_search.evidence.find(
            m_folder, map.blockFileType == 0 ? map.separateFileName
                                             : fmt::format("data_{}", map.dataBlockFileNumber));
        if (!file)
            return std::nullopt;
        SourceBytes found{std::move(name),
                          *file,
                          {},
                          map.dataBlockFileOffset,
                          m_search.evidence.open(*file).read(map.dataBlockFileOffset, size)};
        return found.bytes.empty() ? std::nullopt : std::optional(std::move(found));
    }

  private:
    const PlaceSearch &m_search;
    fs::path m_folder;
    ChromeBlockFiles m_blocks;
};

bool isLater(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("Block files");
}

[[noreturn]] void tellMissing(std::uint64_t offset) {
    throw std::runtime_error(
        fmt::format("no block file has the record's entry at byte {} any more", offset));
}

/// The project has the offset of an entry, and not in which of the files that hold entries.
template <class Take>
auto inSomeFile(CacheBlocksOf &blocks, std::uint64_t offset, const Take &take) {
    for (int number = 0; number < kBlockFiles; ++number) {
        const auto map = entryAddress(number, offset);
        if (!map || !blocks.files().file(static_cast<std::uint8_t>(number)))
            continue;
        if (auto found = take(*map))
            return found;
    }
    tellMissing(offset);
}

void placeFirstKey(const ChromeEntry &entry, const std::string &stored, CacheBlocksOf &blocks,
                   const SourceBytes &own, FieldPlaces &places) {
    const bool isOutside = entry.keyAddress != 0;
    const auto key = isOutside ? blocks.bytes(chromeAddressMapOf(entry.keyAddress),
                                              "the entry's key", entry.keyLength)
                               : std::optional(own);
    if (!key)
        return;
    const std::uint64_t at = isOutside ? 0 : ChromeEntry::kKeyAt;
    const std::uint64_t size = key->view().untilZero(at).size();
    const std::string whole = fromAnsi(key->view().sub(at, size));
    places.value("cache_key", *key, at, size, whole, "Windows-1252, up to a zero byte");
    const bool isCut = stored != whole && stored == entry.keyURL;
    for (const std::string_view field : {"URL", "URLRawValue"})
        places.value(field, *key, at, isCut ? toAnsi(stored).size() : size, isCut ? stored : whole,
                     isCut
                         ? "Windows-1252; no more than 218 characters, as the first version has it"
                         : "Windows-1252, up to a zero byte");
}

/// Of what was never written 0 became the clock's first day.
void placeDates(const SourceBytes &bytes, std::span<const NumberRule> rules, FieldPlaces &places) {
    for (const NumberRule &rule : rules) {
        if (!bytes.view().has(rule.at, rule.size))
            places.unknown(rule.field, "its block ends before it: 1601-01-01 stands for no date");
        else if (bytes.view().u64le(rule.at) != 0)
            places.number(bytes, rule);
        else
            places.value(rule.field, bytes, rule.at, rule.size, chromeTimeToDate(std::int64_t{0}),
                         "0, which this program has read as 1601-01-01: no date");
    }
}

void locateFirst(const PlaceSearch &search, CacheBlocksOf &blocks, FieldPlaces &places) {
    NoLog log;
    Unwatched task;
    ChromeBlockCache cache(search.source, search.evidence, log, task);
    const auto offset = static_cast<std::uint64_t>(search.record.MapFileOffset);
    const ChromeEntry entry = *inSomeFile(blocks, offset, [&](const ChromeAddressMap &map) {
        auto found = cache.getEntry(map);
        if (found)
            static_cast<void>(cache.complete(*found)); // what is left of it has its place too
        const bool isOurs =
            found && (found->keyURL == search.record.URL || found->wholeKey == search.record.URL);
        return isOurs ? found : std::optional<ChromeEntry>();
    });
    constexpr std::uint64_t kMostKey = 0x400;
    const auto own = blocks.bytes(entry.addressMap, "the entry", kMostKey);
    if (!own)
        tellMissing(offset);
    placeFirstKey(entry, search.record.URL, blocks, *own, places);
    places.numbers(*own, kFirstNumbers);
    const std::uint64_t size =
        std::min<std::uint64_t>(entry.headerSize, limits::kChromeSeparateText);
    if (const auto head = blocks.bytes(entry.headerAddressMap, "the head of the answer",
                                       std::max<std::uint64_t>(size, ChromeHeader::kSize))) {
        placeDates(*head, kFirstDates, places);
        placeChromeHead(*head, {}, places);
    }
    if (const auto use =
            blocks.bytes(entry.rankingsAddressMap, "the entry's rankings", ChromeRanking::kSize))
        placeDates(*use, kUse, places);
}

void locateLater(const PlaceSearch &search, CacheBlocksOf &blocks, FieldPlaces &places) {
    LaterEntries entries(blocks.files(), search.evidence, blocks.folder());
    const auto offset = static_cast<std::uint64_t>(search.record.MapFileOffset);
    const LaterEntry entry = *inSomeFile(blocks, offset, [&](const ChromeAddressMap &map) {
        auto found = entries.at(map);
        return found && chromeKeyText(found->key) == search.record.URLRawValue
                   ? found
                   : std::optional<LaterEntry>();
    });
    const auto own = blocks.bytes(entry.address, "the entry", LaterEntry::kMostBytes);
    if (!own)
        tellMissing(offset);
    auto key =
        entry.longKey.initialised
            ? blocks.bytes(entry.longKey, "the entry's key", entry.keyLength)
            : blocks.bytes(entry.address, "the entry's key", LaterEntry::kKeyAt + entry.keyLength);
    if (key) {
        if (!entry.longKey.initialised) {
            key->bytes.erase(key->bytes.begin(),
                             key->bytes.begin() + static_cast<std::ptrdiff_t>(LaterEntry::kKeyAt));
            key->at += LaterEntry::kKeyAt;
        }
        placeChromeKey(*key, places);
    }
    if ((entry.flags & LaterEntry::sparseParent) != 0)
        places.unknown("CacheFileSize", "it is the sum of many pieces, each an entry of its own; "
                                        "the fact \"byte_ranges\" lists them");
    places.numbers(*own, kLaterNumbers);
    const LaterStream &stream = entry.streams[LaterEntry::head];
    if (const auto head = blocks.bytes(
            stream.address, "the head of the answer",
            std::min({stream.size, stream.room(), std::uint64_t{limits::kChromeSeparateText}})))
        placeChromeHead(*head, entry.key, places);
    if (const auto use = blocks.bytes(entry.rankings, "the entry's rankings", 2 * kLong))
        places.numbers(*use, kUse);
}

} // namespace

void locateInBlockFiles(const PlaceSearch &search, FieldPlaces &places) {
    CacheBlocksOf blocks(search);
    // A separate file that no entry leads to is all there is of its record.
    const bool isLone = isLater(search.record) && search.record.URLRawValue.empty();
    if (isLater(search.record) && !isLone)
        locateLater(search, blocks, places);
    else if (isLone)
        places.derived("CacheFileSize", "size of the file, which no entry leads to");
    else
        locateFirst(search, blocks, places);
    placeChromeRest(places);
}

} // namespace nv
