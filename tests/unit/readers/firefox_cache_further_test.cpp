#include "support/Facts.h"
#include "time/DateFormat.h"
#include "unit/readers/FirefoxCacheFixture.h"

namespace nv {
namespace {

using test::factOf;
using test::FirefoxCache;
using test::FirefoxCacheEntry;
using test::get32be;
using test::put32be;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

/// What a cache holds beyond its classic rows.
class FirefoxCacheFurther : public test::FirefoxCacheFixture {
  protected:
    FirefoxCacheFurther() { classicOnly = false; }

    static FirefoxCacheEntry entry(const std::string &host, std::uint32_t blocks = 2) {
        return {.key = "HTTP:http://" + host + "/",
                .body = "body of " + host,
                .fetchCount = 3,
                .metaDataBlocks = blocks};
    }
    /// A word of the bucket: 0 the hash number, 8 the body's location, 12 the metadata's.
    void word(std::uint32_t bucket, std::size_t at, std::uint32_t value) {
        put32be(cache.map, FirefoxCache::placeOf(bucket) + at, value);
    }
    void clear(std::uint32_t bucket) {
        for (const std::size_t at : {0U, 4U, 8U, 12U})
            word(bucket, at, 0);
    }
    std::vector<std::string> kinds() const {
        std::vector<std::string> kinds;
        for (const UrlRecord &record : sink.records)
            kinds.push_back(record.cacheType + " " + record.URL);
        return kinds;
    }

    FirefoxCache cache;
};

TEST_F(FirefoxCacheFurther, listedEntriesThatTheClassicRulesPassOverAreOfTheSameKind) {
    cache.addAt(0, entry("zero"));
    cache.addAt(1, entry("classic"));
    cache.addAt(2, entry("one-block", 1));
    read(cache);
    EXPECT_THAT(kinds(), ElementsAre("Firefox Cache http://classic/", "Firefox Cache http://zero/",
                                     "Firefox Cache http://one-block/"));
    EXPECT_THAT(result.passedOver, IsEmpty());
    EXPECT_EQ(factOf(records()[0], "classic_rule"), "-");
    EXPECT_EQ(factOf(records()[1], "classic_rule"), "bucket 0");
    EXPECT_EQ(factOf(records()[2], "classic_rule"), "metadata in one block");
    for (UrlRecord &record : records()) {
        EXPECT_EQ(record.Status, "URL");
        EXPECT_EQ(record.Visits, 3);
        record.URLID = UrlId{1};
    }
    EXPECT_EQ(records()[2].MIMEType, "text/html");
    EXPECT_EQ(bodyOf(records()[1]), "body of zero");
    EXPECT_EQ(bodyOf(records()[2]), "body of one-block");
}

TEST_F(FirefoxCacheFurther, isNoRowByTheClassicRules) {
    classicOnly = true;
    cache.addAt(0, entry("zero"));
    cache.addAt(1, entry("classic"));
    read(cache);
    ASSERT_THAT(records(), SizeIs(1));
    EXPECT_TRUE(records()[0].facts.empty());
    EXPECT_THAT(result.passedOver, ElementsAre(Pair("bucket 0", 1)));
}

TEST_F(FirefoxCacheFurther, entriesTellWhenTheyEnd) {
    FirefoxCacheEntry ends = entry("ends");
    ends.expires = 1300000000;
    cache.add(ends).add(entry("never"));
    ends.metaDataBlocks = 1;
    cache.add(ends);
    read(cache);
    EXPECT_EQ(factOf(records().at(0), "expires"), "2011-03-13 07:06:40");
    EXPECT_FALSE(records()[0].ExpiryDate.has()); // the classic row stays
    EXPECT_EQ(factOf(records()[1], "expires"), "-");
    EXPECT_EQ(isoUtc(records()[2].ExpiryDate), "2011-03-13T07:06:40Z");
}

TEST_F(FirefoxCacheFurther, anEntryWithoutABodyIsARowWithoutOne) {
    cache.add(entry("bare"));
    word(1, 8, 0);
    read(cache);
    ASSERT_THAT(kinds(), ElementsAre("Firefox Cache http://bare/"));
    EXPECT_FALSE(records()[0].CacheFileExists);
    EXPECT_EQ(records()[0].DataBlockFile, "");
    records()[0].URLID = UrlId{1};
    EXPECT_EQ(bodyOf(records()[0]), "(none)");
}

TEST_F(FirefoxCacheFurther, metadataOfNoBucketAreRecovered) {
    cache.add(entry("listed")).add(entry("deleted"));
    const std::size_t at = cache.metaDataOffset(2);
    clear(2);
    read(cache);
    EXPECT_THAT(kinds(), ElementsAre("Firefox Cache http://listed/",
                                     "Firefox Cache Remnant http://deleted/"));
    const UrlRecord &remnant = records()[1];
    EXPECT_EQ(remnant.Status, "Recovered");
    EXPECT_EQ(remnant.Visits, kVisitsUnknown);
    EXPECT_EQ(factOf(remnant, "count"), "3");
    EXPECT_EQ(isoUtc(remnant.ActionDateUTC), "2011-03-13T07:06:40Z");
    EXPECT_THAT(remnant.MetaData, HasSubstr("HTTP/1.1 200 OK"));
    EXPECT_EQ(remnant.MIMEType, "text/html");
    EXPECT_EQ(
        factOf(remnant, "recovered_from"),
        fmt::format("metadata in block {} of _CACHE_001_ (0x{:X}), which no bucket of the map "
                    "leads to, free by the file's map of blocks",
                    (at - 0x1000) / 0x100, at));
    EXPECT_EQ(factOf(remnant, "source_offset"), std::to_string(at));
    EXPECT_EQ(factOf(remnant, "body"), "none: only the map knew where it was");
    EXPECT_FALSE(remnant.CacheFileExists);
    EXPECT_THAT(result.passedOver, IsEmpty());
}

TEST_F(FirefoxCacheFurther, aBucketWithoutHashNumberKeepsItsBodyWhileNobodyElseHasIt) {
    cache.add(entry("listed")).add(entry("deleted")).add(entry("reused"));
    word(2, 0, 0);
    word(3, 0, 0);
    word(3, 8, get32be(cache.map, FirefoxCache::placeOf(1) + 8));
    read(cache);
    EXPECT_THAT(kinds(),
                ElementsAre("Firefox Cache http://listed/", "Firefox Cache Remnant http://deleted/",
                            "Firefox Cache Remnant http://reused/"));
    for (UrlRecord &record : records())
        record.URLID = UrlId{1};
    EXPECT_THAT(factOf(records()[1], "recovered_from"),
                StartsWith("bucket without a hash number at 0x"));
    EXPECT_THAT(factOf(records()[1], "body"), StartsWith("its blocks are no listed entry's"));
    EXPECT_EQ(bodyOf(records()[1]), "body of deleted");
    EXPECT_EQ(factOf(records()[2], "body"), "none: its blocks are a listed entry's");
    EXPECT_EQ(bodyOf(records()[2]), "(none)");
}

TEST_F(FirefoxCacheFurther, aBucketThatTheBrowserMovedIsNoSecondRecord) {
    cache.add(entry("moved")).add(entry("old-place"));
    word(2, 0, 0);
    word(2, 12, cache.metaDataLocation(1));
    read(cache);
    EXPECT_THAT(kinds(), ElementsAre("Firefox Cache http://moved/",
                                     "Firefox Cache Remnant http://old-place/"));
    EXPECT_THAT(
        result.passedOver,
        ElementsAre(Pair("bucket without a hash number, whose entry another bucket has", 1)));
}

TEST_F(FirefoxCacheFurther, bucketsAfterTheLastOneAreListedWhenTheMapCountsThem) {
    FirefoxCache large(FirefoxCache::kFirefox3, 8200);
    large.addAt(8193, entry("counted"));
    large.addAt(8199, entry("not-counted"));
    put32be(large.map, 16, 8195);
    read(large);
    EXPECT_THAT(kinds(), ElementsAre("Firefox Cache http://counted/",
                                     "Firefox Cache Remnant http://not-counted/"));
    EXPECT_EQ(factOf(records()[0], "classic_rule"), "bucket behind bucket 8192");
}

TEST_F(FirefoxCacheFurther, whatStandsInBlocksOfAListedEntryIsNoRemnant) {
    cache.add(entry("listed", 4)).add(entry("deleted"));
    const std::string stale = cache.blocks[1].substr(cache.metaDataOffset(2), 0x100);
    clear(2);
    cache.blocks[1].replace(cache.metaDataOffset(1) + 0x200, stale.size(), stale);
    read(cache);
    EXPECT_THAT(records(), SizeIs(2));
    EXPECT_THAT(result.passedOver,
                ElementsAre(Pair("metadata within the blocks of a listed entry", 1)));
}

TEST_F(FirefoxCacheFurther, aRemnantEndsWhereAListedEntryBegins) {
    FirefoxCacheEntry large = entry("deleted");
    large.headers = std::string(600, 'h');
    large.metaDataFile = 1;
    cache.add(large).add(entry("listed"));
    const std::size_t first = (cache.metaDataOffset(1) - 0x1000) / 0x100;
    clear(1);
    const std::string listed = cache.blocks[1].substr(cache.metaDataOffset(2), 0x200);
    word(2, 12, 0x91000000 | static_cast<std::uint32_t>(first + 1));
    cache.blocks[1].replace(0x1000 + (first + 1) * 0x100, listed.size(), listed);
    read(cache);
    ASSERT_FALSE(records().empty());
    const auto remnant = std::ranges::find(records(), "http://deleted/", &UrlRecord::URL);
    ASSERT_NE(remnant, records().end());
    EXPECT_THAT(factOf(*remnant, "recovered_from"),
                HasSubstr("; 1 of its 3 blocks are left, the others hold something else"));
    EXPECT_EQ(remnant->MetaData, std::string(0x100 - 0x24 - 21, 'h')); // the key has 21 bytes
}

TEST_F(FirefoxCacheFurther, lengthsAndKeysThatCannotBeAreNoRemnants) {
    cache.add(entry("listed"));
    for (int i = 0; i < 5; ++i)
        cache.add(entry(fmt::format("odd{}", i)));
    const auto field = [this](std::uint32_t bucket, std::size_t at, std::uint32_t value) {
        put32be(cache.blocks[1], cache.metaDataOffset(bucket) + at, value);
    };
    field(2, 0x1C, 0xFFFFFFFF); // URL
    field(3, 0x20, 0xFFFFFFFF); // headers
    field(4, 0x1C, 0);
    field(5, 0x1C, 5);       // a key without its zero
    field(6, 0, 0x00010008); // another version
    for (const std::uint32_t bucket : {2U, 3U, 4U, 5U, 6U})
        clear(bucket);
    read(cache);
    EXPECT_THAT(kinds(), ElementsAre("Firefox Cache http://listed/"));
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheFurther, damagedLocationsLeadNowhere) {
    cache.addAt(0, entry("zero"));
    cache.add(entry("listed"));
    word(0, 12, 0x90FFFFFF);
    word(0, 8, 0x93FFFFFF);
    read(cache);
    EXPECT_THAT(kinds(),
                ElementsAre("Firefox Cache http://listed/", "Firefox Cache Remnant http://zero/"));
    EXPECT_THAT(result.passedOver, ElementsAre(Pair("damaged record", 1)));
}

TEST_F(FirefoxCacheFurther, isCancelledAmidTheRemnants) {
    cache.add(entry("listed")).add(entry("deleted"));
    clear(2);
    const auto map = cache.writeTo(folder.path() / "Cache");
    test::MemoryTask counting;
    readMap(map, counting);
    EXPECT_TRUE(std::is_sorted(counting.fractions.begin(), counting.fractions.end()));
    EXPECT_LE(counting.fractions.back(), 1.0);
    test::CancelAfter patience(static_cast<int>(counting.fractions.size()) - 1);
    readMap(map, patience);
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_THAT(records(), SizeIs(1));
}

} // namespace
} // namespace nv
