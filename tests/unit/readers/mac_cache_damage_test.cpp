#include "support/MacCacheReading.h"
#include "support/builders/MacCache.h"

#include <gtest/gtest.h>

#include <set>

namespace nv {
namespace {

using namespace std::string_literals;
using test::MacCache;
using test::MacCacheReading;
using test::MacEntry;

MacCache twoEntries() {
    MacCache cache;
    for (const char *url : {"http://a/", "http://b/"}) {
        MacEntry entry;
        entry.url = url;
        entry.mime = "text/html";
        entry.body = "<html>";
        entry.firstVisit = entry.lastVisit = test::macTime(2001, 1, 2);
        cache.add(entry);
    }
    return cache;
}

TEST(MacCacheDamage, ofTheSizeFieldGivesNoRowsAndSaysSo) {
    MacCache cache = twoEntries();
    const std::string size = std::to_string(cache.bytes().size());
    cache.sizeField(7);
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_TRUE(reading.records().empty());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_EQ(reading.result.reason,
              "the header says that the file has 7 bytes, but it has " + size);
    EXPECT_EQ(reading.result.notReached, 2U);
}

TEST(MacCacheDamage, byACutGivesNoRowsAndSaysSo) {
    const std::string whole = twoEntries().bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const MacCacheReading reading = MacCacheReading().readBytes(whole.substr(0, length));
        ASSERT_TRUE(reading.records().empty()) << length;
        ASSERT_EQ(reading.result.state, ReadState::failed) << length;
        ASSERT_NE(reading.result.reason, "") << length;
    }
}

/// The size in the header is that of what is left.
TEST(MacCacheDamage, byACutOfTheBlocksIsTold) {
    const std::string whole = twoEntries().bytes();
    const std::size_t second = whole.find("NTRY", MacCache::kFirstBlock + 1);
    // Here a file may end: between entries, and after an opening that is empty.
    const std::set<std::size_t> sound = {MacCache::kFirstBlock, MacCache::kFirstBlock + 8, second,
                                         second + 8, whole.size()};
    std::size_t before = 0;
    for (std::size_t length = MacCache::kFirstBlock; length <= whole.size(); ++length) {
        MacCache cut;
        cut.raw(whole.substr(MacCache::kFirstBlock, length - MacCache::kFirstBlock));
        const MacCacheReading reading = MacCacheReading().readBytes(cut.bytes());
        const std::size_t now = reading.records().size();
        ASSERT_GE(now, before) << length;
        const bool told =
            reading.result.state == ReadState::cutShort || !reading.result.passedOver.empty();
        ASSERT_EQ(told, !sound.contains(length)) << length;
        before = now;
    }
    EXPECT_EQ(before, 2U);
}

TEST(MacCacheDamage, ofEachByteIsSurvived) {
    const std::string whole = twoEntries().bytes();
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(value);
            const MacCacheReading reading = MacCacheReading().readBytes(damaged);
            ASSERT_LE(reading.records().size(), 2U);
            ASSERT_TRUE(reading.result.state == ReadState::complete ||
                        !reading.result.reason.empty());
            ASSERT_TRUE(reading.log.entries.empty());
        }
}

TEST(MacCacheDamage, byALengthThatLeavesTheFileEndsTheReading) {
    for (const std::uint32_t length : {0x1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF8U}) {
        MacCache cache = twoEntries();
        const std::size_t at = cache.block("MIME", "", length);
        cache.block("NTRY", "");
        const std::string bytes = cache.bytes();
        const MacCacheReading reading = MacCacheReading().readBytes(bytes);
        EXPECT_EQ(reading.records().size(), 2U);
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_EQ(reading.result.reason, "the block at " + std::to_string(at) +
                                             " leads out of the " + std::to_string(bytes.size()) +
                                             " bytes");
        EXPECT_EQ(reading.result.notReached, 1U);
    }
}

TEST(MacCacheDamage, byLengthsOfZeroMovesOn) {
    MacCache cache;
    for (int i = 0; i < 1000; ++i)
        cache.block("DATA", "");
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.records().empty());
}

TEST(MacCacheDamage, ofTheFirstBlocksOffsetIsTold) {
    MacCache cache = twoEntries();
    cache.firstBlock(0xFFFFFFFF);
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_TRUE(reading.records().empty());
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(MacCacheReading().readBytes(MacCache().bytes()).result.state, ReadState::complete);
}

TEST(MacCacheDamage, ofAnEntrysEndKeepsTheEntryWithoutDates) {
    MacCache cache = twoEntries();
    cache.block("NTRY", "");
    cache.block("URL ", "http://c/");
    cache.block("CATE", "short");
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[2].URL, "http://c/");
    EXPECT_FALSE(reading.records()[2].ActionDateUTC.has());
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
}

TEST(MacCacheDamage, ofANumberThatIsTooShortKeepsTheCount) {
    MacCache cache;
    cache.block("NTRY", "");
    cache.block("HVRS", "12");
    cache.block("CATE", test::cateValue(0, 0, 0, 0));
    EXPECT_EQ(MacCacheReading().readBytes(cache.bytes()).records().at(0).Visits, 1);
}

TEST(MacCacheDamage, byManyBodiesWithoutAMarkerTakesNoLonger) {
    MacCache cache;
    for (int i = 0; i < 200'000; ++i)
        cache.block("DATA", "body");
    EXPECT_EQ(MacCacheReading().readBytes(cache.bytes()).result.state, ReadState::complete);
}

} // namespace
} // namespace nv
