#include "readers/Body.h"
#include "readers/CachedBody.h"
#include "readers/Coding.h"
#include "readers/Scratch.h"
#include "support/MacCacheReading.h"
#include "support/SmallFiles.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/MacCache.h"
#include "support/builders/Packed.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

bool unpackGZip(Body &body, FailureLog &log) {
    const std::vector<std::string> codings = {"gzip"};
    return unpackBody(body, codings, Damaged::staysPacked, kBodyInMemory, log);
}

struct BodyTest : testing::Test {
    /// The bytes of a body wherever they lie.
    static std::string textOf(const Body &body) {
        return body.isInMemory ? std::string(body.raw())
                               : std::string(ByteView(readWhole(body.file)).raw());
    }
    bool isScratchEmpty() const { return fs::is_empty(scratch.path()); }

    test::TempFolder folder;
    test::TempFolder scratch;
    test::MemoryLog log;
    fs::path file = scratch.path() / "body";
};

TEST_F(BodyTest, staysInMemoryUpToTheBound) {
    BodyTarget target(file, 10);
    target.write("12345");
    target.write("67890");
    const Body body = target.take();
    EXPECT_TRUE(body.isInMemory);
    EXPECT_EQ(body.raw(), "1234567890");
    EXPECT_EQ(body.file, file);
    EXPECT_TRUE(isScratchEmpty());
}

TEST_F(BodyTest, goesToItsFileAboveTheBound) {
    BodyTarget target(file, 10);
    target.write("12345");
    target.write("678901");
    target.write("2");
    const Body body = target.take();
    EXPECT_FALSE(body.isInMemory);
    EXPECT_EQ(textOf(body), "123456789012");
}

TEST_F(BodyTest, isAFileWhenNothingIsToStayInMemory) {
    EXPECT_EQ(textOf(BodyTarget(file, 0).take()), "");
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(BodyTest, leavesNoFileWhenItIsNotTaken) {
    { BodyTarget(file, 2).write("12345"); }
    EXPECT_TRUE(isScratchEmpty());
}

TEST_F(BodyTest, isCopiedFromItsPlace) {
    const ScratchFile source(folder.write("source", std::string((2 << 20) + 5, 'x') + "end"));
    for (const std::uint64_t inMemory : {std::uint64_t{0}, kBodyInMemory, std::uint64_t{9} << 20}) {
        BodyTarget target(file, inMemory);
        EXPECT_EQ(target.copy(source, 2, source.size()), source.size() - 2);
        const Body body = target.take();
        EXPECT_EQ(body.isInMemory, inMemory > source.size());
        EXPECT_EQ(textOf(body), std::string((2 << 20) + 3, 'x') + "end");
    }
}

TEST_F(BodyTest, thatDoesntFitOnTheDiskIsAFailureOfStorage) {
    const test::SmallFiles limit(1000);
    BodyTarget target(file, 10);
    EXPECT_THROW(target.write(std::string(2000, 'x')), StorageFailure);
}

TEST_F(BodyTest, isUnpackedInMemory) {
    Body body{file, true, {}};
    const std::string packed = test::gzip("text");
    body.bytes.assign(packed.begin(), packed.end());
    ASSERT_TRUE(unpackGZip(body, log));
    EXPECT_TRUE(body.isInMemory);
    EXPECT_EQ(textOf(body), "text");
    EXPECT_TRUE(isScratchEmpty());
}

TEST_F(BodyTest, isUnpackedIntoAFileWhenItGrowsLarge) {
    Body body{file, true, {}};
    const std::string packed = test::gzipOfZeros(kBodyInMemory + 1);
    body.bytes.assign(packed.begin(), packed.end());
    ASSERT_TRUE(unpackGZip(body, log));
    EXPECT_FALSE(body.isInMemory);
    EXPECT_EQ(body.file, file);
    EXPECT_EQ(fs::file_size(file), kBodyInMemory + 1);
    const test::SmallFiles limit(1000);
    body = {file, true, Bytes(packed.begin(), packed.end())};
    EXPECT_THROW(static_cast<void>(unpackGZip(body, log)), StorageFailure);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(BodyTest, staysPackedWhenItIsDamaged) {
    const std::string packed = test::gzip(std::string(5000, 'a') + "b");
    Body body{file, true, Bytes(packed.begin(), packed.end() - 9)};
    EXPECT_FALSE(unpackGZip(body, log));
    EXPECT_EQ(body.bytes.size(), packed.size() - 9);
    EXPECT_EQ(log.entries.size(), 1U);
}

TEST_F(BodyTest, ofARecordIsFetchedIntoMemory) {
    test::MacCache cache;
    cache.add({.url = "http://host/page.html", .body = test::gzip("<html>page</html>")});
    test::MacCacheReading reading;
    reading.readFile(folder.write("cache.waf", cache.bytes()));
    UrlRecord record = reading.records().at(0);
    const Evidence evidence(folder.path());
    const auto body = bodyOf(record, {evidence, scratch.path(), log}, kBodyInMemory);
    ASSERT_TRUE(body);
    EXPECT_TRUE(body->isInMemory);
    EXPECT_EQ(body->raw(), "<html>page</html>");
    EXPECT_TRUE(record.GZipEncoded);
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_TRUE(record.RunTimeTempFilePath.empty());
    EXPECT_TRUE(isScratchEmpty());
}

/// Two formats may give their records one word.
TEST_F(BodyTest, isFetchedByTheTypeOfTheSourceWhateverTheRecordIsCalled) {
    test::MacCache cache;
    cache.add({.url = "http://host/page.html", .body = "<html>page</html>"});
    test::MacCacheReading reading;
    reading.readFile(folder.write("cache.waf", cache.bytes()));
    const Evidence evidence(folder.path());
    // What isn't fetched is a file of its own; here that is the cache.
    const auto fetched = [&](const std::string &word, HistoryFileType source) {
        UrlRecord record = reading.records().at(0);
        record.cacheType = word;
        const auto body = bodyOf(record, {evidence, scratch.path(), log, source}, kBodyInMemory);
        return body && body->isInMemory && body->raw() == "<html>page</html>";
    };
    EXPECT_TRUE(fetched("Firefox Cache", HistoryFileType::macIECache));
    EXPECT_FALSE(fetched("Mac IE Cache", HistoryFileType::ieCache));
    EXPECT_TRUE(fetched("Mac IE Cache", HistoryFileType::none)) << "as one from a project";
    EXPECT_FALSE(fetched("Simple HTML", HistoryFileType::none));
}

TEST_F(BodyTest, isFoundByAPathThatWasDecodedAsAWhole) {
    const fs::path page = folder.write("s\xC3\xBC\xC3\x9F/w\xF6.html", "<html>");
    folder.write("outside.html", "x");
    const Evidence evidence(folder.path());
    UrlRecord record;
    record.RootPath = folder.path().native() + "/";
    record.CacheFileRelativePath = fromAnsi(std::string_view("s\xC3\xBC\xC3\x9F/w\xF6.html"));
    const Extraction ctx{evidence, scratch.path(), log};
    EXPECT_EQ(contentOf(record, ctx), page);
    record.CacheFileRelativePath = fromAnsi(std::string_view("s\xC3\xBC\xC3\x9F/../outside.html"));
    EXPECT_EQ(contentOf(record, ctx), std::nullopt) << "no record leads up";
}

} // namespace
} // namespace nv
