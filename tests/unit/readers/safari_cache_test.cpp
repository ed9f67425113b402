#include "base/Files.h"
#include "base/Md5.h"
#include "readers/Limits.h"
#include "readers/safari/Cache.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/Safari.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::headersOf;
using test::SafariCache;
using test::SafariEntry;
using test::safariResponse;
using Counts = std::map<std::string, std::uint64_t>;

constexpr const char *kUrl = "http://www.example.com/";
constexpr const char *kDate = "Wed, 09 Mar 2011 18:00:00 GMT";

struct SafariCacheTest : testing::Test {
    fs::path file() const { return folder.path() / "Cache.db"; }
    const std::vector<UrlRecord> &read() {
        reading.read(parseSafariCacheFile, file());
        EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
        return reading.records();
    }
    /// The record of a cache with just this entry.
    UrlRecord recordOf(const SafariEntry &entry) {
        SafariCache(file()).add(entry);
        const UrlRecord record = read().at(0);
        EXPECT_TRUE(reading.log.entries.empty());
        return record;
    }
    UrlRecord recordWith(const test::Headers &headers) {
        return recordOf({.response = safariResponse(kUrl, headers)});
    }
    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(SafariCacheTest, aCachedPageFillsEveryField) {
    {
        SafariCache cache(file());
        addExampleEntries(cache);
    }
    ASSERT_EQ(read().size(), 3U);
    const UrlRecord &r = reading.records()[0];
    EXPECT_EQ(r.Reference_ID, 1);
    EXPECT_EQ(r.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(r.URLRawValue, "http://www.example.com/caf%C3%A9?q=tea&n=1");
    EXPECT_EQ(r.URL, "http://www.example.com/caf\u00e9?q=tea&n=1");
    EXPECT_EQ(r.URLFileName, "caf\u00e9?q=tea&n=1");
    EXPECT_EQ(r.URLParameters, "q=tea&n=1");
    EXPECT_EQ(r.URLProtocol, "http");
    EXPECT_EQ(r.host, "www.example.com");
    EXPECT_EQ(r.HashedURL, hashOfUrl(r.URL));
    EXPECT_EQ(r.RecordSize, 37U);
    EXPECT_EQ(r.Action, "Visited");
    EXPECT_EQ(r.Status, "URL");
    EXPECT_EQ(r.cacheType, "Safari Cache");
    EXPECT_EQ(r.RootPath, folder.path().string() + "/");
    EXPECT_EQ(r.HistoryFilePath, file().string());
    EXPECT_EQ(r.HistoryVersion, "1.0");
    EXPECT_TRUE(r.CacheFileCreatedGMTDOS.has());
    EXPECT_EQ(r.MIMEType, "text/html; charset=utf-8");
    EXPECT_TRUE(r.IsWebPage);
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-03-09T18:00:00Z");
    EXPECT_EQ(r.LastVisited, r.ActionDateUTC);
    EXPECT_EQ(isoUtc(r.OtherDate), "2011-02-01T06:07:08Z");
    EXPECT_EQ(r.OtherDateMeaning, "Last Modified");
    EXPECT_TRUE(r.MetaData.starts_with("<?xml"));
    EXPECT_TRUE(r.CacheFileExists);
    EXPECT_EQ(r.CacheFileSize, 28); // of 29 bytes
    EXPECT_EQ(r.Visits, -1);
    EXPECT_FALSE(r.IsHistory || r.Hidden || r.IsCookie || r.IsPicture);
    EXPECT_EQ(r.User + r.Referrer + r.WebpageTitle, "");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.result.passedOver.empty());
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(SafariCacheTest, anEntryWithoutBlobsIsStoredAllTheSame) {
    SafariCache(file()).addWithoutBlobs(3, "http://www.example.org/gone.html");
    const UrlRecord r = read().at(0);
    EXPECT_EQ(r.URL, "http://www.example.org/gone.html");
    EXPECT_FALSE(r.CacheFileExists);
    EXPECT_EQ(r.CacheFileSize, 0);
    EXPECT_FALSE(r.ActionDateUTC.has());
    EXPECT_EQ(r.MetaData, "");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(SafariCacheTest, theSizeIsTheUpperBoundOfTheBytes) {
    const UrlRecord r = recordOf({.body = "xy"});
    EXPECT_EQ(r.CacheFileSize, 1);
    EXPECT_TRUE(r.CacheFileExists);
}

TEST_F(SafariCacheTest, aBodyOfOneByteCountsAsNotThereAndIsCounted) {
    const UrlRecord r = recordOf({.body = "x"});
    EXPECT_EQ(r.CacheFileSize, 0);
    EXPECT_FALSE(r.CacheFileExists);
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"bodies of a single byte count as not there", 1}}));
}

TEST_F(SafariCacheTest, anEmptyBodyIsNotThere) {
    const UrlRecord r = recordOf({.response = "", .body = ""});
    EXPECT_EQ(r.CacheFileSize, 0);
    EXPECT_FALSE(r.CacheFileExists);
    EXPECT_TRUE(reading.result.passedOver.empty());
}

TEST_F(SafariCacheTest, fromDeletedSpaceTheStatusIsDeleted) {
    SafariCache(file()).add({});
    reading.deleted = true;
    EXPECT_EQ(read().at(0).Status, "Deleted");
}

TEST_F(SafariCacheTest, namesOfHeaderFieldsAreComparedInLowerCase) {
    const UrlRecord r = recordWith({{"CONTENT-TYPE", "TEXT/HTML"},
                                    {"last-modified", "Tue, 01 Feb 2011 06:07:08 GMT"},
                                    {"dAte", kDate}});
    EXPECT_EQ(r.MIMEType, "TEXT/HTML");
    EXPECT_TRUE(r.IsWebPage);
    EXPECT_TRUE(r.OtherDate.has());
    EXPECT_TRUE(r.ActionDateUTC.has());
}

TEST_F(SafariCacheTest, emptyValuesAreSkipped) {
    const UrlRecord r =
        recordWith({{"Content-Type", "image/png"}, {"Content-Type", ""}, {"Date", ""}});
    EXPECT_EQ(r.MIMEType, "image/png");
    EXPECT_FALSE(r.IsWebPage);
    EXPECT_FALSE(r.ActionDateUTC.has());
    EXPECT_TRUE(reading.result.passedOver.empty());
}

TEST_F(SafariCacheTest, aDateTooShortGivesNoActionDate) {
    const UrlRecord r = recordWith({{"Date", "Wed, "}, {"Last-Modified", "Tue, 01 Feb"}});
    EXPECT_FALSE(r.ActionDateUTC.has());
    EXPECT_FALSE(r.OtherDate.has());
    EXPECT_EQ(r.OtherDateMeaning, "");
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"response headers with a date in an unusual form, which is not read", 1}}));
}

TEST_F(SafariCacheTest, zeroBytesAreKeptOutOfTheHeaders) {
    std::string response = safariResponse(kUrl, headersOf("text/css", kDate));
    response.insert(response.find("text/css") + 2, 1, '\0');
    response.push_back('\0');
    const UrlRecord r = recordOf({.response = response});
    EXPECT_EQ(r.MIMEType, "text/css");
    EXPECT_TRUE(r.ActionDateUTC.has());
    EXPECT_EQ(r.MetaData.find('\0'), std::string::npos);
}

TEST_F(SafariCacheTest, textWhereBytesShouldBeIsReadAsBytes) {
    SafariCache cache(file());
    cache.addWithoutBlobs(1, kUrl);
    SQLite::Statement row = cache.prepare("INSERT INTO cfurl_cache_blob_data(entry_ID,"
                                          "response_object,receiver_data) VALUES(1,?,'caf\u00e9')");
    row.bind(1, safariResponse(kUrl, headersOf("text/plain", kDate)));
    row.exec();
    const UrlRecord r = read().at(0);
    EXPECT_TRUE(r.ActionDateUTC.has());
    EXPECT_EQ(r.CacheFileSize, 4); // five bytes in UTF-8
}

TEST_F(SafariCacheTest, nullsAndNumbersDoNoHarm) {
    SafariCache cache(file());
    cache.run("INSERT INTO cfurl_cache_response(entry_ID,request_key) VALUES(1,NULL),(2,77);"
              "INSERT INTO cfurl_cache_blob_data(entry_ID,response_object,receiver_data) "
              "VALUES(1,NULL,NULL),(2,5,123)");
    ASSERT_EQ(read().size(), 2U);
    EXPECT_EQ(reading.records()[0].URL, "");
    EXPECT_FALSE(reading.records()[0].CacheFileExists);
    EXPECT_EQ(reading.records()[1].URL, "77");
    EXPECT_EQ(reading.records()[1].CacheFileSize, 2);
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(SafariCacheTest, aResponseInBinaryFormIsCountedAndItsRowStored) {
    const UrlRecord r =
        recordOf({.response = std::string("bplist00\xd1\0\1Date", 15), .body = "xy"});
    EXPECT_EQ(r.URL, kUrl);
    EXPECT_TRUE(r.CacheFileExists);
    EXPECT_FALSE(r.ActionDateUTC.has());
    EXPECT_EQ(r.MetaData, "bplist00\u00d1\1Date");
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"response objects in binary form are not read yet: no date, no type", 1}}));
}

TEST_F(SafariCacheTest, aResponseThatIsNoPropertyListIsCounted) {
    const UrlRecord r = recordOf({.response = "HTTP/1.1 200 OK"});
    EXPECT_EQ(r.MetaData, "HTTP/1.1 200 OK");
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"response objects that are no sound property list", 1}}));
}

TEST_F(SafariCacheTest, ofADamagedResponseOnlyWholeValuesAreTaken) {
    const std::string response = safariResponse(kUrl, headersOf("text/css", kDate));
    const std::size_t headersEnd = response.rfind("</dict>", response.find("text/plain")) + 7;
    for (std::size_t length = 1; length < response.size() - 1; ++length) {
        reading.sink.records.clear();
        const UrlRecord r = recordOf({.response = response.substr(0, length)});
        EXPECT_EQ(isoUtc(r.ActionDateUTC), length < headersEnd ? "" : "2011-03-09T18:00:00Z")
            << length;
        EXPECT_TRUE(r.MIMEType.empty() || r.MIMEType == "text/css") << length;
        const bool isWhole = length >= response.size() - 1;
        EXPECT_EQ(reading.result.passedOver.size(), isWhole ? 0U : 1U) << length;
    }
}

TEST_F(SafariCacheTest, aResponseLongerThanAnyHeaderIsCounted) {
    const UrlRecord r =
        recordWith({{"Date", kDate}, {"X-Long", std::string(limits::kResponseBytes, 'x')}});
    EXPECT_FALSE(r.ActionDateUTC.has());
    EXPECT_EQ(reading.result.passedOver.size(), 1U);
}

TEST_F(SafariCacheTest, entitiesAreNeitherExpandedNorFetched) {
    const fs::path secret = folder.write("secret", "text/secret");
    const std::string response =
        "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">"
        "<!ENTITY file SYSTEM \"file://" +
        secret.string() +
        "\">]>"
        "<plist><array><dict><key>Content-Type</key><string>&file;&b;</string>"
        "<key>Date</key><string>" +
        kDate + "</string></dict></array></plist>";
    const UrlRecord r = recordOf({.response = response});
    EXPECT_EQ(r.MIMEType, "&file;&b;");
    EXPECT_TRUE(r.ActionDateUTC.has());
}

TEST_F(SafariCacheTest, entriesThatAreNoLongerListedAreCounted) {
    SafariCache(file())
        .add({.id = 1})
        .add({.id = 2, .url = "http://b/"})
        .run("DELETE FROM cfurl_cache_response WHERE entry_ID = 2");
    EXPECT_EQ(read().size(), 1U);
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"headers and bodies whose entry is no longer listed", 1}}));
}

TEST_F(SafariCacheTest, theTaskShowsEachRowAndTheEnd) {
    SafariCache(file()).add({.id = 1}).add({.id = 2, .url = "http://b/"});
    read();
    const test::MemoryTask &task = reading.task;
    ASSERT_EQ(task.headings.size(), 1U);
    EXPECT_EQ(task.headings[0].title, "PARSING SAFARI CACHE");
    EXPECT_EQ(task.headings[0].subject, "Safari");
    EXPECT_EQ(task.headings[0].detail, file().string());
    EXPECT_EQ(task.headings[0].icon, "safari-32.png");
    ASSERT_EQ(task.steps.size(), 3U);
    EXPECT_EQ(task.steps[1].topMessage, "Reading URL Blob Data 2 of 2");
    EXPECT_EQ(task.steps[1].topCounter, 2);
    EXPECT_EQ(task.steps[1].topTotal, 2);
    EXPECT_EQ(task.steps[2].topMessage, "Complete");
}

TEST_F(SafariCacheTest, cancellingKeepsTheRowsSoFar) {
    SafariCache cache(file());
    for (int id = 1; id <= 20; ++id)
        cache.add({.id = id, .url = kUrl + std::to_string(id), .body = "body"});
    cache.close();
    test::CancelAfter task(5);
    reading.read(parseSafariCacheFile, file(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_EQ(reading.records().size(), 5U);
    EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
}

TEST_F(SafariCacheTest, cancellingAfterTheLastRowIsToldToo) {
    SafariCache(file()).add({.id = 1}).add({.id = 2, .url = "http://b/"});
    test::CancelAfter task(3);
    reading.read(parseSafariCacheFile, file(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_EQ(reading.records().size(), 2U);
}

} // namespace
} // namespace nv
