#include "base/Files.h"
#include "support/Unprivileged.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromeCacheFixture.h"

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

struct ChromeCacheDamage : test::ChromeCacheTest {
    std::string &index() { return cache.file("index"); }
    std::string pathOf(const std::string &name) const { return textOf(folder() / name); }
    const Failure &onlyFailure() const {
        EXPECT_THAT(reading.log.entries, SizeIs(1));
        return reading.log.entries.at(0);
    }
};

TEST_F(ChromeCacheDamage, ofAnIndexShorterThanItsHeadIsTold) {
    for (const std::size_t size : {0U, 1U, 31U}) {
        index() = std::string(size, 'x');
        reading = {};
        read();
        EXPECT_EQ(reading.result.state, ReadState::failed);
        EXPECT_THAT(reading.result.reason, HasSubstr("its head alone has 32"));
        EXPECT_EQ(onlyFailure().message, reading.result.reason);
        EXPECT_EQ(onlyFailure().severity, Severity::Serious);
        EXPECT_EQ(onlyFailure().procedure, "ParserClass.ParseChromeCache()");
        EXPECT_EQ(onlyFailure().recommendation, kContactSupport);
    }
}

TEST_F(ChromeCacheDamage, ofAnIndexThatIsGoneIsTold) {
    reading.read(folder() / "index", disk.path());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_EQ(reading.result.reason, "could not be read: " + pathOf("index"));
    EXPECT_THAT(onlyFailure().message, HasSubstr("cannot open"));
    EXPECT_EQ(onlyFailure().severity, Severity::Serious);
}

TEST_F(ChromeCacheDamage, ofACutTableEndsTheWalkThere) {
    cache.add(entry("http://one/"));
    cache.word(0);
    cache.add(entry("http://two/"));
    index().resize(test::ChromeCache::kTableAt + 7);
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.reason,
              pathOf("index") + ": the table of addresses ends behind slot 1 of 32");
    EXPECT_EQ(reading.result.notReached, 1U);
    EXPECT_EQ(onlyFailure().message, reading.result.reason);
}

TEST_F(ChromeCacheDamage, ofTheCountOfSlotsIsSurvived) {
    cache.add(entry("http://one/"));
    put32(index(), 0x1C, 0x8000'0000);
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("behind slot 32 of 2147483648"));
    EXPECT_EQ(reading.result.notReached, 0U); // the one entry that the index counts is there
}

TEST_F(ChromeCacheDamage, thatHidesSlotsIsCounted) {
    for (const char *url : {"http://one/", "http://two/", "http://three/"})
        cache.add(entry(url));
    put32(index(), 0x1C, 1);
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("address behind the slots that the index counts", 2)));
}

TEST_F(ChromeCacheDamage, ofMagicVersionOrDirtyMarkIsNoMatter) {
    cache.add(entry("http://one/"));
    put32(index(), 0, 0xFFFF'FFFF);
    put32(index(), 4, 0xFFFF'FFFF);
    put32(index(), 0x14, 1);
    EXPECT_THAT(read().records(), SizeIs(1));
    put32(index(), 4, 0x20001); // the size tells that this is no later cache
    EXPECT_THAT(read().records(), SizeIs(2));
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromeCacheDamage, isNotMixedUpWithALaterCache) {
    cache.add(entry("http://one/"));
    index().insert(test::ChromeCache::kTableAt, 0x170 - test::ChromeCache::kTableAt, '\0');
    for (const std::uint32_t version : {0x20000U, 0x20001U, 0x30000U, 0x10003U}) {
        put32(index(), 4, version);
        reading = {};
        read();
        EXPECT_EQ(reading.result.state, ReadState::notReadYet);
        EXPECT_EQ(reading.result.reason, "later block cache, not read yet");
        EXPECT_EQ(reading.result.notReached, 1U);
        EXPECT_THAT(urls(), IsEmpty());
        EXPECT_EQ(onlyFailure().message, pathOf("index") + ": later block cache, not read yet");
    }
}

TEST_F(ChromeCacheDamage, byBytesAfterTheTableGoesByTheVersion) {
    cache.add(entry("http://one/"));
    index().resize(index().size() + 0x1000);
    EXPECT_THAT(read().records(), SizeIs(1));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    put32(index(), 4, 0x20001);
    EXPECT_EQ(read().result.reason, "later block cache, not read yet");
}

TEST_F(ChromeCacheDamage, ofAMissingBlockFileCostsItsEntriesAndIsLoggedOnce) {
    for (const char *url : {"http://one/", "http://two/"})
        put(cache.add(entry(url)).entry, 0x1C, 0xC003'0000);
    cache.add(entry("http://three/"));
    cache.remove("data_3");
    read();
    EXPECT_THAT(urls(), ElementsAre("http://three/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.reason, pathOf("data_3") + ": the block file is missing");
    EXPECT_EQ(reading.result.notReached, 2U);
    EXPECT_EQ(onlyFailure().message, reading.result.reason);
    EXPECT_EQ(onlyFailure().severity, Severity::Serious);
}

TEST_F(ChromeCacheDamage, ofABlockFileThatMayNotBeOpenedIsNotToldAsMissing) {
    cache.add(entry("http://one/"));
    const auto index = cache.write(folder());
    std::filesystem::permissions(folder() / "data_1", std::filesystem::perms::none);
    const test::Unprivileged nobody(disk.path());
    reading.read(index, disk.path());
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.reason, "cannot open \"" + pathOf("data_1") + "\": Permission denied");
    EXPECT_EQ(reading.result.notReached, 1U);
    EXPECT_EQ(onlyFailure().message, reading.result.reason);
    EXPECT_EQ(onlyFailure().severity, Severity::Serious);
}

TEST_F(ChromeCacheDamage, ofAllBlockFilesCostsAllEntries) {
    cache.add(entry("http://one/"));
    for (const char *name : {"data_0", "data_1", "data_2", "data_3"})
        cache.remove(name);
    read();
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 1U);
}

TEST_F(ChromeCacheDamage, ofTheFilesOfRankingsAndBodiesCostsNoRecord) {
    cache.add(entry("http://one/", std::string(2000, 'x')));
    cache.remove("data_0");
    cache.remove("data_2");
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    ASSERT_THAT(reading.log.entries, SizeIs(2));
    EXPECT_EQ(reading.log.entries[0].message, pathOf("data_0") + ": the block file is missing");
    EXPECT_EQ(reading.log.entries[1].message, pathOf("data_2") + ": the block file is missing");
}

TEST_F(ChromeCacheDamage, thatCutsAFileOfBodiesIsLogged) {
    cache.add(entry("http://one/", std::string(2000, 'x')));
    cache.file("data_2").resize(9000);
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/"));
    EXPECT_EQ(onlyFailure().message, pathOf("data_2") + ": the block file has 9000 bytes of 10240");
}

TEST_F(ChromeCacheDamage, ofAnAddressAfterTheEndOfItsFileCostsOneEntry) {
    put(cache.add(entry("http://one/")).entry, 0x1C, 0xC003'FFFF);
    cache.word(0xA001'FFFF);
    cache.add(entry("http://three/"));
    read();
    EXPECT_THAT(urls(), ElementsAre("http://three/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 2U);
    EXPECT_EQ(reading.result.reason,
              pathOf("data_3") + ": no whole header at 268439552, the file has 8192 bytes");
    ASSERT_THAT(reading.log.entries, SizeIs(2));
    EXPECT_EQ(reading.log.entries[0].message,
              pathOf("index") + ": record at 64: " + reading.result.reason);
    EXPECT_THAT(reading.log.entries[1].message, HasSubstr(": record at 68: "));
    EXPECT_THAT(reading.log.entries[1].message, HasSubstr("data_1: no whole entry at 16785152"));
}

TEST_F(ChromeCacheDamage, ofManyAddressesIsListedFiftyTimes) {
    cache = test::ChromeCache(100);
    for (int i = 0; i < 100; ++i)
        cache.word(0xA001'FFFF);
    read();
    EXPECT_EQ(reading.result.notReached, 100U);
    EXPECT_THAT(reading.log.entries, SizeIs(51));
}

TEST_F(ChromeCacheDamage, thatCutsAHeaderGivesDatesOf1601) {
    const auto place = cache.add(entry("http://one/"));
    put(place.entry, 0x1C, 0xA001'0003); // a block after the ones in use
    cache.file("data_1").resize(0x2000 + 3 * 256 + 23);
    read();
    ASSERT_THAT(reading.records(), SizeIs(1));
    EXPECT_EQ(isoUtc(reading.records()[0].ActionDateUTC), "1601-01-01T00:00:00Z");
    EXPECT_EQ(isoUtc(reading.records()[0].OtherDate), "1601-01-01T00:00:00Z");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.reason, pathOf("data_1") + ": the file ends in the header at 8960");
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("header that is cut short, its dates read as 1601-01-01", 1)));
    EXPECT_EQ(reading.log.entries.back().message, reading.result.reason);
}

TEST_F(ChromeCacheDamage, byAFileCutAtAnyByteGivesWholeUrlsOnly) {
    const std::vector<std::string> sound = {"http://one/", "http://two/"};
    for (const std::string &url : sound)
        cache.add(entry(url));
    const std::filesystem::path path = cache.write(folder());
    for (const char *name : {"index", "data_0", "data_1"}) {
        const std::string whole = cache.file(name);
        for (std::size_t size = 0; size < whole.size(); size += size < 0x2000 - 64 ? 61 : 1) {
            writeWhole(folder() / name, whole.substr(0, size));
            reading = {};
            reading.read(path, disk.path());
            for (const std::string &url : urls())
                EXPECT_THAT(sound, testing::Contains(url)) << name << size;
            EXPECT_TRUE(reading.result.state != ReadState::complete || urls().size() == 2)
                << name << size;
        }
        writeWhole(folder() / name, whole);
    }
}

TEST_F(ChromeCacheDamage, ofAnyByteOfAnEntryIsSurvived) {
    const auto place = cache.add(entry("http://one/"));
    cache.add(entry("http://two/"));
    const std::size_t at = test::ChromeCache::offsetOf(place.entry);
    std::string &bytes = cache.file("data_1");
    const std::string whole = bytes;
    for (std::size_t field = 0; field < 0x40; ++field)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            bytes[at + field] = static_cast<char>(value);
            reading = {};
            read();
            EXPECT_THAT(urls(), testing::Contains("http://two/"));
            bytes = whole;
        }
}

TEST_F(ChromeCacheDamage, isToldByFoldersThatCannotBeFiles) {
    cache.add(entry("http://one/"));
    cache.remove("data_1");
    std::filesystem::create_directories(folder() / "data_1");
    read();
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(reading.result.reason, pathOf("data_1") + ": the block file is missing");
}

} // namespace
} // namespace nv
