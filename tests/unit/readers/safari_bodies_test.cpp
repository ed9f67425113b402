#include "base/Files.h"
#include "readers/Registry.h"
#include "readers/safari/Cache.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/Packed.h"
#include "support/builders/Safari.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::SafariCache;
using Version = SafariCache::Version;

const std::string kPicture("GIF89a\1\0\1\0\0\0\0;", 14);

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

/// Takes the body of each record that its reader holds.
struct BodySink final : RecordSink {
    void save(UrlRecord &record) override {
        const std::optional<Body> &body = content.held();
        bodies.push_back(!body              ? ""
                         : body->isInMemory ? std::string(body->raw())
                                            : contentOf(body->file));
        inFiles += body && !body->isInMemory ? 1 : 0;
        record.URLID = UrlId{1};
        records.push_back(record);
    }
    ContentProbe content;
    int inFiles = 0;
    std::vector<std::string> bodies;
    std::vector<UrlRecord> records;
};

struct SafariBodies : testing::Test {
    fs::path file() const { return folder.path() / "Cache.db"; }

    std::vector<std::string> bodies() {
        HistoryFile history;
        history.fullPath = file();
        ReadContext context{history,        evidence, sink.content, clock,
                            scratch.path(), sink,     log,          task};
        result = parseSafariCacheFile(context);
        EXPECT_TRUE(fs::is_empty(scratch.path()));
        return sink.bodies;
    }
    /// A record as the project gives it back.
    UrlRecord saved(std::int64_t id) const {
        UrlRecord record;
        record.URLID = UrlId{5};
        record.Reference_ID = id;
        record.HistoryFilePath = file().string();
        record.cacheType = "SAFARI CACHE";
        return record;
    }
    bool fetch(UrlRecord &record) {
        return nv::contentOf(record, {evidence, scratch.path(), log}).has_value();
    }

    test::TempFolder folder;
    test::TempFolder scratch;
    Evidence evidence{folder.path()};
    test::FixedClock clock;
    test::MemoryLog log;
    test::MemoryTask task;
    BodySink sink;
    ReadResult result;
};

TEST_F(SafariBodies, areAtHandWhileTheirRecordIsSaved) {
    SafariCache(file())
        .add({.id = 1, .body = "one"})
        .add({.id = 2, .url = "b"})
        .add({.id = 3, .url = "c", .body = kPicture});
    EXPECT_EQ(bodies(), (std::vector<std::string>{"one", "", kPicture}));
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(SafariBodies, areHeldInMemoryUnlessTheyAreLarge) {
    const std::string large(kBodyInMemory + 1, 'x');
    SafariCache(file())
        .add({.id = 1, .body = large})
        .add({.id = 2, .url = "b"})
        .add({.id = 3, .url = "c", .body = large.substr(1)});
    EXPECT_EQ(bodies(), (std::vector<std::string>{large, "", large.substr(1)}));
    EXPECT_EQ(sink.inFiles, 1);
    EXPECT_FALSE(sink.content.held());
}

TEST_F(SafariBodies, areTakenFromATableOfTheirOwnInLaterVersions) {
    SafariCache(file(), Version::bodiesApart)
        .add({.id = 1, .body = "one"})
        .add({.id = 2, .url = "b", .body = {}});
    EXPECT_EQ(bodies(), (std::vector<std::string>{"one", ""}));
    EXPECT_EQ(sink.records[0].CacheFileSize, 2);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SafariBodies, areFoundInFilesBesideTheCacheAndLeftThere) {
    const fs::path kept = folder.write("FSCachedData/0A1B-2C", kPicture);
    SafariCache(file(), Version::bodiesApart).add({.id = 1, .body = "0a1b-2c", .isOnDisk = true});
    EXPECT_EQ(bodies(), std::vector<std::string>{kPicture});
    EXPECT_EQ(sink.records[0].CacheFileSize, 13);
    EXPECT_EQ(contentOf(kept), kPicture);
    EXPECT_TRUE(result.passedOver.empty());
}

TEST_F(SafariBodies, inFilesThatAreNotThereAreCounted) {
    folder.write("secret", "outside of the folder of bodies");
    SafariCache cache(file(), Version::bodiesApart);
    int id = 0;
    for (const char *name : {"gone", "../secret", "/etc/passwd", ""})
        cache.add({.id = ++id, .url = name, .body = name, .isOnDisk = true});
    cache.close();
    EXPECT_EQ(bodies(), std::vector<std::string>(4));
    EXPECT_FALSE(sink.records[0].CacheFileExists);
    EXPECT_EQ(result.passedOver.at("bodies in files beside the cache that are not there"), 4U);
}

TEST_F(SafariBodies, areFetchedByTheirEntry) {
    SafariCache(file()).add({.id = 1, .body = "one"}).add({.id = 2, .url = "b", .body = kPicture});
    const auto before = test::contentsOf(folder.path());
    UrlRecord record = saved(2);
    ASSERT_TRUE(fetch(record));
    EXPECT_EQ(contentOf(record.RunTimeTempFilePath), kPicture);
    EXPECT_EQ(record.CacheFileExt, "gif");
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_TRUE(record.IsPicture);
    EXPECT_EQ(test::contentsOf(scratch.path()).size(), 1U) << "the copied cache is gone";
    EXPECT_EQ(test::contentsOf(folder.path()), before);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SafariBodies, areFetchedBelowAFolderWhoseNameIsNoUtf8) {
    fs::create_directory(folder.path() / "Caf\xE9");
    const fs::path cache = folder.path() / "Caf\xE9" / "Cache.db";
    SafariCache(cache).add({.id = 1, .body = "one"});
    UrlRecord record = saved(1);
    record.HistoryFilePath = textOf(cache);
    ASSERT_TRUE(fetch(record));
    EXPECT_EQ(contentOf(record.RunTimeTempFilePath), "one");
}

TEST_F(SafariBodies, mayBeOfASingleByte) {
    SafariCache(file()).add({.id = 1, .body = "x"});
    UrlRecord record = saved(1);
    ASSERT_TRUE(fetch(record));
    EXPECT_EQ(contentOf(record.RunTimeTempFilePath), "x");
}

TEST_F(SafariBodies, areFetchedFromFilesAndLaterVersions) {
    const fs::path kept = folder.write("fsCachedData/AB", "<html>kept apart</html>");
    SafariCache(file(), Version::bodiesApart)
        .add({.id = 1, .body = "AB", .isOnDisk = true})
        .add({.id = 2, .url = "b", .body = "in the table"});
    UrlRecord onDisk = saved(1);
    ASSERT_TRUE(fetch(onDisk));
    EXPECT_EQ(contentOf(onDisk.RunTimeTempFilePath), contentOf(kept));
    EXPECT_NE(onDisk.RunTimeTempFilePath, kept);
    UrlRecord inTable = saved(2);
    ASSERT_TRUE(fetch(inTable));
    EXPECT_EQ(contentOf(inTable.RunTimeTempFilePath), "in the table");
}

TEST_F(SafariBodies, thatArePackedAreUnpacked) {
    SafariCache(file()).add({.id = 1, .body = test::gzip("<html>packed</html>")});
    UrlRecord record = saved(1);
    ASSERT_TRUE(fetch(record));
    EXPECT_EQ(contentOf(record.RunTimeTempFilePath), "<html>packed</html>");
    EXPECT_TRUE(record.GZipEncoded);
}

TEST_F(SafariBodies, thatAreNotThereAreNoFailure) {
    SafariCache(file()).add({.id = 1, .body = ""}).add({.id = 2, .url = "b"});
    for (const std::int64_t id : {1, 2, 3}) {
        UrlRecord record = saved(id);
        EXPECT_FALSE(fetch(record)) << id;
        EXPECT_TRUE(record.RunTimeTempFilePath.empty());
    }
    UrlRecord moved = saved(1);
    moved.HistoryFilePath = (folder.path() / "elsewhere.db").string();
    EXPECT_FALSE(fetch(moved));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SafariBodies, ofACacheThatIsNoneAreAFailureInTheLog) {
    writeWhole(file(), std::string(3000, 'x'));
    UrlRecord record = saved(1);
    EXPECT_FALSE(fetch(record));
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(log.entries[0].procedure, "ParserClass.ExtractCacheFile()");
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(SafariBodies, areFetchedByTheKindOfTheirRecord) {
    SafariCache(file()).add({.id = 1, .body = kPicture});
    UrlRecord record = saved(1);
    const auto content = contentOf(record, {evidence, scratch.path(), log});
    ASSERT_TRUE(content);
    EXPECT_EQ(contentOf(*content), kPicture);
    EXPECT_EQ(readerByKey("safari-cache")->fetch, fetchSafariBody);
}

} // namespace
} // namespace nv
