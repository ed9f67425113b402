#include "readers/chrome/CacheRecords.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/IndexDat.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::chromeTime;

TEST(ChromeAddress, givesItsFieldsByTheirBits) {
    const ChromeAddressMapClass map = chromeAddressMapOf(0xA203'0102);
    EXPECT_EQ(map.Address, 0xA203'0102U);
    EXPECT_TRUE(map.Initialised);
    EXPECT_EQ(map.BlockFileType, 2);
    EXPECT_EQ(map.DataBlocksUsed, 2);
    EXPECT_EQ(map.DataBlockFileNumber, 3);
    EXPECT_EQ(map.StartingBlockNumber, 0x102);
    EXPECT_EQ(map.BlockSize, 0x100U);
    EXPECT_EQ(map.DataBlockFileOffset, 0x2000U + 0x102 * 0x100);
    EXPECT_EQ(map.SeparateFileName, "");
}

TEST(ChromeAddress, knowsTheBlocksOfEachType) {
    const std::array<std::uint32_t, 8> sizes = {0, 36, 256, 1024, 4096, 0, 0, 0};
    for (std::uint32_t type = 0; type < 8; ++type) {
        const ChromeAddressMapClass map = chromeAddressMapOf(0x8000'FFFF | type << 28);
        EXPECT_EQ(map.BlockFileType, type);
        EXPECT_EQ(map.BlockSize, sizes[type]);
        const std::uint64_t offset = sizes[type] == 0 ? 0 : 0xFFFFULL * sizes[type] + 0x2000;
        EXPECT_EQ(map.DataBlockFileOffset, offset);
    }
}

TEST(ChromeAddress, ofAllOnesIsTakenApartWithoutASign) {
    const ChromeAddressMapClass map = chromeAddressMapOf(0xFFFF'FFFF);
    EXPECT_TRUE(map.Initialised);
    EXPECT_EQ(map.BlockFileType, 7);
    EXPECT_EQ(map.DataBlocksUsed, 3);
    EXPECT_EQ(map.DataBlockFileNumber, 255);
    EXPECT_EQ(map.StartingBlockNumber, 0xFFFF);
    EXPECT_EQ(map.DataBlockFileOffset, 0U);
}

TEST(ChromeAddress, withTheTopBitAloneIsASeparateFile) {
    const ChromeAddressMapClass map = chromeAddressMapOf(0x8000'0000);
    EXPECT_TRUE(map.Initialised);
    EXPECT_EQ(map.BlockFileType, 0);
    EXPECT_EQ(map.SeparateFileName, "f_000000");
    EXPECT_EQ(map.DataBlockFileOffset, 0U);
}

TEST(ChromeAddress, namesASeparateFileByTheLastSixDigits) {
    EXPECT_EQ(chromeAddressMapOf(0x8000'002F).SeparateFileName, "f_00002f");
    EXPECT_EQ(chromeAddressMapOf(0x80AB'CDEF).SeparateFileName, "f_abcdef");
    EXPECT_EQ(chromeAddressMapOf(0x8FAB'CDEF).SeparateFileName, "f_abcdef");
    EXPECT_EQ(chromeAddressMapOf(0).SeparateFileName, "f_000000");
    EXPECT_FALSE(chromeAddressMapOf(0).Initialised);
}

std::string headerBlock(std::uint64_t requested, std::uint64_t modified) {
    std::string bytes(24, '\0');
    test::put64(bytes, 8, requested);
    test::put64(bytes, 16, modified);
    return bytes;
}

TEST(ChromeHeader, givesBothDates) {
    const auto stamp = static_cast<std::uint64_t>(chromeTime(1308139200, 999'999));
    const ChromeHeaderClass header = chromeHeaderOf(viewOf(headerBlock(stamp, stamp + 1)));
    EXPECT_EQ(isoUtc(header.LastRequestedTime), "2011-06-15T12:00:00Z");
    EXPECT_EQ(isoUtc(header.LastModifiedTime), "2011-06-15T12:00:01Z");
    EXPECT_EQ(header.HeaderValue, "");
    EXPECT_FALSE(header.isCutShort);
}

TEST(ChromeHeader, ofFewerThan24BytesHasDatesOf1601) {
    const std::string whole = headerBlock(~0ULL, ~0ULL);
    for (std::size_t size = 0; size < 24; ++size) {
        const std::string cut = whole.substr(0, size);
        const ChromeHeaderClass header = chromeHeaderOf(viewOf(cut));
        EXPECT_EQ(isoUtc(header.LastRequestedTime), "1601-01-01T00:00:00Z");
        EXPECT_EQ(isoUtc(header.LastModifiedTime), "1601-01-01T00:00:00Z");
        EXPECT_TRUE(header.isCutShort);
    }
}

TEST(ChromeHeader, takesStampsWithAll64Bits) {
    // The last second of 9999, the one after it, and the largest number there is.
    const std::uint64_t last = 265'046'774'399'999'999;
    EXPECT_EQ(isoUtc(chromeHeaderOf(viewOf(headerBlock(0, last))).LastModifiedTime),
              "9999-12-31T23:59:59Z");
    EXPECT_EQ(isoUtc(chromeHeaderOf(viewOf(headerBlock(1, 0))).LastRequestedTime),
              "1601-01-01T00:00:00Z");
    for (const std::uint64_t none : std::vector<std::uint64_t>{last + 1, 1ULL << 63, ~0ULL})
        EXPECT_FALSE(chromeHeaderOf(viewOf(headerBlock(0, none))).LastModifiedTime.has());
}

TEST(ChromeRanking, givesBothDates) {
    const std::string block =
        headerBlock(0, 0).substr(0, 8) + headerBlock(0, 86'400'000'000).substr(16);
    const ChromeRankingClass ranking = chromeRankingOf(viewOf(block));
    EXPECT_EQ(isoUtc(ranking.LastUsedTime), "1601-01-01T00:00:00Z");
    EXPECT_EQ(isoUtc(ranking.LastModifiedTime), "1601-01-02T00:00:00Z");
}

TEST(ChromeIndex, givesItsHead) {
    std::string bytes(32, '\0');
    for (std::size_t field = 0; field < 8; ++field)
        test::put32(bytes, field * 4, static_cast<std::uint32_t>(0x8000'0000 + field));
    const ChromeIndexClass index = chromeIndexOf(viewOf(bytes));
    EXPECT_EQ(index.Magic, 0x8000'0000U);
    EXPECT_EQ(index.Version, 0x8000'0001U);
    EXPECT_EQ(index.EntryCount, 0x8000'0002U);
    EXPECT_EQ(index.StoredDataSize, 0x8000'0003U);
    EXPECT_EQ(index.LastSeparateFileCreated, 0x8000'0004U);
    EXPECT_EQ(index.Dirty, 0x8000'0005U);
    EXPECT_EQ(index.Stats, 0x8000'0006U);
    EXPECT_EQ(index.AddressCount, 0x8000'0007U);
    EXPECT_EQ(index.hashTableSize, 0x2'0000'001CULL);
    EXPECT_THROW(chromeIndexOf(viewOf(bytes.substr(0, 31))), OutOfBytes);
}

TEST(ChromeDataFile, givesItsHead) {
    std::string bytes(24, '\0');
    test::put32(bytes, 0, 0xC103CAC3);
    test::put32(bytes, 4, 0x10003);
    test::put16(bytes, 8, 1);
    test::put16(bytes, 10, 4);
    test::put32(bytes, 12, 256);
    test::put32(bytes, 16, 17);
    test::put32(bytes, 20, 1024);
    const ChromeDataFileClass file = chromeDataFileOf(viewOf(bytes));
    EXPECT_EQ(file.Magic, 0xC103CAC3U);
    EXPECT_EQ(file.Version, 0x10003U);
    EXPECT_EQ(file.DataFileIndex, 1);
    EXPECT_EQ(file.DataFileNextIndex, 4);
    EXPECT_EQ(file.BlockSize, 256);
    EXPECT_EQ(file.EntryCount, 17);
    EXPECT_EQ(file.EntryCountMax, 1024);
}

std::string entryBlock(const std::string &key) {
    std::string bytes(0x24, '\0');
    for (std::size_t field = 0; field < 9; ++field)
        test::put32(bytes, field * 4, static_cast<std::uint32_t>(0xA101'0000 + field));
    bytes += key;
    bytes.resize(0x100, '\0');
    return bytes;
}

TEST(ChromeEntry, givesItsFields) {
    const std::string bytes = entryBlock("http://host/caf\xE9");
    const ChromeEntryClass entry = chromeEntryOf(viewOf(bytes));
    EXPECT_EQ(entry.Hash, 0xA101'0000U);
    EXPECT_EQ(entry.NextEntryAddress, 0xA101'0001U);
    EXPECT_EQ(entry.RankingsAddress, 0xA101'0002U);
    EXPECT_EQ(entry.KeyLength, 0xA101'0003U);
    EXPECT_EQ(entry.KeyAddress, 0xA101'0004U);
    EXPECT_EQ(entry.HeaderSize, 0xA101'0005U);
    EXPECT_EQ(entry.ContentSize, 0xA101'0006U);
    EXPECT_EQ(entry.HeaderAddress, 0xA101'0007U);
    EXPECT_EQ(entry.ContentAddress, 0xA101'0008U);
    EXPECT_EQ(entry.NextEntryAddressMap.StartingBlockNumber, 1);
    EXPECT_EQ(entry.RankingsAddressMap.StartingBlockNumber, 2);
    EXPECT_EQ(entry.HeaderAddressMap.StartingBlockNumber, 7);
    EXPECT_EQ(entry.ContentAddressMap.StartingBlockNumber, 8);
    EXPECT_EQ(entry.keyURL, "http://host/caf\xC3\xA9"); // Windows-1252 on the disk
    EXPECT_FALSE(entry.isKeyCutShort);
}

TEST(ChromeEntry, keeps218CharactersOfItsUrl) {
    for (const std::size_t length : {1U, 217U, 218U, 219U, 220U}) {
        const std::string bytes = entryBlock(std::string(length, 'u'));
        const ChromeEntryClass entry = chromeEntryOf(viewOf(bytes));
        EXPECT_EQ(entry.keyURL.size(), std::min<std::size_t>(length, 218));
        EXPECT_EQ(entry.isKeyCutShort, length > 218);
    }
}

TEST(ChromeEntry, isWholeWhenItsUrlEndsBeforeTheBytesDo) {
    const std::string bytes = entryBlock("http://host/");
    const std::size_t urlEnd = 0x24 + 12;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const std::string cut = bytes.substr(0, size);
        EXPECT_EQ(isWholeChromeEntry(viewOf(cut)), size > urlEnd);
        if (size > urlEnd) {
            EXPECT_EQ(chromeEntryOf(viewOf(cut)).keyURL, "http://host/");
        }
    }
    EXPECT_TRUE(isWholeChromeEntry(viewOf(entryBlock(std::string(220, 'u')))));
}

} // namespace
} // namespace nv
