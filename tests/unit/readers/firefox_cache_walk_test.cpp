#include "readers/firefox/cache/Cache.h"
#include "unit/readers/FirefoxCacheFixture.h"

namespace nv {
namespace {

using namespace std::string_literals;
using test::FirefoxCache;
using test::put32be;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class FirefoxCacheWalk : public test::FirefoxCacheFixture {
  protected:
    /// Entries "http://1/", "http://2/" and so on in buckets 1, 2...
    static FirefoxCache cacheOf(int entries, std::uint32_t version = FirefoxCache::kFirefox3,
                                std::uint32_t buckets = 16) {
        FirefoxCache cache(version, buckets);
        for (int i = 1; i <= entries; ++i)
            cache.add({.key = fmt::format("HTTP:http://{}/", i)});
        return cache;
    }
};

TEST(MozillaCacheBits, workOnWordsOf32BitsHeldIn64) {
    using Cache = MozillaCache;
    EXPECT_EQ(Cache::andLong(0xF0F0F0F0, 0x80000000), 0x80000000);
    EXPECT_EQ(Cache::andLong(-1, 0xFFFFFFFF), 0xFFFFFFFF);
    EXPECT_EQ(Cache::andLong(0x1FFFFFFFF, 0x100000001), 1);
    EXPECT_EQ(Cache::lShiftLong(0x100, 4), 0x1000);
    EXPECT_EQ(Cache::lShiftLong(0x100, -2), 64);
    EXPECT_EQ(Cache::lShiftLong(0xFFFFFFFF, 8), 0xFFFFFFFF00);
    EXPECT_EQ(Cache::rShiftLong(0xB0000000, 28), 11);
    EXPECT_EQ(Cache::rShiftLong(-5, 1), -3);
    EXPECT_EQ(Cache::rShiftLong(-1, 200), -1);
}

TEST_F(FirefoxCacheWalk, takesLocationsApart) {
    CacheBucket bucket;
    EXPECT_FALSE(MozillaCache::getBucketData(bucket));
    bucket.dataLocation = 0x73000060;
    EXPECT_FALSE(MozillaCache::getBucketData(bucket)); // the bit of a valid location is missing
    bucket.dataLocation = 0xB3FFFFFF;
    const auto info = MozillaCache::getBucketData(bucket);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->cacheBlockFileNumber, 3);
    EXPECT_EQ(info->numContBlocks, 3);
    EXPECT_EQ(info->startBlock, 0xFFFFFF);
    EXPECT_EQ(info->blockSize, 4096);
    const CacheRecordData data = MozillaCache::getRecordData(*info);
    EXPECT_EQ(data.fileOffsetBOF, 0x1000 + 0xFFFFFFll * 4096);
    EXPECT_EQ(data.fileOffsetEOF, data.fileOffsetBOF + 3 * 4096);
}

TEST_F(FirefoxCacheWalk, readsBytesAndWordsOfAnOpenFile) {
    const EvidenceFile words = Evidence({}).open(folder.write("words", "\x80\x00\x01\x0B\xFF"s));
    EXPECT_EQ(MozillaCache::getNextByte(4, words), 0xFF);
    EXPECT_EQ(MozillaCache::getNextDWord(0, words), 0x8000010B);
    EXPECT_EQ(MozillaCache::getNextDWordAsHex(0, words), "8000010B");
    EXPECT_THROW(MozillaCache::getNextDWord(2, words), OutOfBytes);
}

TEST_F(FirefoxCacheWalk, readsBothVersionsInTheOrderOfTheMap) {
    read(cacheOf(3, FirefoxCache::kFirefox2));
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://2/", "http://3/"));
    EXPECT_EQ(file.version, "2.0");
    read(cacheOf(2));
    EXPECT_EQ(file.version, "3.0");
    EXPECT_EQ(records().size(), 2u);
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheWalk, isNoReadingOfALaterVersion) {
    read(cacheOf(2, 0x00010013));
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(result.state, ReadState::notReadYet);
    EXPECT_THAT(result.reason, HasSubstr("version 00010013, later than Firefox 3's (0001000B)"));
    EXPECT_THAT(result.reason, HasSubstr("holds 2 entries"));
    EXPECT_EQ(result.notReached, 2u);
    EXPECT_THAT(messages(), ElementsAre(result.reason));
}

TEST_F(FirefoxCacheWalk, believesTheHeaderOfALaterMapThatEndsEarly) {
    FirefoxCache cache = cacheOf(3, 0x00010013);
    cache.map.resize(0x114);
    read(cache);
    EXPECT_EQ(result.notReached, 3u);
    test::put32be(cache.map, 8, 0xFFFFFFFF);
    read(cache);
    EXPECT_EQ(result.notReached, 0x10000u) << "no count of a hostile map is taken as it is";
}

TEST_F(FirefoxCacheWalk, isNoReadingOfAnyOtherVersion) {
    for (const std::uint32_t version : {0x00010007u, 0x00010009u, 0x0001000Au, 0x00020000u, 0u}) {
        read(cacheOf(2, version));
        EXPECT_THAT(urls(), IsEmpty()) << version;
        EXPECT_EQ(result.state, ReadState::failed) << version;
        EXPECT_NE(result.reason, "") << version;
    }
}

TEST_F(FirefoxCacheWalk, listsAnEmptyCache) {
    read(FirefoxCache());
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(result.passedOver, IsEmpty());
    EXPECT_EQ(task.headings.back().subject, "A total of 0 URLs were found.");
}

TEST_F(FirefoxCacheWalk, neverListsBucketZeroButCountsIt) {
    FirefoxCache cache = cacheOf(1);
    cache.addAt(0, {.key = "HTTP:http://zero/"});
    read(cache);
    EXPECT_THAT(urls(), ElementsAre("http://1/"));
    EXPECT_THAT(result.passedOver, ElementsAre(Pair("bucket 0", 1)));
}

TEST_F(FirefoxCacheWalk, listsTheBuckets1To8192AndCountsThoseAfter) {
    FirefoxCache cache(FirefoxCache::kFirefox3, 8200);
    for (const std::uint32_t bucket : {1u, 8191u, 8192u, 8193u, 8199u})
        cache.addAt(bucket, {.key = fmt::format("HTTP:http://{}/", bucket)});
    read(cache);
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://8191/", "http://8192/"));
    EXPECT_THAT(result.passedOver, ElementsAre(Pair("bucket behind bucket 8192", 2)));
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(FirefoxCacheWalk, passesOverAndCountsWhatItsRulesLeaveOut) {
    FirefoxCache cache = cacheOf(7);
    cache.addAt(8, {.key = "HTTP:http://short/", .metaDataBlocks = 1});
    const auto word = [&cache](std::uint32_t bucket, std::size_t at, std::uint32_t value) {
        put32be(cache.map, FirefoxCache::placeOf(bucket) + at, value);
    };
    word(2, 0, 0);           // no hash number
    word(3, 8, 0);           // no body
    word(4, 12, 0);          // no metadata
    word(5, 12, 0x80000101); // metadata in a separate file
    word(6, 12, 0x83000101); // the same, with bits that only block files have
    read(cache);
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://7/"));
    EXPECT_THAT(result.passedOver, UnorderedElementsAre(Pair("bucket without a hash number", 1),
                                                        Pair("entry without a body", 1),
                                                        Pair("entry without metadata", 1),
                                                        Pair("metadata in a separate file", 2),
                                                        Pair("metadata in one block", 1)));
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheWalk, asksForTheValidBitOfTheBodyOnly) {
    FirefoxCache cache = cacheOf(1);
    put32be(cache.map, FirefoxCache::placeOf(1) + 12, cache.metaDataLocation(1) & 0x7FFFFFFF);
    read(cache);
    EXPECT_THAT(urls(), ElementsAre("http://1/"));
}

TEST_F(FirefoxCacheWalk, readsMetadataFromEachBlockFile) {
    FirefoxCache cache;
    for (const int blockFile : {1, 2, 3})
        cache.add({.key = fmt::format("HTTP:http://{}/", blockFile), .metaDataFile = blockFile});
    read(cache);
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://2/", "http://3/"));
}

TEST_F(FirefoxCacheWalk, findsBlockFilesInAnyCase) {
    const auto map = cacheOf(1).writeTo(folder.path() / "Cache");
    std::filesystem::rename(map.parent_path() / "_CACHE_001_", map.parent_path() / "_cache_001_");
    readMap(map);
    EXPECT_THAT(urls(), ElementsAre("http://1/"));
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheWalk, showsWhatItDoes) {
    read(cacheOf(2));
    ASSERT_EQ(task.headings.size(), 2u);
    for (const TaskHeading &heading : task.headings) {
        EXPECT_EQ(heading.title, "PARSING MOZILLA FIREFOX CACHE");
        EXPECT_EQ(heading.icon, "firefox-32.gif");
    }
    EXPECT_EQ(task.headings[0].subject, "Reading MAP File...");
    EXPECT_EQ(task.headings[0].detail, folder.path() / "Cache/_CACHE_MAP_");
    EXPECT_EQ(task.headings[1].subject, "A total of 2 URLs were found.");
    EXPECT_EQ(task.headings[1].detail, "");
    std::vector<std::string> steps;
    for (const TaskStep &step : task.steps)
        if (step.topCounter <= 2)
            steps.push_back(step.topMessage + "|" + step.bottomMessage);
    EXPECT_THAT(steps,
                ElementsAre("MAP bucket 1 of 8192|", "MAP bucket 2 of 8192|",
                            "Record 1 of 2|http://1/", "Record 2 of 2|http://2/", "All done.|"));
    EXPECT_TRUE(std::is_sorted(task.fractions.begin(), task.fractions.end()));
    EXPECT_DOUBLE_EQ(task.fractions.back(), 1);
}

TEST_F(FirefoxCacheWalk, endsWhenCancelledAndKeepsWhatIsStored) {
    const auto map = cacheOf(5).writeTo(folder.path() / "Cache");
    test::CancelAfter amidTheMap(3);
    readMap(map, amidTheMap);
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_THAT(urls(), IsEmpty());
    test::CancelAfter behindTwoRecords(16 + 2); // 15 buckets, the map's end, two records
    readMap(map, behindTwoRecords);
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://2/"));
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheWalk, keepsNoMetadataInItsCollection) {
    const auto map = cacheOf(2).writeTo(folder.path() / "Cache");
    const Evidence evidence(base);
    MozillaCache cache(log);
    ASSERT_TRUE(openFirefoxCache(cache, map, evidence, log));
    EXPECT_TRUE(cache.openCache);
    ASSERT_TRUE(cache.readCache(file, task, result));
    ASSERT_EQ(cache.cacheRecords.count(), 2u);
    const CacheRecord &record = cache.cacheRecords.item(2);
    EXPECT_EQ(record.bucket.hashNumberAsHex, "A1000002");
    EXPECT_EQ(record.bucket.hashNumber, 0xA1000002);
    EXPECT_EQ(record.bucket.evictionRank, 0x7FFFFFFD);
    EXPECT_EQ(record.header.recordCount, 16);
    EXPECT_EQ(record.header.entryCount, 2);
    EXPECT_FALSE(record.recordMetaData);
    const auto metaData = cache.getRecordMetaData(record.bucketMetaData);
    ASSERT_TRUE(metaData);
    EXPECT_EQ(metaData->expirationTime, Date::fromCivil({2106, 2, 7, 6, 28, 15}));
    EXPECT_EQ(metaData->metaLocation, record.bucket.metaDataLocation);
    EXPECT_EQ(cache.getFileHandle(0), nullptr);
    EXPECT_EQ(cache.getFileHandle(4), nullptr);
}

/// Tries to read the same cache anew from within a reading.
struct ReentrantTask final : TaskMonitor {
    MozillaCache *cache = nullptr;
    HistoryFile *file = nullptr;
    int refused = 0;
    void describe(const TaskHeading &) override {}
    bool advance(double) override {
        ReadResult none;
        refused += cache->readCache(*file, *this, none) ? 0 : 1;
        return true;
    }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
};

TEST_F(FirefoxCacheWalk, isNotBegunTwiceAtATime) {
    const auto map = cacheOf(2).writeTo(folder.path() / "Cache");
    const Evidence evidence(base);
    MozillaCache cache(log);
    ASSERT_TRUE(openFirefoxCache(cache, map, evidence, log));
    ReentrantTask reentrant;
    reentrant.cache = &cache;
    reentrant.file = &file;
    EXPECT_TRUE(cache.readCache(file, reentrant, result));
    EXPECT_GT(reentrant.refused, 1);
    EXPECT_EQ(cache.cacheRecords.count(), 2u);
    EXPECT_FALSE(cache.isReading);
}

TEST_F(FirefoxCacheWalk, isNotOpenedWithoutAMap) {
    const Evidence evidence(base);
    MozillaCache cache(log);
    EXPECT_FALSE(openFirefoxCache(cache, folder.path() / "_CACHE_MAP_", evidence, log));
    EXPECT_FALSE(cache.openCache);
    EXPECT_THAT(messages(), IsEmpty());
    readMap(folder.path() / "_CACHE_MAP_");
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_THAT(result.reason, StartsWith("could not be opened: "));
}

} // namespace
} // namespace nv
