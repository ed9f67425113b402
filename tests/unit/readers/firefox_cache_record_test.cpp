#include "base/Md5.h"
#include "unit/readers/FirefoxCacheFixture.h"

namespace nv {
namespace {

using namespace std::string_literals;
using test::FirefoxCache;
using testing::ElementsAre;
using testing::IsEmpty;

class FirefoxCacheRecord : public test::FirefoxCacheFixture {
  protected:
    UrlRecord recordOf(const test::FirefoxCacheEntry &entry) {
        read(FirefoxCache().add(entry));
        EXPECT_EQ(records().size(), 1u);
        return records().empty() ? UrlRecord() : records().front();
    }
};

TEST_F(FirefoxCacheRecord, hasEveryFieldOfAnEntryInABlockFile) {
    clock.offset = std::chrono::minutes(60);
    file.sourceFileID = SourceFileId{7};
    const UrlRecord record =
        recordOf({.key = "HTTP:http://user@www.harbour-news.example/a/index.html?x=1&y=2",
                  .body = std::string(300, 'b'),
                  .fetched = 1300000000,
                  .modified = 1299999999,
                  .expires = 1300003600,
                  .fetchCount = 3});
    const std::string map = folder.path() / "Cache/_CACHE_MAP_";
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.URL, "http://user@www.harbour-news.example/a/index.html?x=1&y=2");
    EXPECT_EQ(record.URLRawValue, record.URL);
    EXPECT_EQ(record.host, "www.harbour-news.example");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "x=1&y=2");
    EXPECT_EQ(record.User, "http://user");
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_EQ(record.CacheFileName, "index.html?x=1&y=2");
    EXPECT_EQ(record.CacheFileNameDecoded, "index.html?x=1&y=2");
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2011, 3, 13, 7, 6, 40}));
    EXPECT_EQ(record.ActionDateLocal, Date::fromCivil({2011, 3, 13, 8, 6, 40}));
    EXPECT_EQ(record.OtherDate, Date::fromCivil({2011, 3, 13, 7, 6, 39}));
    EXPECT_EQ(record.OtherDateMeaning, "Last Modified");
    EXPECT_FALSE(record.ExpiryDate.has());
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.Visits, 3);
    EXPECT_EQ(record.cacheType, "Firefox Cache");
    EXPECT_EQ(record.HistoryFilePath, map);
    EXPECT_EQ(record.HistoryVersion, "3.0");
    EXPECT_EQ(record.RootPath, folder.path().string() + "/");
    EXPECT_EQ(record.CacheRootPath, "Cache");
    EXPECT_EQ(record.CacheFileRelativePath, "Cache");
    EXPECT_EQ(record.CacheFolderName, "");
    EXPECT_EQ(record.CacheFileSize, 300);
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.DataBlockFile, "1");
    EXPECT_EQ(record.DataBlockFileOffset, 0x1000);
    EXPECT_EQ(record.MapFileOffset, 0x1000);
    EXPECT_EQ(record.MetaDataRecordOffset, 1u);
    EXPECT_EQ(record.CacheFileNameRecordOffset, 0u);
    EXPECT_EQ(record.MetaData, "request-method GET response-head HTTP/1.1 200 OK\r\n"
                               "Content-Type: text/html\r\n ");
    EXPECT_FALSE(record.IsValidHTMLTagObject); // a query stands after the extension
    EXPECT_FALSE(record.IsHistory || record.IsCookie || record.CacheFileRebuilt);
    EXPECT_EQ(record.HTMLBody + record.Notes + record.Category + record.CacheFileExt, "");
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(result.passedOver, IsEmpty());
}

TEST_F(FirefoxCacheRecord, ofASeparateFileIsNamedByItsHashWithAnOffsetOfZero) {
    const UrlRecord record =
        recordOf({.key = "HTTP:http://host/", .body = "x", .hash = 0xF3D3A001, .bodyFile = 0});
    EXPECT_EQ(record.DataBlockFile, "F3D3A001");
    EXPECT_EQ(record.DataBlockFileOffset, 0);
    EXPECT_EQ(record.RecordSize, 0u);
    // Size and generation stand where a block's number would: taken as one, in blocks of 64.
    EXPECT_EQ(record.MapFileOffset, 0x1000 + 0x101 * 64);
}

TEST_F(FirefoxCacheRecord, hasTheOffsetsOfItsBlocks) {
    FirefoxCache cache;
    for (const std::size_t size : {300, 200, 1100, 3000, 5000, 16000})
        cache.add({.key = "HTTP:http://host/", .body = std::string(size, 'b')});
    read(cache);
    ASSERT_EQ(records().size(), 6u);
    std::vector<std::string> places;
    for (const UrlRecord &record : records())
        places.push_back(fmt::format("{} {} {} {}", record.DataBlockFile,
                                     record.DataBlockFileOffset, record.MapFileOffset,
                                     record.RecordSize));
    // The size is a block short: the two bits are taken for the number of blocks.
    EXPECT_THAT(places, ElementsAre("1 4096 4096 256", "1 5120 5120 0", "2 4096 4096 1024",
                                    "2 6144 6144 2048", "3 4096 4096 4096", "3 12288 12288 12288"));
}

TEST_F(FirefoxCacheRecord, losesTheClientBeforeAPlainUrlOnly) {
    const auto urlOf = [this](std::string key) { return recordOf({.key = std::move(key)}).URL; };
    EXPECT_EQ(urlOf("HTTP:http://host/"), "http://host/");
    EXPECT_EQ(urlOf("HTTP:http://host/?HTTP:http://other/"), "http://host/?http://other/");
    EXPECT_EQ(urlOf("HTTP:https://host/"), "HTTP:https://host/");
    EXPECT_EQ(urlOf("HTTP:id=4&uri=http://host/"), "HTTP:id=4&uri=http://host/");
    EXPECT_EQ(urlOf("http:http://host/"), "http:http://host/");
    EXPECT_EQ(urlOf("HTTP:http://host/a%20b"), "http://host/a%20b");
}

TEST_F(FirefoxCacheRecord, hasAUrlWithoutTheClosingZero) {
    EXPECT_EQ(recordOf({.key = "HTTP:http://host/"}).URL, "http://host/");
    EXPECT_EQ(recordOf({.key = "HTTP:http://host/", .closingZero = false}).URL, "http://host/");
    // A zero within would hide what stands after it.
    EXPECT_EQ(recordOf({.key = "HTTP:http://host/\0x"s}).URL, "http://host/ x");
}

TEST_F(FirefoxCacheRecord, isStoredWithoutAUrl) {
    const UrlRecord record = recordOf({.key = "", .closingZero = false});
    EXPECT_EQ(record.URL, "");
    EXPECT_EQ(record.host, "");
    EXPECT_EQ(record.MetaData.substr(0, 14), "request-method");
    EXPECT_EQ(recordOf({.key = ""}).URL, "");
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheRecord, isStoredWithoutHeaders) {
    EXPECT_EQ(recordOf({.key = "HTTP:http://host/", .headers = ""}).MetaData, "");
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheRecord, readsTextAsWindows1252) {
    const UrlRecord record =
        recordOf({.key = "HTTP:http://host/caf\xE9", .headers = "X: \x80\x81\0"s});
    EXPECT_EQ(record.URL, "http://host/caf\u00E9");
    EXPECT_EQ(record.MetaData, "X: \u20AC\u0081 ");
}

// What a picture or script is comes out when its body is looked at; the headers don't decide.
TEST_F(FirefoxCacheRecord, leavesAsAWebPageWhateverItIs) {
    for (const char *type : {"text/html", "image/gif", "text/javascript"}) {
        const UrlRecord record =
            recordOf({.key = "HTTP:http://host/a.gif", .headers = test::cacheHeaders(type)});
        EXPECT_TRUE(record.IsWebPage) << type;
        EXPECT_FALSE(record.IsPicture) << type;
    }
}

TEST_F(FirefoxCacheRecord, saysWhetherATagMayStandForIt) {
    EXPECT_TRUE(recordOf({.key = "HTTP:http://host/menu.js"}).IsValidHTMLTagObject);
    EXPECT_TRUE(recordOf({.key = "HTTP:http://host/a.gif"}).IsValidHTMLPictureObject);
    EXPECT_FALSE(recordOf({.key = "HTTP:http://host/a.gif"}).IsValidHTMLTagObject);
}

TEST_F(FirefoxCacheRecord, hasTheFirstAndTheLastDate) {
    UrlRecord record = recordOf({.key = "HTTP:http://host/", .fetched = 1, .modified = 0x7FFFFFFF});
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({1970, 1, 1, 0, 0, 1}));
    EXPECT_EQ(record.OtherDate, Date::fromCivil({2038, 1, 19, 3, 14, 7}));
    record = recordOf({.key = "HTTP:http://host/", .fetched = 0x80000000, .modified = 0xFFFFFFFF});
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2038, 1, 19, 3, 14, 8}));
    EXPECT_EQ(record.OtherDate, Date::fromCivil({2106, 2, 7, 6, 28, 15}));
}

TEST_F(FirefoxCacheRecord, hasNoDateWhereNoneWasSet) {
    const UrlRecord record = recordOf({.key = "HTTP:http://host/", .fetched = 0, .modified = 0});
    EXPECT_FALSE(record.ActionDateUTC.has());
    EXPECT_FALSE(record.ActionDateLocal.has());
    EXPECT_FALSE(record.OtherDate.has());
}

TEST_F(FirefoxCacheRecord, keepsNumbersOfTheHighestBit) {
    FirefoxCache cache;
    cache.add({.key = "HTTP:http://host/", .fetchCount = 0xFFFFFFFE, .hash = 0xFFFFFFFF});
    test::put32be(cache.blocks[1], cache.metaDataOffset(1) + 0x18, 0xFFFFFFFF);
    read(cache);
    ASSERT_EQ(records().size(), 1u);
    EXPECT_EQ(records()[0].Visits, 0xFFFFFFFE);
    EXPECT_EQ(records()[0].CacheFileSize, 0xFFFFFFFF);
}

TEST_F(FirefoxCacheRecord, hasTheMapsFolderOutsideOfTheBaseFolderToo) {
    base = "/somewhere/else";
    const UrlRecord record = recordOf({.key = "HTTP:http://host/"});
    EXPECT_EQ(record.RootPath, "/");
    EXPECT_EQ(record.RootPath + record.CacheRootPath, folder.path() / "Cache");
    EXPECT_EQ(record.CacheFileRelativePath, record.CacheRootPath);
}

TEST_F(FirefoxCacheRecord, hasAnEmptyFolderForAMapInTheBaseFolderItself) {
    base = folder.path() / "Cache";
    const UrlRecord record = recordOf({.key = "HTTP:http://host/"});
    EXPECT_EQ(record.RootPath, base.string() + "/");
    EXPECT_EQ(record.CacheRootPath, "");
}

} // namespace
} // namespace nv
