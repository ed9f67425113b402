#include "readers/chrome/cache/CacheRecords.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/IndexDat.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::chromeTime;

TEST(ChromeAddress, givesItsFieldsByTheirBits) {
    const ChromeAddressMap map = chromeAddressMapOf(0xA203'0102);
    EXPECT_EQ(map.address, 0xA203'0102U);
    EXPECT_TRUE(map.initialised);
    EXPECT_EQ(map.blockFileType, 2);
    EXPECT_EQ(map.dataBlocksUsed, 2);
    EXPECT_EQ(map.dataBlockFileNumber, 3);
    EXPECT_EQ(map.startingBlockNumber, 0x102);
    EXPECT_EQ(map.blockSize, 0x100U);
    EXPECT_EQ(map.dataBlockFileOffset, 0x2000U + 0x102 * 0x100);
    EXPECT_EQ(map.separateFileName, "");
}

TEST(ChromeAddress, knowsTheBlocksOfEachType) {
    const std::array<std::uint32_t, 8> sizes = {0, 36, 256, 1024, 4096, 0, 0, 0};
    for (std::uint32_t type = 0; type < 8; ++type) {
        const ChromeAddressMap map = chromeAddressMapOf(0x8000'FFFF | type << 28);
        EXPECT_EQ(map.blockFileType, type);
        EXPECT_EQ(map.blockSize, sizes[type]);
        const std::uint64_t offset = sizes[type] == 0 ? 0 : 0xFFFFULL * sizes[type] + 0x2000;
        EXPECT_EQ(map.dataBlockFileOffset, offset);
    }
}

TEST(ChromeAddress, ofAllOnesIsTakenApartWithoutASign) {
    const ChromeAddressMap map = chromeAddressMapOf(0xFFFF'FFFF);
    EXPECT_TRUE(map.initialised);
    EXPECT_EQ(map.blockFileType, 7);
    EXPECT_EQ(map.dataBlocksUsed, 3);
    EXPECT_EQ(map.dataBlockFileNumber, 255);
    EXPECT_EQ(map.startingBlockNumber, 0xFFFF);
    EXPECT_EQ(map.dataBlockFileOffset, 0U);
}

TEST(ChromeAddress, withTheTopBitAloneIsASeparateFile) {
    const ChromeAddressMap map = chromeAddressMapOf(0x8000'0000);
    EXPECT_TRUE(map.initialised);
    EXPECT_EQ(map.blockFileType, 0);
    EXPECT_EQ(map.separateFileName, "f_000000");
    EXPECT_EQ(map.dataBlockFileOffset, 0U);
}

TEST(ChromeAddress, namesASeparateFileByTheLastSixDigits) {
    EXPECT_EQ(chromeAddressMapOf(0x8000'002F).separateFileName, "f_00002f");
    EXPECT_EQ(chromeAddressMapOf(0x80AB'CDEF).separateFileName, "f_abcdef");
    EXPECT_EQ(chromeAddressMapOf(0x8FAB'CDEF).separateFileName, "f_abcdef");
    EXPECT_EQ(chromeAddressMapOf(0).separateFileName, "f_000000");
    EXPECT_FALSE(chromeAddressMapOf(0).initialised);
}

std::string headerBlock(std::uint64_t requested, std::uint64_t modified) {
    std::string bytes(24, '\0');
    test::put64(bytes, 8, requested);
    test::put64(bytes, 16, modified);
    return bytes;
}

TEST(ChromeHeader, givesBothDates) {
    const auto stamp = static_cast<std::uint64_t>(chromeTime(1308139200, 999'999));
    const ChromeHeader header = chromeHeaderOf(viewOf(headerBlock(stamp, stamp + 1)));
    EXPECT_EQ(isoUtc(header.lastRequestedTime), "2011-06-15T12:00:00Z");
    EXPECT_EQ(isoUtc(header.lastModifiedTime), "2011-06-15T12:00:01Z");
    EXPECT_EQ(header.headerValue, "");
    EXPECT_FALSE(header.isCutShort);
}

TEST(ChromeHeader, ofFewerThan24BytesHasDatesOf1601) {
    const std::string whole = headerBlock(~0ULL, ~0ULL);
    for (std::size_t size = 0; size < 24; ++size) {
        const std::string cut = whole.substr(0, size);
        const ChromeHeader header = chromeHeaderOf(viewOf(cut));
        EXPECT_EQ(isoUtc(header.lastRequestedTime), "1601-01-01T00:00:00Z");
        EXPECT_EQ(isoUtc(header.lastModifiedTime), "1601-01-01T00:00:00Z");
        EXPECT_TRUE(header.isCutShort);
    }
}

TEST(ChromeHeader, takesStampsWithAll64Bits) {
    // The last second of 9999, the one after it, and the largest number there is.
    const std::uint64_t last = 265'046'774'399'999'999;
    EXPECT_EQ(isoUtc(chromeHeaderOf(viewOf(headerBlock(0, last))).lastModifiedTime),
              "9999-12-31T23:59:59Z");
    EXPECT_EQ(isoUtc(chromeHeaderOf(viewOf(headerBlock(1, 0))).lastRequestedTime),
              "1601-01-01T00:00:00Z");
    for (const std::uint64_t none : std::vector<std::uint64_t>{last + 1, 1ULL << 63, ~0ULL})
        EXPECT_FALSE(chromeHeaderOf(viewOf(headerBlock(0, none))).lastModifiedTime.has());
}

TEST(ChromeRanking, givesBothDates) {
    const std::string block =
        headerBlock(0, 0).substr(0, 8) + headerBlock(0, 86'400'000'000).substr(16);
    const ChromeRanking ranking = chromeRankingOf(viewOf(block));
    EXPECT_EQ(isoUtc(ranking.lastUsedTime), "1601-01-01T00:00:00Z");
    EXPECT_EQ(isoUtc(ranking.lastModifiedTime), "1601-01-02T00:00:00Z");
}

TEST(ChromeIndex, givesItsHead) {
    std::string bytes(32, '\0');
    for (std::size_t field = 0; field < 8; ++field)
        test::put32(bytes, field * 4, static_cast<std::uint32_t>(0x8000'0000 + field));
    const ChromeIndex index = chromeIndexOf(viewOf(bytes));
    EXPECT_EQ(index.magic, 0x8000'0000U);
    EXPECT_EQ(index.version, 0x8000'0001U);
    EXPECT_EQ(index.entryCount, 0x8000'0002U);
    EXPECT_EQ(index.storedDataSize, 0x8000'0003U);
    EXPECT_EQ(index.lastSeparateFileCreated, 0x8000'0004U);
    EXPECT_EQ(index.dirty, 0x8000'0005U);
    EXPECT_EQ(index.stats, 0x8000'0006U);
    EXPECT_EQ(index.addressCount, 0x8000'0007U);
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
    const ChromeDataFile file = chromeDataFileOf(viewOf(bytes));
    EXPECT_EQ(file.magic, 0xC103CAC3U);
    EXPECT_EQ(file.version, 0x10003U);
    EXPECT_EQ(file.dataFileIndex, 1);
    EXPECT_EQ(file.dataFileNextIndex, 4);
    EXPECT_EQ(file.blockSize, 256);
    EXPECT_EQ(file.entryCount, 17);
    EXPECT_EQ(file.entryCountMax, 1024);
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
    const ChromeEntry entry = chromeEntryOf(viewOf(bytes));
    EXPECT_EQ(entry.hash, 0xA101'0000U);
    EXPECT_EQ(entry.nextEntryAddress, 0xA101'0001U);
    EXPECT_EQ(entry.rankingsAddress, 0xA101'0002U);
    EXPECT_EQ(entry.keyLength, 0xA101'0003U);
    EXPECT_EQ(entry.keyAddress, 0xA101'0004U);
    EXPECT_EQ(entry.headerSize, 0xA101'0005U);
    EXPECT_EQ(entry.contentSize, 0xA101'0006U);
    EXPECT_EQ(entry.headerAddress, 0xA101'0007U);
    EXPECT_EQ(entry.contentAddress, 0xA101'0008U);
    EXPECT_EQ(entry.nextEntryAddressMap.startingBlockNumber, 1);
    EXPECT_EQ(entry.rankingsAddressMap.startingBlockNumber, 2);
    EXPECT_EQ(entry.headerAddressMap.startingBlockNumber, 7);
    EXPECT_EQ(entry.contentAddressMap.startingBlockNumber, 8);
    EXPECT_EQ(entry.keyURL, "http://host/caf\xC3\xA9"); // Windows-1252 on the disk
    EXPECT_FALSE(entry.isKeyCutShort);
}

TEST(ChromeEntry, keeps218CharactersOfItsUrl) {
    for (const std::size_t length : {1U, 217U, 218U, 219U, 220U}) {
        const std::string bytes = entryBlock(std::string(length, 'u'));
        const ChromeEntry entry = chromeEntryOf(viewOf(bytes));
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
