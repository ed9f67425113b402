// address  = initialised:1 type:3 reserved:2 blocks:2 file:8 start:16      type 1 to 4: a block
//          | initialised:1 type:3 number:28                                type 0: a separate file
// entry    = hash next:address rankings:address keyLength keyAddress headerSize contentSize
//            header:address content:address key:byte[218] 0                 each u32le
// header   = u32 u32 requested:u64le modified:u64le ...                     microseconds since 1601
// rankings = used:u64le modified:u64le ...

#include "readers/chrome/cache/CacheRecords.h"

#include "base/Text.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::uint64_t kKeyAt = ChromeEntry::kKeyAt;
/// One character fewer than fits before the closing zero: rows of earlier cases have this length.
constexpr std::uint64_t kLongestKey = 0xFF - 1 - kKeyAt;
constexpr std::uint32_t kSeparateFileMask = 0x0FFF'FFFF;
constexpr std::uint64_t kSeparateFileDigits = 6;
constexpr std::array<std::uint32_t, 8> kBlockSizes = {0, 36, 0x100, 0x400, 0x1000, 0, 0, 0};

/// Two stamps that stand side by side; zeros when the block ends before their end.
std::array<Date, 2> datesAt(ByteView block, std::uint64_t at) {
    const bool isWhole = block.has(at, 16);
    return {chromeTimeToDate(isWhole ? block.u64le(at) : 0),
            chromeTimeToDate(isWhole ? block.u64le(at + 8) : 0)};
}

/// Names have six digits; of a longer number they show the last six.
std::string separateFileName(std::uint32_t word) {
    const std::string digits = fmt::format("{:06x}", word & kSeparateFileMask);
    return "f_" + digits.substr(digits.size() - kSeparateFileDigits);
}

void readKey(ChromeEntry &entry, ByteView record) {
    const ByteView key = record.untilZero(kKeyAt);
    entry.isKeyCutShort = key.size() > kLongestKey;
    entry.keyURL = fromAnsi(key.sub(0, std::min<std::uint64_t>(key.size(), kLongestKey)));
}

} // namespace

ChromeIndex chromeIndexOf(ByteView head) {
    ChromeIndex index;
    index.magic = head.u32le(0);
    index.version = head.u32le(4);
    index.entryCount = head.u32le(8);
    index.storedDataSize = head.u32le(0xC);
    index.lastSeparateFileCreated = head.u32le(0x10);
    index.dirty = head.u32le(0x14);
    index.stats = head.u32le(0x18);
    index.addressCount = head.u32le(0x1C);
    index.hashTableSize = std::uint64_t{index.addressCount} * 4;
    return index;
}

ChromeDataFile chromeDataFileOf(ByteView head) {
    ChromeDataFile file;
    file.magic = head.u32le(0);
    file.version = head.u32le(4);
    file.dataFileIndex = static_cast<std::int16_t>(head.u16le(8));
    file.dataFileNextIndex = static_cast<std::int16_t>(head.u16le(0xA));
    file.blockSize = head.i32le(0xC);
    file.entryCount = head.i32le(0x10);
    file.entryCountMax = head.i32le(0x14);
    return file;
}

ChromeAddressMap chromeAddressMapOf(std::uint32_t word) {
    ChromeAddressMap map;
    map.address = word;
    map.initialised = (word >> 31) != 0;
    map.blockFileType = static_cast<std::uint8_t>((word >> 28) & 0x7);
    map.dataBlocksUsed = static_cast<std::uint8_t>((word >> 24) & 0x3);
    map.dataBlockFileNumber = static_cast<std::uint8_t>((word >> 16) & 0xFF);
    map.startingBlockNumber = static_cast<std::uint16_t>(word & 0xFFFF);
    map.blockSize = kBlockSizes[map.blockFileType];
    if (map.blockSize != 0)
        map.dataBlockFileOffset =
            std::uint64_t{map.startingBlockNumber} * map.blockSize + ChromeDataFile::kSize;
    if (map.blockFileType == 0)
        map.separateFileName = separateFileName(word);
    return map;
}

bool isWholeChromeEntry(ByteView record) {
    return record.size() >= ChromeEntry::kSize ||
           (record.has(kKeyAt, 1) && kKeyAt + record.untilZero(kKeyAt).size() < record.size());
}

ChromeEntry chromeEntryOf(ByteView record) {
    ChromeEntry entry;
    entry.hash = record.u32le(0);
    entry.nextEntryAddress = record.u32le(4);
    entry.rankingsAddress = record.u32le(8);
    entry.keyLength = record.u32le(0xC);
    entry.keyAddress = record.u32le(0x10);
    entry.headerSize = record.u32le(0x14);
    entry.contentSize = record.u32le(0x18);
    entry.headerAddress = record.u32le(0x1C);
    entry.contentAddress = record.u32le(0x20);
    readKey(entry, record);
    entry.nextEntryAddressMap = chromeAddressMapOf(entry.nextEntryAddress);
    entry.rankingsAddressMap = chromeAddressMapOf(entry.rankingsAddress);
    entry.headerAddressMap = chromeAddressMapOf(entry.headerAddress);
    entry.contentAddressMap = chromeAddressMapOf(entry.contentAddress);
    return entry;
}

ChromeHeader chromeHeaderOf(ByteView block) {
    const auto [requested, modified] = datesAt(block, 8);
    return {requested, modified, {}, !block.has(8, 16)};
}

ChromeRanking chromeRankingOf(ByteView block) {
    const auto [used, modified] = datesAt(block, 0);
    return {used, modified};
}

} // namespace nv
