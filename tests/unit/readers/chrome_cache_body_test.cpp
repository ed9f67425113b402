#include "base/Files.h"
#include "readers/Registry.h"
#include "readers/chrome/cache/CacheBody.h"
#include "support/builders/Packed.h"
#include "unit/readers/ChromeCacheFixture.h"

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

/// Reads the first record of a cache and fetches its body, as from a stored row.
struct ChromeCacheBody : test::ChromeCacheTest {
    test::TempFolder scratch;
    test::MemoryLog log;
    UrlRecord record;

    bool fetchBelow(const fs::path &base) {
        const Evidence evidence(base);
        record.RunTimeTempFilePath.clear();
        return contentOf(record, {evidence, scratch.path(), log, HistoryFileType::chromeCache})
            .has_value();
    }
    bool fetch() { return fetchBelow(disk.path()); }
    void add(const std::string &body) {
        cache.add(entry("http://host.example/", body));
        read();
        record = reading.records().at(0);
    }
    std::string content() const {
        const Bytes bytes = readWhole(record.RunTimeTempFilePath);
        return {bytes.begin(), bytes.end()};
    }
};

TEST_F(ChromeCacheBody, comesOutOfItsBlocks) {
    add("the body");
    ASSERT_TRUE(fetch());
    EXPECT_EQ(content(), "the body");
    EXPECT_EQ(record.RunTimeTempFilePath.parent_path(), scratch.path());
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_FALSE(record.GZipEncoded);
    EXPECT_THAT(log.entries, IsEmpty());
}

TEST_F(ChromeCacheBody, ofEachSizeComesOutWhole) {
    for (const std::size_t size : {1U, 1024U, 1025U, 4096U, 4097U, 16384U, 16385U, 100'000U})
        cache.add(entry("http://host.example/", std::string(size, static_cast<char>(size))));
    read();
    for (const UrlRecord &each : reading.records()) {
        record = each;
        ASSERT_TRUE(fetch()) << each.CacheFileSize;
        EXPECT_EQ(content(), std::string(static_cast<std::size_t>(each.CacheFileSize),
                                         static_cast<char>(each.CacheFileSize)));
    }
}

TEST_F(ChromeCacheBody, isFoundWhateverTheCaseOfItsFile) {
    add(std::string(20000, 'x'));
    fs::rename(folder() / "f_000001", folder() / "F_000001");
    ASSERT_TRUE(fetch());
    EXPECT_EQ(content().size(), 20000U);
}

TEST_F(ChromeCacheBody, isUnpacked) {
    add(test::gzip("<html><body>page"));
    ASSERT_TRUE(fetch());
    EXPECT_EQ(content(), "<html><body>page");
    EXPECT_TRUE(record.GZipEncoded);
}

TEST_F(ChromeCacheBody, thatIsAPictureIsKnownAsOne) {
    add("GIF89a" + std::string(20, '\1'));
    ASSERT_TRUE(fetch());
    EXPECT_TRUE(record.IsPicture);
    EXPECT_EQ(record.CacheFileExt, "gif");
}

TEST_F(ChromeCacheBody, longerThanItsFileGivesWhatIsThere) {
    add("the body");
    record.CacheFileSize = 0xFFFF'FFFF;
    ASSERT_TRUE(fetch());
    EXPECT_EQ(content().size(), 512U); // its block, and the one of the entry after it
}

TEST_F(ChromeCacheBody, afterTheEndOfItsFileIsNone) {
    add("the body");
    record.DataBlockFileOffset = 1LL << 40;
    EXPECT_FALSE(fetch());
    EXPECT_TRUE(record.RunTimeTempFilePath.empty());
    EXPECT_THAT(log.entries, IsEmpty());
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(ChromeCacheBody, ofAnEntryWithoutOneIsNone) {
    test::ChromeCacheEntry none = entry("http://host.example/", "");
    none.where = test::ChromeCacheEntry::Body::none;
    cache.add(none);
    read();
    record = reading.records().at(0);
    disk.write(folder() / "f_000000", "not the body of this entry");
    EXPECT_EQ(record.DataBlockFile, "f_000000");
    EXPECT_FALSE(fetch());
}

TEST_F(ChromeCacheBody, ofAnAddressWithTheTopBitAloneIsTheFileWithSixZeros) {
    const auto place = cache.add(entry("http://host.example/", "12345678"));
    put(place.entry, 0x20, 0x8000'0000);
    read();
    record = reading.records().at(0);
    EXPECT_EQ(record.DataBlockFile, "f_000000");
    disk.write(folder() / "f_000000", "separate body");
    ASSERT_TRUE(fetch());
    EXPECT_EQ(content(), "separate");
}

TEST_F(ChromeCacheBody, ofAnAddressThatNamesNoBlockIsNone) {
    const auto place = cache.add(entry("http://host.example/", "12345678"));
    put(place.entry, 0x20, 0xD001'0000);
    read();
    record = reading.records().at(0);
    EXPECT_EQ(record.DataBlockFile, "data_1");
    EXPECT_EQ(record.DataBlockFileOffset, 0);
    EXPECT_FALSE(fetch()); // the head of the block file is nobody's body
}

TEST_F(ChromeCacheBody, whoseFileIsGoneIsNone) {
    add(std::string(20000, 'x'));
    fs::remove(folder() / "f_000001");
    record.CacheFileExists = true;
    EXPECT_FALSE(fetch());
    EXPECT_TRUE(record.CacheFileExists); // as stored
    EXPECT_THAT(log.entries, IsEmpty());
}

TEST_F(ChromeCacheBody, isFoundBesideTheIndexWhenTheFolderIsNamedOtherwise) {
    add("the body");
    const fs::path moved = scratch.path() / "moved";
    fs::rename(disk.path() / "mara", disk.path() / "MARA");
    EXPECT_TRUE(fetch()); // the row's folder is gone, its index is found by its name
    fs::create_directories(moved);
    fs::rename(disk.path() / "MARA", moved / "mara");
    EXPECT_FALSE(fetch());
    record.RootPath = textOf(moved) + "/"; // as a project's new base folder sets it
    ASSERT_TRUE(fetchBelow(moved));
    EXPECT_EQ(content(), "the body");
}

TEST_F(ChromeCacheBody, isNotSoughtOutsideOfTheFolder) {
    add("the body");
    disk.write("mara/Chrome/Default/secret", "secret");
    for (const char *name : {"../secret", "..\\secret", "/etc/hostname", "", "."}) {
        record.DataBlockFile = name;
        EXPECT_FALSE(fetch()) << name;
    }
    record.DataBlockFile = "data_1";
    record.DataBlockFileOffset = -1;
    EXPECT_FALSE(fetch());
}

TEST_F(ChromeCacheBody, isFetchedThroughTheRegistry) {
    const Reader *reader = readerByKey("chrome-cache");
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->read, &parseChromeCache);
    EXPECT_EQ(reader->fetch, &fetchChromeBody);
    add("the body");
    record.cacheType = "CHROME CACHE";
    const Evidence evidence(disk.path());
    const auto file = contentOf(record, {evidence, scratch.path(), log});
    ASSERT_TRUE(file);
    EXPECT_EQ(content(), "the body");
}

} // namespace
} // namespace nv
