#include "base/Files.h"
#include "base/Md5.h"
#include "readers/CachedBody.h"
#include "support/MacCacheReading.h"
#include "support/TempFolder.h"
#include "support/builders/MacCache.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_literals;
using test::MacCache;
using test::MacCacheReading;
using test::MacEntry;
using PassedOver = std::map<std::string, std::uint64_t>;

MacEntry page() {
    return {.url = "http://www.host.example/dir/page.html?a=b%20c",
            .mime = "text/html",
            .bsrl = "one",
            .hntt = "two",
            .version = 3,
            .post = "form=1",
            .body = "<html>page</html>",
            .firstVisit = test::macTime(2001, 5, 6, 7, 8, 9),
            .lastVisit = test::macTime(2002, 3, 4, 5, 6, 7)};
}

MacEntry entryOf(const std::string &url) {
    MacEntry entry;
    entry.url = url;
    return entry;
}

std::vector<std::string> urlsOf(const MacCacheReading &reading) {
    std::vector<std::string> urls;
    for (const UrlRecord &record : reading.records())
        urls.push_back(record.URL);
    return urls;
}

TEST(MacCacheReader, fillsEveryFieldOfARecord) {
    MacCache cache;
    const std::size_t offset = cache.add(page());
    const std::string bytes = cache.bytes();
    const MacCacheReading reading = MacCacheReading().readBytes(bytes);
    ASSERT_EQ(reading.records().size(), 1U);
    const UrlRecord &record = reading.records()[0];
    EXPECT_EQ(record.URLRawValue, "http://www.host.example/dir/page.html?a=b%20c");
    EXPECT_EQ(record.URL, "http://www.host.example/dir/page.html?a=b c");
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_EQ(record.host, "www.host.example");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "a=b c");
    EXPECT_EQ(record.cacheType, "Mac IE Cache");
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.MIMEType, "text/html");
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2002, 3, 4, 5, 6, 7}));
    EXPECT_EQ(record.OtherDate, Date::fromCivil({2001, 5, 6, 7, 8, 9}));
    EXPECT_EQ(record.OtherDateMeaning, "First Visit Date");
    EXPECT_EQ(record.Visits, 1);
    EXPECT_EQ(record.MapFileOffset, static_cast<std::int64_t>(offset));
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.HistoryFilePath, "/evidence/MS Preference Panels/Cache/cache.waf");
    EXPECT_EQ(record.RootPath, "/evidence/");
    EXPECT_EQ(record.CacheFileRelativePath, "MS Preference Panels/Cache/cache.waf");
    EXPECT_EQ(record.CacheFolderName, "Cache");
    EXPECT_EQ(record.DataBlockFile, "cache.waf");
    EXPECT_EQ(record.DataBlockFileOffset,
              static_cast<std::int64_t>(bytes.find("<html>page</html>")));
    EXPECT_EQ(record.CacheFileSize, 17);
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_FALSE(record.IsHistory);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.result.passedOver.empty());
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST(MacCacheReader, collectsWhatAnEntrySays) {
    MacCache cache;
    const std::size_t offset = cache.add(page());
    const std::string bytes = cache.bytes();
    MacCacheFile reader;
    Unwatched task;
    reader.readMACIECache(viewOf(bytes), task, [](const MacCacheEntry &) {});
    ASSERT_EQ(reader.macURLs.count(), 1U);
    const MacCacheEntry &entry = reader.macURLs.item(1);
    EXPECT_EQ(entry.urlOffset, bytes.find("http://"));
    EXPECT_EQ(entry.bSrl, "one");
    EXPECT_EQ(entry.hntt, "two");
    EXPECT_EQ(entry.hvrs, "3");
    EXPECT_EQ(entry.fetchCount, 1);
    EXPECT_EQ(entry.recordFileOffset, offset);
    EXPECT_EQ(entry.dataSize, 17U);
}

TEST(MacCacheReader, keepsTheOffsetZeroOfAnEntryWithoutABody) {
    MacCache cache;
    cache.add(page());
    cache.add(entryOf("http://b/"));
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    ASSERT_EQ(reading.records().size(), 2U);
    EXPECT_EQ(reading.records()[1].DataBlockFileOffset, 0);
    EXPECT_FALSE(reading.records()[1].CacheFileExists);
    EXPECT_EQ(reading.records()[1].MIMEType, ""); // not that of the entry before
    EXPECT_FALSE(reading.records()[1].ActionDateUTC.has());
}

TEST(MacCacheReader, countsAFetchOnlyWithItsBlock) {
    MacCache cache;
    MacEntry entry = entryOf("http://a/");
    entry.version.reset();
    cache.add(entry);
    EXPECT_EQ(MacCacheReading().readBytes(cache.bytes()).records().at(0).Visits, 0);
}

TEST(MacCacheReader, decodesTextsOutsideOfAscii) {
    MacCache cache;
    cache.add(entryOf("http://a/caf\xE9/%C3%A9"));
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(reading.records().at(0).URLRawValue, "http://a/caf\xC3\xA9/%C3%A9");
    EXPECT_EQ(reading.records().at(0).URL, "http://a/caf\xC3\xA9/\xC3\xA9");
}

TEST(MacCacheReader, callsRecordsOfDeletedSpaceDeleted) {
    MacCache cache;
    cache.add(entryOf("http://a/"));
    MacCacheReading reading;
    reading.deleted = true;
    EXPECT_EQ(reading.readBytes(cache.bytes()).records().at(0).Status, "Deleted");
}

TEST(MacCacheReader, goesOnAtTheMarkerAfterABodyWhateverItsLengthSays) {
    MacCache cache;
    cache.block("NTRY", "");
    cache.block("URL ", "http://a/");
    cache.block("DATA", "a long body that is told to be short", 4);
    cache.raw("XXXX");
    cache.block("cate", "12345");
    cache.block("CATE", test::cateValue(0, 0, 0, 36));
    cache.add(entryOf("http://b/"));
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(urlsOf(reading), (std::vector{"http://a/"s, "http://b/"s}));
    EXPECT_EQ(reading.records().at(0).CacheFileSize, 36);
}

TEST(MacCacheReader, takesAMarkerInsideOfABodyForItsEnd) {
    MacCache cache;
    MacEntry entry = page();
    entry.body = "text XXXXcate" + test::big32(4) + "1234" + "CATE" + test::big32(28) +
                 test::cateValue(0, 0, 0, 3);
    cache.add(entry);
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    ASSERT_EQ(reading.records().size(), 1U);
    EXPECT_EQ(reading.records()[0].CacheFileSize, 3);
    EXPECT_EQ(reading.result.state, ReadState::cutShort); // what remains of the body is no block
}

TEST(MacCacheReader, stepsOverABodyWithoutAMarker) {
    MacCache cache;
    for (const char *url : {"http://a/", "http://b/"}) {
        MacEntry entry = entryOf(url);
        entry.body = "body";
        entry.marker = false;
        cache.add(entry);
    }
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(urlsOf(reading), (std::vector{"http://a/"s, "http://b/"s}));
    EXPECT_TRUE(reading.records().at(1).CacheFileExists);
}

TEST(MacCacheReader, countsEntriesThatStandBeforeAnotherOnesMarker) {
    MacCache cache;
    MacEntry first = entryOf("http://a/");
    first.body = "body";
    first.marker = false;
    cache.add(first);
    cache.add(entryOf("http://b/"));
    cache.add(page());
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(urlsOf(reading), std::vector{"http://a/"s}); // with the end of the last one
    EXPECT_EQ(reading.result.passedOver,
              (PassedOver{{"entry before the marker behind another one's body", 2}}));
}

TEST(MacCacheReader, countsAnEntryWithoutItsEnd) {
    MacCache cache;
    cache.block("NTRY", "");
    cache.block("URL ", "http://lost/");
    cache.block("MIME", "text/html");
    cache.add(entryOf("http://b/"));
    cache.block("URL ", "http://lost/too");
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(urlsOf(reading), std::vector{"http://b/"s});
    EXPECT_EQ(reading.records().at(0).MIMEType, "");
    EXPECT_EQ(reading.result.passedOver, (PassedOver{{"entry without its end", 2}}));
}

TEST(MacCacheReader, passesOverTagsThatItDoesntKnow) {
    MacCache cache;
    cache.block("????", "value");
    cache.block("\0\0\0\0"s, "");
    cache.add(page());
    cache.raw("\0\0\0\0\0"s);
    const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
    EXPECT_EQ(reading.records().size(), 1U);
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST(MacCacheReader, leavesWhatWasCollectedWhenCancelled) {
    MacCache cache;
    for (int i = 0; i < 10; ++i)
        cache.add(entryOf("http://a/" + std::to_string(i)));
    MacCacheReading reading;
    test::CancelAfter task(4); // an entry has four blocks
    reading.readBytes(cache.bytes(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_EQ(urlsOf(reading), std::vector{"http://a/0"s});
}

TEST(MacCacheReader, showsWhatItReads) {
    const test::TempFolder folder;
    MacCache cache;
    cache.add(page());
    MacCacheReading reading;
    reading.readFile(folder.write("cache.waf", cache.bytes()));
    EXPECT_EQ(reading.records().size(), 1U);
    reading.readFile(folder.path() / "missing");
    EXPECT_EQ(reading.result.state, ReadState::failed);
    ASSERT_EQ(reading.log.entries.size(), 1U);
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseMACIECache()");
}

class MacBody : public testing::Test {
  protected:
    UrlRecord fetched(const std::string &bytes) {
        reading.readFile(folder.write("cache.waf", bytes));
        UrlRecord record = reading.records().at(0);
        const auto file = contentOf(record, {evidence, folder.path(), log});
        if (file)
            body = ByteView(readWhole(*file)).raw();
        return record;
    }

    test::TempFolder folder;
    Evidence evidence{folder.path()};
    test::MemoryLog log;
    MacCacheReading reading;
    std::string body = "none";
};

TEST_F(MacBody, isFetchedFromTheCacheFile) {
    MacCache cache;
    cache.add(page());
    const UrlRecord record = fetched(cache.bytes());
    EXPECT_EQ(body, "<html>page</html>");
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(MacBody, isNoneWhenItLeadsOutOfTheFile) {
    for (const std::uint32_t size : {0U, 100'000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        MacCache cache;
        MacEntry entry = page();
        entry.dataSize = size;
        cache.add(entry);
        reading.sink.records.clear();
        EXPECT_FALSE(fetched(cache.bytes()).CacheFileExists) << size;
        EXPECT_EQ(body, "none") << size;
    }
}

TEST_F(MacBody, isNoneWithoutItsBlock) {
    MacCache cache;
    MacEntry entry = entryOf("http://a/");
    entry.dataSize = 10;
    cache.add(entry);
    EXPECT_FALSE(fetched(cache.bytes()).CacheFileExists);
    EXPECT_EQ(body, "none");
}

TEST(MacClock, addsTwoToThe32ToANegativeNumberAndHoldsALargeOne) {
    EXPECT_EQ(sLong2ULong(-1), 4294967295);
    EXPECT_EQ(sLong2ULong(0x80000000LL), 0x7FFFFFFF);
    EXPECT_EQ(sLong2ULong(0x7FFFFFFF), 0x7FFFFFFF);
    EXPECT_EQ(sLong2ULong(0), 0);
}

TEST(MacClock, keepsTheFiveHoursOfItsEpoch) {
    EXPECT_EQ(timeStampToDate(2082862800), Date::fromCivil({1970, 1, 1}));
    EXPECT_EQ(timeStampToDate(2082862801), Date::fromCivil({1970, 1, 1, 0, 0, 1}));
}

TEST(MacClock, countsOnWhenTheTopBitOfAStampIsSet) {
    const std::uint32_t stamp = test::macTime(2001, 5, 6, 7, 8, 9);
    ASSERT_GE(stamp, 0x80000000U);
    EXPECT_EQ(timeStampToDate(static_cast<std::int32_t>(stamp)),
              Date::fromCivil({2001, 5, 6, 7, 8, 9}));
    EXPECT_EQ(timeStampToDate(static_cast<std::int32_t>(0xFFFFFFFF)),
              Date::fromCivil({2040, 2, 6, 1, 28, 15}));
}

TEST(MacClock, countsSecondsSince1970) {
    EXPECT_EQ(convertSecondsToDate(1308139200), Date::fromCivil({2011, 6, 15, 12}));
}

TEST(MacClock, ofARecordHasNoDateForAStampBefore1970) {
    for (const std::uint32_t stamp : {0U, 1U, 2082862799U}) {
        MacCache cache;
        MacEntry entry = page();
        entry.firstVisit = entry.lastVisit = stamp;
        cache.add(entry);
        const MacCacheReading reading = MacCacheReading().readBytes(cache.bytes());
        EXPECT_FALSE(reading.records().at(0).ActionDateUTC.has()) << stamp;
        EXPECT_FALSE(reading.records().at(0).OtherDate.has()) << stamp;
    }
}

} // namespace
} // namespace nv
