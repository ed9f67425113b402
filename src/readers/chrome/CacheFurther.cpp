#include "readers/chrome/CacheFurther.h"

#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

namespace nv {

namespace {

constexpr std::uint64_t kBlock = 0x100;
constexpr std::uint64_t kMostBlocks = 4; ///< of one entry
constexpr std::uint64_t kBlocksOfFile = 0x10000;
constexpr std::uint64_t kPart = std::uint64_t{1} << 20; ///< bytes read at a time, of whole blocks
constexpr std::uint64_t kMapAt = 0x50;

constexpr std::string_view kShares = "entry that shares a slot with the one before it";
constexpr std::string_view kHeadless = "entry without a header";
constexpr std::string_view kUncounted = "index that counts no slots";

bool isAddressOf(std::uint32_t word, std::uint8_t lowestType, std::uint8_t highestType) {
    const ChromeAddressMap map = chromeAddressMapOf(word);
    return word == 0 ||
           (map.initialised && map.blockFileType >= lowestType && map.blockFileType <= highestType);
}

/// Entries have no signature: what could be one has addresses of the right kinds in each place...
bool hasAddresses(ByteView bytes) {
    constexpr std::uint64_t kNext = 4;
    constexpr std::uint64_t kRankings = 8;
    constexpr std::uint64_t kKey = 0x10;
    constexpr std::uint64_t kHeader = 0x1C;
    constexpr std::uint64_t kBody = 0x20;
    return bytes.u32le(kRankings) != 0 && isAddressOf(bytes.u32le(kRankings), 1, 1) &&
           isAddressOf(bytes.u32le(kNext), 2, 2) && isAddressOf(bytes.u32le(kKey), 0, 4) &&
           isAddressOf(bytes.u32le(kHeader), 0, 4) && isAddressOf(bytes.u32le(kBody), 0, 4);
}

/// ... and a key that is just as long as the entry says.
bool hasKey(ByteView bytes) {
    constexpr std::uint64_t kLength = 0xC;
    constexpr std::uint64_t kKey = 0x10;
    const std::uint64_t length = bytes.u32le(kLength);
    if (bytes.u32le(kKey) != 0)
        return length > 0;
    if (length == 0 || !bytes.has(ChromeEntry::kKeyAt, length))
        return false;
    const std::string_view key = bytes.untilZero(ChromeEntry::kKeyAt).raw();
    return key.size() == length && key.find(':') != std::string_view::npos &&
           std::ranges::all_of(key, [](char c) { return static_cast<unsigned char>(c) > 0x20; });
}

/// How many blocks an entry with such a key has.
std::uint64_t blocksOf(ByteView bytes) {
    constexpr std::uint64_t kLength = 0xC;
    constexpr std::uint64_t kKey = 0x10;
    const std::uint64_t length = bytes.u32le(kKey) != 0 ? 0 : bytes.u32le(kLength);
    return (ChromeEntry::kKeyAt + length + 1 + kBlock - 1) / kBlock;
}

std::uint64_t blocksIn(const EvidenceFile &file) {
    if (file.size() <= ChromeDataFile::kSize)
        return 0;
    return std::min((file.size() - ChromeDataFile::kSize) / kBlock, kBlocksOfFile);
}

/// Whether the browser has the block in use, by the map in the file's head.
bool isAllocated(const EvidenceFile &file, std::uint64_t block) {
    const Bytes bits = file.read(kMapAt + block / 8, 1);
    return kMapAt + block / 8 < ChromeDataFile::kSize && !bits.empty() &&
           (bits[0] >> (block % 8) & 1) != 0;
}

} // namespace

bool hasFirstEntries(const Evidence &evidence, const std::filesystem::path &folder) {
    ChromeBlockFiles blocks(evidence, folder);
    const EvidenceFile *file = blocks.file(1);
    for (std::uint64_t block = 0; file && block < blocksIn(*file); ++block) {
        const Bytes bytes =
            file->read(ChromeDataFile::kSize + block * kBlock, kMostBlocks * kBlock);
        if (bytes.size() >= kBlock && hasAddresses(ByteView(bytes)) && hasKey(ByteView(bytes)))
            return true;
    }
    return false;
}

void ChromeFurther::complete(ChromeEntry &entry, const ChromeChainPlace &place,
                             ReadResult &result) {
    if (!m_cache.complete(entry))
        ++result.passedOver["end of a URL that isn't there"];
    if (place.place > 1 || entry.nextEntryAddressMap.dataBlockFileOffset != 0)
        entry.chain = fmt::format("slot {}, entry {}", place.slot, place.place);
    m_owned.own(entry);
    if (entry.addressMap.blockSize == kBlock)
        m_files.insert(entry.addressMap.dataBlockFileNumber);
}

bool ChromeFurther::run(const Words &behind, std::uint32_t slots, const Take &take,
                        TaskMonitor &task, RecordTrap &trap, ReadResult &result) {
    takeHeadless(take, trap, result);
    if (slots == 0)
        takeUncounted(behind, take, trap, result);
    bool isDone = true;
    trap.attempt(0, [&] {
        isDone = m_chains.follow(m_blocks, task, kShareBefore,
                                 [&](const ChromeAddressMap &map, const ChromeChainPlace &place) {
                                     trap.attempt(map.dataBlockFileOffset, [&] {
                                         takeListed(map, place, kShares, take, result);
                                     });
                                 });
    });
    if (!isDone)
        return false;
    if (slots != 0)
        takeBehind(behind, slots, take, trap, result);
    return walkFiles(take, task, trap, result);
}

bool ChromeFurther::runWithoutIndex(const Take &take, TaskMonitor &task, RecordTrap &trap,
                                    ReadResult &result) {
    m_hasIndex = false;
    return walkFiles(take, task, trap, result);
}

/// Each once, however many slots lead to it.
void ChromeFurther::takeHeadless(const Take &take, RecordTrap &trap, ReadResult &result) {
    std::unordered_set<std::uint32_t> taken;
    for (const auto &[word, slot] : m_headless)
        if (taken.insert(word).second)
            trap.attempt(slot, [&, &address = word, &place = slot] {
                takeListed(chromeAddressMapOf(address), {place, 1}, kHeadless, take, result);
            });
}

/// The browser's own number of slots goes unsaid in some indexes: they are listed all the same.
void ChromeFurther::takeUncounted(const Words &behind, const Take &take, RecordTrap &trap,
                                  ReadResult &result) {
    for (const auto &[word, slot] : behind)
        trap.attempt(slot, [&, &address = word, &place = slot] {
            const ChromeAddressMap map = chromeAddressMapOf(address);
            if (m_chains.isMet(map))
                return;
            const auto entry = m_cache.getEntry(map);
            m_chains.add(map, entry ? entry->nextEntryAddressMap : ChromeAddressMap(), place);
            takeListed(map, {place, 1}, kUncounted, take, result);
        });
}

void ChromeFurther::takeListed(const ChromeAddressMap &map, const ChromeChainPlace &place,
                               std::string_view rule, const Take &take, ReadResult &result) {
    auto entry = m_cache.getEntry(map);
    if (!entry) {
        ++result.passedOver[fmt::format("{}, and isn't there", rule)];
        return;
    }
    complete(*entry, place, result);
    if (entry->headerObject && entry->headerObject->isCutShort)
        ++result.noted["header that is cut short"];
    take({std::move(*entry), rule, {}, {}});
}

/// Slots after those that the index counts are in no use: what stands there is of an earlier time.
void ChromeFurther::takeBehind(const Words &behind, std::uint32_t slots, const Take &take,
                               RecordTrap &trap, ReadResult &result) {
    for (const auto &[word, slot] : behind) {
        const ChromeAddressMap map = chromeAddressMapOf(word);
        if (m_chains.isMet(map))
            continue;
        trap.attempt(slot, [&, &place = slot] {
            if (m_owned.isOwned(map) || !isEntry(map)) {
                ++result.passedOver["address behind the slots that the index counts"];
                return;
            }
            m_chains.meet(map);
            takeRemnant(map, fmt::format("slot {} of the index, which counts {}", place, slots),
                        take, result);
        });
    }
}

bool ChromeFurther::walkFiles(const Take &take, TaskMonitor &task, RecordTrap &trap,
                              ReadResult &result) {
    trap.attempt(0, [this] { addNextFiles(); });
    const auto files = static_cast<double>(m_files.size());
    double walked = 0;
    for (const std::uint8_t number : m_files) {
        const auto advance = [&](double part) {
            return task.advance(kShareBefore + (1 - kShareBefore) * (walked + part) / files);
        };
        if (!walkFile(number, take, advance, trap, result))
            return false;
        ++walked;
    }
    return true;
}

/// A block file that is full names the one that goes on after it.
void ChromeFurther::addNextFiles() {
    std::vector<std::uint8_t> open(m_files.begin(), m_files.end());
    while (!open.empty()) {
        const EvidenceFile *file = m_blocks.file(open.back());
        open.pop_back();
        const Bytes head = file ? file->read(0, kMapAt) : Bytes();
        if (head.size() < kMapAt)
            continue;
        const ChromeDataFile fields = chromeDataFileOf(ByteView(head));
        constexpr std::int16_t kLastFile = 255;
        if (fields.dataFileNextIndex > 0 && fields.dataFileNextIndex <= kLastFile &&
            m_files.insert(static_cast<std::uint8_t>(fields.dataFileNextIndex)).second)
            open.push_back(static_cast<std::uint8_t>(fields.dataFileNextIndex));
    }
}

bool ChromeFurther::walkFile(std::uint8_t number, const Take &take,
                             const std::function<bool(double)> &advance, RecordTrap &trap,
                             ReadResult &result) {
    const EvidenceFile *file = m_blocks.file(number);
    const std::uint64_t count = file ? blocksIn(*file) : 0;
    for (std::uint64_t first = 0; first < count; first += kPart / kBlock) {
        if (!advance(static_cast<double>(first) / static_cast<double>(count)))
            return false;
        trap.attempt(first, [&] {
            const Bytes part = file->read(ChromeDataFile::kSize + first * kBlock, kPart);
            const ByteView view(part);
            for (std::uint64_t at = 0; view.has(at, kBlock) && first + at / kBlock < count;
                 at += kBlock)
                if (hasAddresses(view.sub(at, kBlock)))
                    tryBlock(chromeEntryAddress(number,
                                                static_cast<std::uint16_t>(first + at / kBlock), 1),
                             take, result);
        });
    }
    return true;
}

bool ChromeFurther::isEntry(const ChromeAddressMap &map) {
    const Bytes bytes = m_blocks.read(map, kMostBlocks * kBlock);
    return bytes.size() >= kBlock && hasAddresses(ByteView(bytes)) && hasKey(ByteView(bytes));
}

void ChromeFurther::tryBlock(const ChromeAddressMap &map, const Take &take, ReadResult &result) {
    if (m_chains.isMet(map))
        return;
    const Bytes bytes = m_blocks.read(map, kMostBlocks * kBlock);
    const ByteView view(bytes);
    if (!hasKey(view))
        return;
    const std::uint64_t blocks = blocksOf(view);
    if (m_owned.isOwned(map)) {
        ++result.passedOver["entry within the blocks of a listed one"];
        return;
    }
    const ChromeAddressMap whole =
        chromeEntryAddress(map.dataBlockFileNumber, map.startingBlockNumber, blocks);
    if (m_owned.isOwned(whole)) {
        ++result.passedOver["entry of no slot, whose URL was written over"];
        return;
    }
    const EvidenceFile &file = *m_blocks.file(map.dataBlockFileNumber);
    takeRemnant(
        whole,
        fmt::format("block {} of data_{} (0x{:X}), {}, {} by the file's map of blocks",
                    map.startingBlockNumber, map.dataBlockFileNumber, map.dataBlockFileOffset,
                    m_hasIndex ? "which no slot or chain leads to" : "found without the index",
                    isAllocated(file, map.startingBlockNumber) ? "in use" : "free"),
        take, result);
}

void ChromeFurther::takeRemnant(const ChromeAddressMap &map, std::string foundHow, const Take &take,
                                ReadResult &result) {
    auto entry = m_cache.getEntry(map);
    if (!entry)
        return;
    const bool isKeyGone = m_owned.isOwned(chromeAddressMapOf(entry->keyAddress));
    dropWhatIsOwned(*entry);
    if (isKeyGone || !m_cache.complete(*entry) ||
        (entry->keyAddress != 0 && entry->wholeKey.find(':') == std::string::npos)) {
        ++result.passedOver["entry of no slot, whose URL isn't there"];
        return;
    }
    std::string body = bodyOf(*entry);
    take({std::move(*entry), {}, std::move(foundHow), std::move(body)});
}

/// Blocks that a listed entry has by now say nothing of the one that had them before, and neither
/// do blocks that the browser has emptied.
void ChromeFurther::dropWhatIsOwned(ChromeEntry &entry) const {
    if (m_owned.isOwned(entry.headerAddressMap) ||
        (entry.headerObject &&
         entry.headerObject->lastModifiedTime == chromeTimeToDate(std::int64_t{0}))) {
        entry.headerObject.reset();
        entry.headerAddress = 0;
        entry.headerAddressMap = {};
    }
    entry.rankingObject.reset(); // its node is soon another entry's
}

std::string ChromeFurther::bodyOf(const ChromeEntry &entry) {
    const ChromeAddressMap &map = entry.contentAddressMap;
    if (entry.contentSize == 0 || entry.contentAddress == 0)
        return "none: the entry has no body";
    if (m_owned.isOwned(map))
        return "none: a listed entry has its place";
    if (!isFilled(map, entry.contentSize))
        return "none: its place is gone, or holds zeros";
    return map.blockFileType == 0
               ? "a file of its name, which no listed entry has"
               : "its blocks are no listed entry's, but others may have been written there since";
}

bool ChromeFurther::isFilled(const ChromeAddressMap &map, std::uint64_t size) {
    constexpr std::uint64_t kLookedAt = 4096;
    const auto start = m_cache.getContentObject(map, std::min(size, kLookedAt));
    return start && std::ranges::any_of(*start, [](std::uint8_t byte) { return byte != 0; });
}

} // namespace nv
