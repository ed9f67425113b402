#include "unit/readers/FirefoxCacheFixture.h"

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::FirefoxCache;
using test::put32be;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

class FirefoxCacheDamage : public test::FirefoxCacheFixture {
  protected:
    FirefoxCacheDamage() {
        for (int i = 1; i <= 3; ++i)
            cache.add({.key = fmt::format("HTTP:http://{}/", i), .body = "body"});
    }
    /// Writes a word over the metadata of bucket 2.
    void damageSecond(std::size_t at, std::uint32_t value) {
        put32be(cache.blocks[1], cache.metaDataOffset(2) + at, value);
    }

    FirefoxCache cache{FirefoxCache::kFirefox3, 4};
};

constexpr std::size_t kUrlSize = 0x1C;
constexpr std::size_t kHeadersSize = 0x20;

TEST_F(FirefoxCacheDamage, ofABlockAddressLosesOneRecord) {
    put32be(cache.map, FirefoxCache::placeOf(2) + 12, 0x91FFFFFF);
    read(cache);
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://3/"));
    EXPECT_EQ(passedOver("damaged record"), 1u);
    EXPECT_THAT(messages(),
                ElementsAre(HasSubstr("_CACHE_MAP_: record at 308: no metadata at 4294971136 of "
                                      "_CACHE_001_: 0 bytes of it are there")));
    EXPECT_EQ(log.entries[0].procedure, "ParserClass.ParseFirefoxCache()");
}

TEST_F(FirefoxCacheDamage, ofALengthOfAUrlLosesOneRecord) {
    for (const std::uint32_t size : {0x10000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        damageSecond(kUrlSize, size);
        read(cache);
        EXPECT_THAT(urls(), ElementsAre("http://1/", "http://3/")) << size;
        EXPECT_EQ(passedOver("damaged record"), 1u) << size;
        EXPECT_THAT(messages(), ElementsAre(HasSubstr("no whole URL at")));
    }
}

TEST_F(FirefoxCacheDamage, ofALengthOfHeadersLosesTheirEndOnly) {
    for (const std::uint32_t size : {0x10000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        damageSecond(kHeadersSize, size);
        read(cache);
        EXPECT_THAT(urls(), ElementsAre("http://1/", "http://2/", "http://3/")) << size;
        EXPECT_THAT(messages(), ElementsAre(HasSubstr("stored from headers that are longer")))
            << size;
        EXPECT_THAT(result.passedOver, IsEmpty());
        EXPECT_THAT(result.noted,
                    ElementsAre(Pair("headers that are longer than what is there", 1)));
        EXPECT_THAT(records().at(1).MetaData, testing::StartsWith("request-method GET"));
    }
}

TEST_F(FirefoxCacheDamage, ofLengthsAsksForLittleMemory) {
    damageSecond(kHeadersSize, 0xFFFFFFFF);
    cache.blocks[1].resize(std::size_t{8} << 20, 'h');
    read(cache);
    ASSERT_EQ(records().size(), 3u);
    const std::size_t headers = records()[1].MetaData.size();
    EXPECT_TRUE(headers > 60'000 && headers <= 65536) << headers;
}

TEST_F(FirefoxCacheDamage, ofHeadersThatLeadBeyondTheirBlocksIsSaid) {
    damageSecond(kHeadersSize, 600);
    read(cache);
    EXPECT_THAT(urls(), SizeIs(3));
    EXPECT_THAT(records().at(1).MetaData, SizeIs(600));
    EXPECT_THAT(messages(),
                ElementsAre(HasSubstr("record at 308: stored from headers that lead beyond")));
}

TEST_F(FirefoxCacheDamage, ofMetadataOfAnotherVersionIsSaid) {
    damageSecond(0, 0x00010009);
    read(cache);
    EXPECT_THAT(urls(), SizeIs(3));
    EXPECT_THAT(messages(), ElementsAre(HasSubstr("stored from metadata of another version")));
}

TEST_F(FirefoxCacheDamage, ofAMissingBlockFileLosesNoOthers) {
    cache.addAt(0, {.key = "HTTP:http://zero/"});
    cache.addAt(2, {.key = "HTTP:http://2/", .metaDataFile = 2});
    const fs::path map = cache.writeTo(folder.path() / "Cache");
    fs::remove(map.parent_path() / "_CACHE_002_");
    readMap(map);
    EXPECT_THAT(urls(), ElementsAre("http://1/", "http://3/"));
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_EQ(result.notReached, 1u);
    EXPECT_THAT(result.reason, HasSubstr("1 entries have their metadata in _CACHE_002_"));
    EXPECT_THAT(messages(), ElementsAre(HasSubstr("_CACHE_002_\": No such file"),
                                        HasSubstr("which can't be read")));
    EXPECT_EQ(log.entries[0].procedure, "MainBAS.OpenFirefoxCache()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
}

TEST_F(FirefoxCacheDamage, ofABlockFileThatIsALinkIsNotFollowed) {
    const fs::path map = cache.writeTo(folder.path() / "Cache");
    const fs::path block = map.parent_path() / "_CACHE_001_";
    fs::rename(block, folder.path() / "elsewhere");
    fs::create_symlink(folder.path() / "elsewhere", block);
    readMap(map);
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(result.notReached, 3u);
}

TEST_F(FirefoxCacheDamage, ofAllBlockFilesCountsEveryEntry) {
    const fs::path map = cache.writeTo(folder.path() / "Cache");
    for (const char *name : {"_CACHE_001_", "_CACHE_002_", "_CACHE_003_"})
        fs::remove(map.parent_path() / name);
    readMap(map);
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_EQ(result.notReached, 3u);
}

TEST_F(FirefoxCacheDamage, ofAMapCutAtEveryByteKeepsTheBucketsThatAreThere) {
    const fs::path map = cache.writeTo(folder.path() / "Cache");
    for (std::size_t size = 0; size < cache.map.size(); ++size) {
        writeWhole(map, cache.map.substr(0, size));
        readMap(map);
        const std::size_t buckets = size < 0x114 ? 0 : (size - 0x114) / 16;
        EXPECT_EQ(records().size(), buckets == 0 ? 0 : buckets - 1) << size;
        EXPECT_NE(result.reason, "") << size;
        EXPECT_THAT(messages(), Contains(result.reason)) << size;
        if (size < 20) {
            EXPECT_EQ(result.state, ReadState::failed) << size;
            continue;
        }
        EXPECT_EQ(result.state, ReadState::cutShort) << size;
        EXPECT_EQ(result.notReached, 4 - buckets) << size;
    }
}

TEST_F(FirefoxCacheDamage, ofAHeaderIsLogged) {
    cache.map.resize(12);
    read(cache);
    ASSERT_THAT(log.entries, SizeIs(2));
    EXPECT_EQ(log.entries[0].procedure, "mzMozillaCache.GetHeader()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
    EXPECT_THAT(result.reason, HasSubstr("ends within its header, after 12 bytes"));
}

TEST_F(FirefoxCacheDamage, ofTheCountOfBucketsIsToldByWhatCouldBeLost) {
    put32be(cache.map, 16, 0xFFFFFFFF);
    read(cache);
    EXPECT_THAT(urls(), SizeIs(3));
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_THAT(result.reason, HasSubstr("with 4 of its 4294967295 buckets"));
    EXPECT_EQ(result.notReached, 8193u - 4u);
}

// What lies after the last byte of the headers is slack.
TEST_F(FirefoxCacheDamage, ofABlockFileCutAtEveryByteIsSaid) {
    const fs::path map = cache.writeTo(folder.path() / "Cache");
    const std::size_t start = cache.metaDataOffset(3);
    const std::size_t url = start + 0x24 + sizeof "HTTP:http://3/";
    const std::size_t end = url + test::cacheHeaders("text/html").size();
    for (std::size_t size = start - 1; size <= end + 1; ++size) {
        writeWhole(map.parent_path() / "_CACHE_001_", cache.blocks[1].substr(0, size));
        readMap(map);
        EXPECT_EQ(records().size(), size < url ? 2u : 3u) << size;
        EXPECT_EQ(passedOver("damaged record"), size < url ? 1u : 0u) << size;
        EXPECT_EQ(messages().empty(), size >= end) << size;
    }
    writeWhole(map.parent_path() / "_CACHE_001_", "");
    readMap(map);
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(passedOver("damaged record"), 3u);
}

TEST_F(FirefoxCacheDamage, ofAnyByteOfTheMapIsSurvived) {
    const fs::path map = cache.writeTo(folder.path() / "Cache");
    for (std::size_t at = 0; at < cache.map.size(); at += at < 20 || at >= 0x114 ? 1 : 16)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = cache.map;
            damaged[at] = static_cast<char>(value);
            writeWhole(map, damaged);
            readMap(map);
            EXPECT_LE(records().size(), 3u) << at;
            EXPECT_TRUE(result.state == ReadState::complete || !result.reason.empty()) << at;
        }
}

TEST_F(FirefoxCacheDamage, ofTheFolderOfTheMapIsNoFault) {
    fs::create_directories(folder.path() / "Cache/_CACHE_MAP_");
    readMap(folder.path() / "Cache/_CACHE_MAP_");
    EXPECT_THAT(urls(), IsEmpty());
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_NE(result.reason, "");
}

} // namespace
} // namespace nv
