#include "base/Files.h"
#include "base/Md5.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromeCacheFixture.h"

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using ChromeCacheRecord = test::ChromeCacheTest;

TEST_F(ChromeCacheRecord, hasEveryField) {
    reading.clock.offset = std::chrono::minutes(60);
    const auto place =
        cache.add(entry("http://www.host.example:80/folder/page.html?q=1", "<html>"));
    read();
    ASSERT_THAT(reading.records(), SizeIs(1));
    const URLClass &record = reading.records()[0];
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.Visits, -1);
    EXPECT_EQ(record.URL, "http://www.host.example:80/folder/page.html?q=1");
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_EQ(record.host, "www.host.example");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.CacheFileName, "page.html?q=1");
    EXPECT_EQ(record.URLFileName, "page.html?q=1");
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2011-06-15T12:01:00Z");
    EXPECT_EQ(isoUtc(record.ActionDateLocal), "2011-06-15T13:01:00Z");
    EXPECT_EQ(record.LastVisited, record.ActionDateUTC);
    EXPECT_EQ(record.CacheFileLastAccessed, record.ActionDateUTC);
    EXPECT_EQ(isoUtc(record.OtherDate), "2011-06-15T12:00:00Z");
    EXPECT_EQ(record.OtherDateMeaning, "Last Requested Time");
    EXPECT_EQ(record.cacheType, "Chrome Cache");
    EXPECT_EQ(record.HistoryFilePath, textOf(folder() / "index"));
    EXPECT_EQ(record.HistoryVersion, "1.0");
    EXPECT_EQ(record.RootPath, textOf(disk.path()) + "/");
    EXPECT_EQ(record.CacheRootPath, textOf(folder()));
    EXPECT_EQ(record.CacheFolderName, "Cache");
    EXPECT_EQ(record.CacheFileRelativePath, "mara/Chrome/Default/Cache/index");
    EXPECT_EQ(record.CacheFileCreatedGMTDOS, Evidence({}).factsOf(folder() / "index").created);
    EXPECT_EQ(record.MapFileOffset, test::ChromeCache::offsetOf(place.entry));
    EXPECT_EQ(record.MetaDataRecordOffset, test::ChromeCache::offsetOf(place.header));
    EXPECT_EQ(record.DataBlockFile, "data_1");
    EXPECT_EQ(record.DataBlockFileOffset, test::ChromeCache::offsetOf(place.body));
    EXPECT_EQ(record.CacheFileSize, 6);
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.RecordSize, record.URL.size());
}

TEST_F(ChromeCacheRecord, leavesOpenWhatTheReaderDoesNotKnow) {
    cache.add(entry("http://host.example/picture.jpg"));
    read();
    ASSERT_THAT(reading.records(), SizeIs(1));
    const URLClass &record = reading.records()[0];
    // Kind and category are settled by content and name on the way into the project.
    EXPECT_FALSE(record.IsPicture);
    EXPECT_FALSE(record.IsWebPage);
    EXPECT_FALSE(record.IsHistory);
    EXPECT_FALSE(record.CacheFileRebuilt);
    EXPECT_EQ(record.CacheFileExt, "");
    EXPECT_EQ(record.Category, "");
    EXPECT_EQ(record.MetaData, ""); // the answer's headers are not read
    EXPECT_EQ(record.HTMLBody, "");
    EXPECT_EQ(record.WebpageTitle, "");
    EXPECT_EQ(record.User, "");
    EXPECT_TRUE(record.RunTimeTempFilePath.empty());
}

TEST_F(ChromeCacheRecord, namesTheFileOfItsBody) {
    cache.add(entry("http://a/", std::string(1024, 'a')));
    cache.add(entry("http://b/", std::string(1025, 'b')));
    cache.add(entry("http://c/", std::string(16384, 'c')));
    cache.add(entry("http://d/", std::string(16385, 'd')));
    test::ChromeCacheEntry none = entry("http://e/", "");
    none.where = test::ChromeCacheEntry::Body::none;
    cache.add(none);
    read();
    std::vector<std::string> files;
    for (const URLClass &record : reading.records())
        files.push_back(record.DataBlockFile);
    EXPECT_THAT(files, ElementsAre("data_1", "data_2", "data_3", "f_000001", "f_000000"));
    EXPECT_EQ(reading.records()[3].DataBlockFileOffset, 0);
    EXPECT_EQ(reading.records()[3].CacheFileSize, 16385);
    EXPECT_TRUE(reading.records()[3].CacheFileExists);
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST_F(ChromeCacheRecord, takesTheSizeOfItsBodyWithoutASign) {
    const auto place = cache.add(entry("http://host/"));
    put(place.entry, 0x18, 0xFFFF'FFFF);
    read();
    ASSERT_THAT(reading.records(), SizeIs(1));
    EXPECT_EQ(reading.records()[0].CacheFileSize, 0xFFFF'FFFFLL);
}

TEST_F(ChromeCacheRecord, keepsTheUrlAsItIsStored) {
    cache.add(entry("http://host/caf\xE9?a=%20b"));
    read();
    EXPECT_THAT(urls(), ElementsAre("http://host/caf\xC3\xA9?a=%20b"));
}

TEST_F(ChromeCacheRecord, ofALongUrlHas218CharactersAndTheRestIsCounted) {
    cache.add(entry("http://host/" + std::string(206, 'a')));
    cache.add(entry("http://host/" + std::string(500, 'b')));
    read();
    EXPECT_THAT(urls(), ElementsAre("http://host/" + std::string(206, 'a'),
                                    "http://host/" + std::string(206, 'b')));
    EXPECT_EQ(reading.records()[1].RecordSize, 512U);
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(testing::Pair("rest of a URL of more than 218 characters", 1)));
}

TEST_F(ChromeCacheRecord, withAUrlOutsideOfItsEntryIsCounted) {
    const auto place = cache.add(entry(""));
    put(place.entry, 0x10, 0xA101'0005);
    read();
    EXPECT_THAT(urls(), ElementsAre(""));
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(testing::Pair("URL that is kept outside of its entry", 1)));
}

TEST_F(ChromeCacheRecord, hasTheFirstAndTheLastDate) {
    test::ChromeCacheEntry first = entry("http://first/");
    first.modified = 0;
    test::ChromeCacheEntry last = entry("http://last/");
    last.modified = 265'046'774'399'999'999;
    test::ChromeCacheEntry none = entry("http://none/");
    none.modified = last.modified + 1;
    none.requested = ~0ULL;
    cache.add(first);
    cache.add(last);
    cache.add(none);
    read();
    ASSERT_THAT(reading.records(), SizeIs(3));
    EXPECT_EQ(isoUtc(reading.records()[0].ActionDateUTC), "1601-01-01T00:00:00Z");
    EXPECT_EQ(isoUtc(reading.records()[1].ActionDateUTC), "9999-12-31T23:59:59Z");
    EXPECT_FALSE(reading.records()[2].ActionDateUTC.has());
    EXPECT_FALSE(reading.records()[2].OtherDate.has());
}

} // namespace
} // namespace nv
