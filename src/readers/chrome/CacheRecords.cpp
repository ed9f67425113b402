// address  = initialised:1 type:3 reserved:2 blocks:2 file:8 start:16      type 1 to 4: a block
//          | initialised:1 type:3 number:28                                type 0: a separate file
// entry    = hash next:address rankings:address keyLength keyAddress headerSize contentSize
//            header:address content:address key:byte[218] 0                 each u32le
// header   = u32 u32 requested:u64le modified:u64le ...                     microseconds since 1601
// rankings = used:u64le modified:u64le ...

#include "readers/chrome/CacheRecords.h"

#include "base/Text.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::uint64_t kKeyAt = 0x24;
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

void readKey(ChromeEntryClass &entry, ByteView record) {
    const ByteView key = record.untilZero(kKeyAt);
    entry.isKeyCutShort = key.size() > kLongestKey;
    entry.keyURL = fromAnsi(key.sub(0, std::min<std::uint64_t>(key.size(), kLongestKey)));
}

} // namespace

ChromeIndexClass chromeIndexOf(ByteView head) {
    ChromeIndexClass index;
    index.Magic = head.u32le(0);
    index.Version = head.u32le(4);
    index.EntryCount = head.u32le(8);
    index.StoredDataSize = head.u32le(0xC);
    index.LastSeparateFileCreated = head.u32le(0x10);
    index.Dirty = head.u32le(0x14);
    index.Stats = head.u32le(0x18);
    index.AddressCount = head.u32le(0x1C);
    index.hashTableSize = std::uint64_t{index.AddressCount} * 4;
    return index;
}

ChromeDataFileClass chromeDataFileOf(ByteView head) {
    ChromeDataFileClass file;
    file.Magic = head.u32le(0);
    file.Version = head.u32le(4);
    file.DataFileIndex = static_cast<std::int16_t>(head.u16le(8));
    file.DataFileNextIndex = static_cast<std::int16_t>(head.u16le(0xA));
    file.BlockSize = head.i32le(0xC);
    file.EntryCount = head.i32le(0x10);
    file.EntryCountMax = head.i32le(0x14);
    return file;
}

ChromeAddressMapClass chromeAddressMapOf(std::uint32_t word) {
    ChromeAddressMapClass map;
    map.Address = word;
    map.Initialised = (word >> 31) != 0;
    map.BlockFileType = static_cast<std::uint8_t>((word >> 28) & 0x7);
    map.DataBlocksUsed = static_cast<std::uint8_t>((word >> 24) & 0x3);
    map.DataBlockFileNumber = static_cast<std::uint8_t>((word >> 16) & 0xFF);
    map.StartingBlockNumber = static_cast<std::uint16_t>(word & 0xFFFF);
    map.BlockSize = kBlockSizes[map.BlockFileType];
    if (map.BlockSize != 0)
        map.DataBlockFileOffset =
            std::uint64_t{map.StartingBlockNumber} * map.BlockSize + ChromeDataFileClass::kSize;
    if (map.BlockFileType == 0)
        map.SeparateFileName = separateFileName(word);
    return map;
}

bool isWholeChromeEntry(ByteView record) {
    return record.size() >= ChromeEntryClass::kSize ||
           (record.has(kKeyAt, 1) && kKeyAt + record.untilZero(kKeyAt).size() < record.size());
}

ChromeEntryClass chromeEntryOf(ByteView record) {
    ChromeEntryClass entry;
    entry.Hash = record.u32le(0);
    entry.NextEntryAddress = record.u32le(4);
    entry.RankingsAddress = record.u32le(8);
    entry.KeyLength = record.u32le(0xC);
    entry.KeyAddress = record.u32le(0x10);
    entry.HeaderSize = record.u32le(0x14);
    entry.ContentSize = record.u32le(0x18);
    entry.HeaderAddress = record.u32le(0x1C);
    entry.ContentAddress = record.u32le(0x20);
    readKey(entry, record);
    entry.NextEntryAddressMap = chromeAddressMapOf(entry.NextEntryAddress);
    entry.RankingsAddressMap = chromeAddressMapOf(entry.RankingsAddress);
    entry.HeaderAddressMap = chromeAddressMapOf(entry.HeaderAddress);
    entry.ContentAddressMap = chromeAddressMapOf(entry.ContentAddress);
    return entry;
}

ChromeHeaderClass chromeHeaderOf(ByteView block) {
    const auto [requested, modified] = datesAt(block, 8);
    return {requested, modified, {}, !block.has(8, 16)};
}

ChromeRankingClass chromeRankingOf(ByteView block) {
    const auto [used, modified] = datesAt(block, 0);
    return {used, modified};
}

} // namespace nv
