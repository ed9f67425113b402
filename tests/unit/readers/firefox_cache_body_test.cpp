#include "support/builders/Packed.h"
#include "unit/readers/FirefoxCacheFixture.h"

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::FirefoxCache;
using testing::IsEmpty;
using testing::SizeIs;

class FirefoxCacheBody : public test::FirefoxCacheFixture {
  protected:
    UrlRecord &only(const test::FirefoxCacheEntry &entry) {
        read(FirefoxCache().add(entry));
        EXPECT_THAT(records(), SizeIs(1));
        return records().at(0);
    }
    fs::path cachePath(std::string_view name) const { return folder.path() / "Cache" / name; }
};

TEST_F(FirefoxCacheBody, isFetchedFromEachBlockFileAndFromASeparateFile) {
    FirefoxCache cache;
    test::addExampleEntries(cache);
    read(cache);
    ASSERT_EQ(records().size(), 4u);
    EXPECT_EQ(bodyOf(records()[0]), "<html><body>Harbour</body></html>");
    EXPECT_EQ(bodyOf(records()[1]), "GIF89a" + std::string(2000, 'g'));
    EXPECT_EQ(bodyOf(records()[2]), std::string(9000, 'j'));
    EXPECT_EQ(bodyOf(records()[3]), "<html>" + std::string(30000, 'p'));
    EXPECT_TRUE(records()[1].IsPicture);
    EXPECT_EQ(records()[1].CacheFileExt, "gif");
    EXPECT_EQ(records()[3].RunTimeTempFilePath.parent_path(), scratch.path());
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheBody, isUnpacked) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = test::gzip("<html>packed")});
    EXPECT_EQ(bodyOf(record), "<html>packed");
    EXPECT_TRUE(record.GZipEncoded);
}

TEST_F(FirefoxCacheBody, mayBeEmpty) {
    EXPECT_EQ(bodyOf(only({.key = "HTTP:http://host/"})), "");
    EXPECT_EQ(bodyOf(only({.key = "HTTP:http://host/", .bodyFile = 0})), "");
}

TEST_F(FirefoxCacheBody, liesInFoldersNamedByTheHashInLaterCaches) {
    FirefoxCache cache;
    cache.add({.key = "HTTP:http://host/", .body = "deep", .hash = 0x33DED165, .bodyFile = 0});
    cache.separateFiles = {{"3/3d/ED165d01", "deep"}};
    read(cache);
    EXPECT_EQ(bodyOf(records().at(0)), "deep");
    cache.separateFiles["33DED165d01"] = "flat";
    read(cache);
    EXPECT_EQ(bodyOf(records().at(0)), "flat");
}

TEST_F(FirefoxCacheBody, thatIsGoneLeavesTheRecordAsItIs) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x", .bodyFile = 0});
    fs::remove(cachePath("A1000001d01"));
    EXPECT_EQ(bodyOf(record), "(none)");
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheBody, isNotFetchedWithoutTheMap) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x"});
    fs::remove(cachePath("_CACHE_MAP_"));
    EXPECT_EQ(bodyOf(record), "(none)");
}

TEST_F(FirefoxCacheBody, isNotFetchedWithoutItsBlockFile) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x"});
    fs::remove(cachePath("_CACHE_001_"));
    EXPECT_EQ(bodyOf(record), "(none)");
}

TEST_F(FirefoxCacheBody, isFoundWhereTheEvidenceWasMovedTo) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x"});
    const test::TempFolder elsewhere;
    fs::rename(cachePath(""), elsewhere.path() / "Cache");
    EXPECT_EQ(bodyOf(record), "(none)");
    record.RootPath = elsewhere.path().string() + "/";
    EXPECT_EQ(bodyOf(record), "x");
}

TEST_F(FirefoxCacheBody, isWhatThereIsOfALongerOne) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = std::string(100, 'x')});
    for (const std::int64_t size : {std::int64_t{0x10000}, std::int64_t{0xFFFFFFFF}}) {
        record.CacheFileSize = size;
        // The 256 bytes of its block and the 512 of the metadata after it.
        EXPECT_THAT(bodyOf(record), SizeIs(256 + 512)) << size;
    }
    UrlRecord &separate =
        only({.key = "HTTP:http://host/", .body = std::string(100, 'x'), .bodyFile = 0});
    separate.CacheFileSize = 0xFFFFFFFF;
    EXPECT_EQ(bodyOf(separate), std::string(100, 'x'));
}

TEST_F(FirefoxCacheBody, ofABlockFileHasALimit) {
    FirefoxCache cache;
    cache.add({.key = "HTTP:http://host/", .body = "x"});
    cache.blocks[1].resize(std::size_t{3} << 20);
    read(cache);
    records().at(0).CacheFileSize = 0xFFFFFFFF;
    EXPECT_THAT(bodyOf(records()[0]), SizeIs(std::size_t{1} << 20));
}

TEST_F(FirefoxCacheBody, afterTheEndOfItsBlockFileIsNone) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x"});
    for (const std::int64_t offset : {std::int64_t{0x100000}, std::int64_t{0x1000FFFFFF}, // after
                                      std::int64_t{-1}}) {
        record.DataBlockFileOffset = offset;
        EXPECT_EQ(bodyOf(record), "(none)") << offset;
    }
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(FirefoxCacheBody, neverComesFromOutsideOfTheCacheFolder) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x", .bodyFile = 0});
    folder.write("secretd01", "secret");
    const std::string outside = folder.path() / "secret";
    for (const std::string &name : {std::string("../secret"), std::string("..\\secret"), outside,
                                    std::string("/../../"), std::string("4"), std::string()}) {
        record.DataBlockFile = name;
        for (const std::int64_t offset : {0, 1}) {
            record.DataBlockFileOffset = offset;
            EXPECT_EQ(bodyOf(record), "(none)") << name;
        }
    }
    record.DataBlockFile = "secret";
    record.CacheRootPath = "Cache/..";
    record.HistoryFilePath = "secretd01";
    EXPECT_EQ(bodyOf(record), "(none)");
}

TEST_F(FirefoxCacheBody, isNotFetchedThroughALink) {
    UrlRecord &record = only({.key = "HTTP:http://host/", .body = "x", .bodyFile = 0});
    const auto secret = folder.write("secret", "secret");
    fs::remove(cachePath("A1000001d01"));
    fs::create_symlink(secret, cachePath("A1000001d01"));
    EXPECT_EQ(bodyOf(record), "(none)");
}

TEST_F(FirefoxCacheBody, isFoundBelowFoldersThatAreNoUtf8) {
    const fs::path named = folder.path() / "Profil\xE9";
    FirefoxCache cache;
    cache.add({.key = "HTTP:http://host/", .body = "x"});
    readMap(cache.writeTo(named / "Cache"));
    EXPECT_EQ(records().at(0).CacheRootPath, "Profil\u00E9/Cache");
    EXPECT_EQ(bodyOf(records()[0]), "x");
}

} // namespace
} // namespace nv
