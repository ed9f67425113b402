#include "base/Files.h"
#include "import/SavedContent.h"
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

TEST_F(SavedContentTest, isNoneWhenThereIsNone) {
    UrlRecord record;
    SavedContent content(record, extraction, probe);
    EXPECT_FALSE(content.facts());
    EXPECT_TRUE(content.file().empty());
    EXPECT_EQ(content.pageText(), "");
}

} // namespace
} // namespace nv
