#include "base/Files.h"
#include "base/Md5.h"
#include "import/SavedContent.h"
#include "support/FactsOf.h"
#include "support/MacCacheReading.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/MacCache.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct SavedContentTest : testing::Test {
    /// A record whose body lies in a cache file.
    UrlRecord inCache(const std::string &body) {
        test::MacCache cache;
        cache.add({.url = "http://host/page.html", .body = body});
        test::MacCacheReading reading;
        reading.readFile(folder.write("cache.waf", cache.bytes()));
        return reading.records().at(0);
    }

    test::TempFolder folder;
    test::TempFolder scratch;
    test::MemoryLog log;
    Evidence evidence{folder.path()};
    ContentProbe probe;
    Extraction extraction{evidence, scratch.path(), log};
};

TEST_F(SavedContentTest, readsAFileOfTheEvidenceOnce) {
    const fs::path file = folder.write("page.htm", "<html><title>T</title>text</html>");
    UrlRecord record;
    record.cacheType = "IE Cache";
    record.RootPath = evidence.rootOf(file);
    record.CacheFileRelativePath = evidence.relativeOf(file);
    SavedContent content(record, extraction, probe);
    ASSERT_TRUE(content.facts());
    EXPECT_EQ(content.facts()->title, "T");
    fs::remove(file);
    EXPECT_EQ(content.pageText(), "<html><title>T</title>text</html>");
}

TEST_F(SavedContentTest, fetchesABodyOnceAndKeepsItInMemory) {
    UrlRecord record = inCache("<html>page</html>");
    SavedContent content(record, extraction, probe);
    ASSERT_TRUE(content.facts());
    EXPECT_TRUE(content.facts()->hasHtml);
    fs::remove(folder.path() / "cache.waf");
    EXPECT_EQ(content.pageText(), "<html>page</html>");
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(SavedContentTest, takesWhatTheReaderHolds) {
    UrlRecord record;
    const std::string_view bytes = "GIF89a...";
    probe.hold({scratch.path() / "held", true, Bytes(bytes.begin(), bytes.end())});
    SavedContent content(record, extraction, probe);
    ASSERT_TRUE(content.facts());
    EXPECT_EQ(content.facts()->extension, "gif");
    EXPECT_EQ(content.file(), scratch.path() / "held");
}

TEST_F(SavedContentTest, aLargeBodyThatVanishesFromScratchIsAFailureOfStorage) {
    UrlRecord record = inCache("<html>" + std::string(kBodyInMemory, 'x'));
    SavedContent content(record, extraction, probe);
    ASSERT_TRUE(fs::is_regular_file(content.file()));
    EXPECT_EQ(content.file(), record.RunTimeTempFilePath);
    fs::remove(content.file());
    EXPECT_THROW(content.facts(), StorageFailure);
}

TEST_F(SavedContentTest, isHashedInMemoryAndInFiles) {
    UrlRecord record;
    const std::string_view bytes = "abc";
    probe.hold({scratch.path() / "held", true, Bytes(bytes.begin(), bytes.end()), "br", "cut"});
    SavedContent(record, extraction, probe).addFacts();
    EXPECT_EQ(test::factOf(record, "content_coding"), "br");
    EXPECT_EQ(test::factOf(record, "body"), "cut");
    EXPECT_EQ(test::factOf(record, "content_md5"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(test::factOf(record, "content_sha1"), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(test::factOf(record, "content_sha256"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    probe.forget();
    for (const std::size_t size : {std::size_t{3}, std::size_t{kBodyInMemory} + 3}) {
        UrlRecord inFile = inCache(std::string(size, 'x'));
        SavedContent(inFile, extraction, probe).addFacts();
        EXPECT_EQ(test::factOf(inFile, "content_md5"), md5Hex(std::string(size, 'x')));
    }
    UrlRecord none;
    SavedContent(none, extraction, probe).addFacts();
    EXPECT_TRUE(none.facts.empty());
}

TEST_F(SavedContentTest, isNoneWhenThereIsNone) {
    UrlRecord record;
    SavedContent content(record, extraction, probe);
    EXPECT_FALSE(content.facts());
    EXPECT_TRUE(content.file().empty());
    EXPECT_EQ(content.pageText(), "");
}

} // namespace
} // namespace nv
