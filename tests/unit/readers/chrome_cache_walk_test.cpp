#include "base/Files.h"
#include "readers/chrome/cache/BlockCache.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromeCacheFixture.h"

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

using ChromeCacheWalk = test::ChromeCacheTest;
using Words = std::vector<std::uint32_t>;

TEST_F(ChromeCacheWalk, takesTheSlotsInTheirOrder) {
    cache.add(entry("http://one/"));
    cache.word(0).word(0);
    cache.add(entry("http://two/"));
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/", "http://two/"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.result.reason, "");
    EXPECT_EQ(reading.result.notReached, 0U);
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST_F(ChromeCacheWalk, showsWhatItDoes) {
    cache.add(entry("http://one/"));
    read();
    const std::string path = textOf(folder() / "index");
    ASSERT_THAT(reading.task.headings, SizeIs(2));
    EXPECT_EQ(reading.task.headings[0].title, "PARSING GOOGLE CHROME CACHE");
    EXPECT_EQ(reading.task.headings[0].subject, "Reading INDEX File...");
    EXPECT_EQ(reading.task.headings[0].detail, path);
    EXPECT_EQ(reading.task.headings[0].icon, "chrome-32.gif");
    EXPECT_EQ(reading.task.headings[1].title, "PARSING GOOGLE CHROME CACHE");
    EXPECT_EQ(reading.task.headings[1].subject, "A total of 1 URLs were found.");
    EXPECT_EQ(reading.task.headings[1].icon, "chromeCache-32.gif");
    ASSERT_THAT(reading.task.steps, SizeIs(1 + 1 + 31 + 1 + 1));
    EXPECT_EQ(reading.task.steps[0].topMessage, "MAP bucket 1 of 32");
    EXPECT_EQ(reading.task.steps[0].topTotal, 32);
    EXPECT_EQ(reading.task.steps[1].bottomMessage, "Record 1 of 1 http://one/");
    EXPECT_EQ(reading.task.steps[33].topMessage, "MAP bucket 32 of 32");
    EXPECT_EQ(reading.task.steps[34].topMessage, "All done.");
}

TEST_F(ChromeCacheWalk, takesTheFirstEntryOfASlotAndCountsTheOthers) {
    const auto first = cache.add(entry("http://first/"));
    const auto second = cache.addBehind(first.entry, entry("http://second/"));
    cache.addBehind(second.entry, entry("http://third/"));
    read();
    EXPECT_THAT(urls(), ElementsAre("http://first/"));
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("entry that shares a slot with the one before it", 2)));
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromeCacheWalk, countsEachEntryOfChainsOnce) {
    const auto one = cache.add(entry("http://one/"));
    const auto two = cache.add(entry("http://two/"));
    const auto behind = cache.addBehind(one.entry, entry("http://behind/"));
    put(two.entry, 4, behind.entry);    // two chains meet
    put(behind.entry, 4, behind.entry); // and go round
    read();
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("entry that shares a slot with the one before it", 1)));
}

TEST_F(ChromeCacheWalk, doesNotCountEntriesOfChainsThatHaveASlot) {
    const auto one = cache.add(entry("http://one/"));
    const auto two = cache.add(entry("http://two/"));
    put(one.entry, 4, two.entry);
    put(two.entry, 4, one.entry);
    read();
    EXPECT_THAT(urls(), SizeIs(2));
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
}

TEST_F(ChromeCacheWalk, endsAChainThatLeadsOutOfTheFile) {
    const auto one = cache.add(entry("http://one/"));
    put(one.entry, 4, 0xA001'FFFF);
    const auto two = cache.add(entry("http://two/"));
    put(two.entry, 4, 0x8000'0001); // a separate file is no entry
    const auto three = cache.add(entry("http://three/"));
    put(three.entry, 4, 0x2001'0001); // not in use
    read();
    EXPECT_THAT(urls(), SizeIs(3));
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("entry that shares a slot with the one before it", 1)));
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST_F(ChromeCacheWalk, passesOverEntriesWithoutAHeader) {
    test::ChromeCacheEntry bare = entry("http://bare/");
    bare.hasHeader = false;
    const auto place = cache.add(bare);
    cache.addBehind(place.entry, entry("http://behind/"));
    const auto separate = cache.add(entry("http://separate/"));
    put(separate.entry, 0x1C, 0x8000'0001);
    const auto odd = cache.add(entry("http://odd/"));
    put(odd.entry, 0x1C, 0xD001'0000);
    read();
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("entry that shares a slot with the one before it", 1),
                            Pair("entry without a header", 3)));
}

TEST_F(ChromeCacheWalk, readsAHeaderWhoseAddressIsNotMarkedAsInUse) {
    const auto place = cache.add(entry("http://host/"));
    put(place.entry, 0x1C, place.header & 0x7FFF'FFFF);
    EXPECT_THAT(read().records(), SizeIs(1));
}

TEST_F(ChromeCacheWalk, passesOverSlotsThatLeadToNoEntry) {
    for (const std::uint32_t word : Words{0x2001'0001, 0x0000'0001, 0x7FFF'FFFF})
        cache.word(word);
    for (const std::uint32_t word : Words{0x8000'0000, 0x8000'0001, 0xF001'0001})
        cache.word(word);
    cache.add(entry("http://host/"));
    read();
    EXPECT_THAT(urls(), ElementsAre("http://host/"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("slot that leads to no block file", 3),
                            Pair("slot with a word that is no address", 3)));
}

TEST_F(ChromeCacheWalk, stopsWhenCancelled) {
    for (const char *url : {"http://one/", "http://two/", "http://three/"})
        cache.add(entry(url));
    test::CancelAfter task(1);
    reading.read(cache.write(folder()), disk.path(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
}

TEST_F(ChromeCacheWalk, canBeCancelledWhileItCountsChains) {
    const auto one = cache.add(entry("http://one/"));
    cache.addBehind(one.entry, entry("http://behind/"));
    test::CancelAfter task(32);
    reading.read(cache.write(folder()), disk.path(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
}

/// The class as others than the reader may use it.
struct ChromeCacheClassTest : test::ChromeCacheTest {
    test::MemoryLog log;
    Unwatched task;
    std::optional<Evidence> evidence;

    ChromeBlockCache opened() {
        return {cache.write(folder()), evidence.emplace(disk.path()), log, task};
    }
};

TEST_F(ChromeCacheClassTest, keepsItsEntriesWhenAskedTo) {
    const auto place = cache.add(entry("http://one/", "the body"));
    cache.add(entry("http://two/"));
    ChromeBlockCache reader = opened();
    EXPECT_EQ(reader.readCache().state, ReadState::complete);
    EXPECT_EQ(reader.readCache().state, ReadState::complete); // empties them first
    ASSERT_EQ(reader.entries.count(), 2U);
    const ChromeEntry &first = reader.entries.item(1);
    EXPECT_EQ(first.keyURL, "http://one/");
    EXPECT_EQ(first.addressMap.address, place.entry);
    EXPECT_EQ(first.mapFileOffset, test::ChromeCache::offsetOf(place.entry));
    ASSERT_TRUE(first.headerObject);
    ASSERT_TRUE(first.rankingObject);
    EXPECT_EQ(isoUtc(first.headerObject->lastModifiedTime), "2011-06-15T12:01:00Z");
    EXPECT_EQ(isoUtc(first.rankingObject->lastModifiedTime), "2011-06-15T12:01:01Z");
    EXPECT_EQ(reader.indexInfo.addressCount, 32U);
    EXPECT_EQ(reader.indexInfo.entryCount, 2U);
    EXPECT_EQ(reader.cacheError, "");
    EXPECT_FALSE(reader.isReading);
}

TEST_F(ChromeCacheClassTest, givesNothingForAddressesThatNameNoBlock) {
    ChromeBlockCache reader = opened();
    EXPECT_FALSE(ChromeBlockCache::getAddressMap(0));
    for (const std::uint32_t word : Words{0x8000'0000, 0xD001'0000, 0xA001'0005, 0xA009'0000}) {
        const auto map = ChromeBlockCache::getAddressMap(word);
        ASSERT_TRUE(map);
        EXPECT_FALSE(reader.getEntry(*map));
        EXPECT_FALSE(reader.getHeaderObject(*map));
        EXPECT_FALSE(reader.getRankingObject(*map));
    }
    ASSERT_THAT(log.entries, SizeIs(1)); // of data_9, once
    EXPECT_THAT(log.entries[0].message, HasSubstr("data_9: the block file is missing"));
}

TEST_F(ChromeCacheClassTest, isNotReadTwiceAtOnce) {
    cache.add(entry("http://one/"));
    ChromeBlockCache reader = opened();
    ReadResult second;
    const ReadResult first = reader.readCache([&](const ChromeEntry &) {
        EXPECT_TRUE(reader.isReading);
        second = reader.readCache();
        EXPECT_TRUE(reader.isReading);
    });
    EXPECT_EQ(first.state, ReadState::complete);
    EXPECT_EQ(second.state, ReadState::failed);
    EXPECT_FALSE(reader.isReading);
}

TEST_F(ChromeCacheClassTest, stopsWhenReadingIsClearedFromOutside) {
    cache.add(entry("http://one/"));
    cache.add(entry("http://two/"));
    ChromeBlockCache reader = opened();
    int taken = 0;
    const ReadResult result = reader.readCache([&](const ChromeEntry &) {
        ++taken;
        reader.isReading = false;
    });
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_EQ(taken, 1);
}

} // namespace
} // namespace nv
