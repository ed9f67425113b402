#include "base/Md5.h"
#include "readers/ie/IndexRecord.h"
#include "support/TestDoubles.h"
#include "support/builders/IndexDat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::fileTime;

const Date kFirst = Date::fromCivil({2011, 6, 15, 14, 30, 0});
const Date kSecond = Date::fromCivil({2011, 6, 15, 12, 30, 0});

/// The bytes of one record, cut out of an index.
std::string bytesOf(const test::IndexRecord &record) {
    test::IndexDat index;
    const std::size_t at = index.addUnreferenced(record);
    return index.bytes().substr(at);
}

test::IndexRecord dated(const std::string &url) {
    return {.url = url,
            .firstDate = fileTime(2011, 6, 15, 14, 30, 0),
            .secondDate = fileTime(2011, 6, 15, 12, 30, 0)};
}

std::optional<UrlRecord> parse(const std::string &bytes, HistoryFileType type,
                               const FolderList &folders = {},
                               DeletedFlag deleted = DeletedFlag::no, int offsetMinutes = 0) {
    HistoryFile file;
    file.historyFileType = type;
    file.fullPath = "/evidence/index.dat";
    file.version = "5.2";
    file.sourceFileID = SourceFileId{7};
    test::FixedClock clock;
    clock.offset = std::chrono::minutes(offsetMinutes);
    return parseIEURL(viewOf(bytes), file, 4711, folders, deleted, clock);
}

UrlRecord parsed(const test::IndexRecord &record, HistoryFileType type,
                 const FolderList &folders = {}) {
    return parse(bytesOf(record), type, folders).value();
}

UrlRecord history(const std::string &url) {
    return parsed({.url = url}, HistoryFileType::ieHistory);
}

TEST(ParseIEURL, takesWhatAllKindsHaveInCommon) {
    const UrlRecord record = parsed({.url = "Visited: user@http://host:80/a%20b?c=d", .hits = 9},
                                    HistoryFileType::ieHistory);
    EXPECT_EQ(record.URLRawValue, "Visited: user@http://host:80/a%20b?c=d");
    EXPECT_EQ(record.URL, "http://host:80/a b?c=d");
    EXPECT_EQ(record.HashedURL, hashOfUrl("http://host:80/a b?c=d"));
    EXPECT_EQ(record.host, "host");
    EXPECT_EQ(record.User, "user");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "c=d");
    EXPECT_EQ(record.Visits, 9);
    EXPECT_EQ(record.RecordSize, 256U);
    EXPECT_EQ(record.HistoryFilePath, "/evidence/index.dat");
    EXPECT_EQ(record.HistoryVersion, "5.2");
    EXPECT_EQ(record.MapFileOffset, 4711);
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
}

TEST(ParseIEURL, givesNothingForNoBytesAndOtherSignatures) {
    EXPECT_FALSE(parse("", HistoryFileType::ieHistory));
    for (const char *signature : {"url ", "Redr", "HASH", "URLx"})
        EXPECT_FALSE(parse(bytesOf({.signature = signature, .url = "http://host/"}),
                           HistoryFileType::ieHistory))
            << signature;
    for (const char *signature : {"URL ", "LEAK", "FILE"})
        EXPECT_TRUE(parse(bytesOf({.signature = signature, .url = "http://host/"}),
                          HistoryFileType::ieHistory))
            << signature;
}

TEST(ParseIEURL, givesHostsForWebAndLocalFileUrlsOnly) {
    EXPECT_EQ(history("https://host/").host, "host");
    EXPECT_EQ(history("HTTP://Host/").host, "Host");
    EXPECT_EQ(history("ftp://host/").host, "");
    EXPECT_EQ(history("Visited: user@file:///C:/page.htm").URL, "file:///C:/page.htm");
    EXPECT_EQ(history(":2013031020130311: -@:Host: www.example.com").URL, "www.example.com");
    EXPECT_EQ(history(":2013031020130311: -@:Host: www.example.com").User, "-");
}

TEST(ParseIEURL, readsTheUrlFromItsFixedPlaceAndNotFromTheRecordsOwnOffset) {
    std::string bytes = bytesOf({.url = "http://host/", .headers = "HTTP/1.1 200 OK"});
    test::put32(bytes, 0x34, 0x75);
    EXPECT_EQ(parse(bytes, HistoryFileType::ieHistory)->URL, "http://host/");
}

TEST(ParseIEURL, decodesTextAsWindows1252AndEndsUrlsWithTheRecord) {
    EXPECT_EQ(history("http://host/caf\xE9?\x80").URLRawValue, "http://host/caf\u00e9?\u20ac");
    EXPECT_EQ(history("http://host/%E2%82%AC").URL, "http://host/\u20ac");
    std::string bytes = bytesOf({.url = "http://host/"});
    bytes.replace(0x68, 24, std::string(24, 'x'));
    EXPECT_EQ(parse(bytes, HistoryFileType::ieHistory)->URL, std::string(24, 'x'));
}

struct KindCase {
    HistoryFileType type;
    std::string cacheType;
    std::string action;
    bool hasLinks;
    Date actionDate;
    Date otherDate;
    std::string otherDateMeaning;
    bool isHistory;
};

TEST(ParseIEURL, setsWhatTheKindOfIndexMeans) {
    using enum HistoryFileType;
    const Date noDate;
    const std::vector<KindCase> cases = {
        {HistoryFileType::none, "", "", true, noDate, noDate, "", true},
        {ieHistory, "IE History", "Visited", true, kSecond, kFirst, "Last Visited (GMT)", true},
        {ieDaily, "IE Daily", "Visited", true, kSecond, kFirst, "Last Visited (GMT)", true},
        {ieCookies, "IE Cookie", "Visited", true, kSecond, noDate, "", true},
        {importedBinary, "Imported Binary", "Visited", true, kSecond, noDate, "", true},
        {ieWeekly, "IE Weekly", "Visited", false, kFirst, kSecond, "File Created (GMT)", true},
        {ieCache, "IE Cache", "Visited", false, kSecond, kFirst, "Server Modified (GMT)", false},
        {ieIndexByCommandLine, "", "", false, noDate, noDate, "", false},
        {netAnalysis, "", "", false, noDate, noDate, "", false},
        {histEx, "Unallocated", "Visited", true, kSecond, noDate, "", true},
        {histExIndex, "Unallocated", "Visited", true, kSecond, noDate, "", true},
    };
    for (const KindCase &kind : cases) {
        SCOPED_TRACE(static_cast<int>(kind.type));
        const UrlRecord record = parsed(dated("http://host/"), kind.type);
        EXPECT_EQ(record.cacheType, kind.cacheType);
        EXPECT_EQ(record.Action, kind.action);
        EXPECT_EQ(record.Links, kind.hasLinks ? "http://host/;" : "");
        EXPECT_EQ(record.ActionDateUTC, kind.actionDate);
        EXPECT_EQ(record.OtherDate, kind.otherDate);
        EXPECT_EQ(record.OtherDateMeaning, kind.otherDateMeaning);
        EXPECT_EQ(record.IsHistory, kind.isHistory);
    }
}

TEST(ParseIEURL, appliesTheMachinesZoneToWeeklyIndexesOnly) {
    const std::string bytes = bytesOf(dated("http://host/"));
    const UrlRecord weekly =
        parse(bytes, HistoryFileType::ieWeekly, {}, DeletedFlag::no, 120).value();
    EXPECT_EQ(weekly.ActionDateLocal, kFirst);
    EXPECT_EQ(weekly.ActionDateUTC, Date::fromCivil({2011, 6, 15, 12, 30, 0}));
    EXPECT_EQ(weekly.OtherDate, Date::fromCivil({2011, 6, 15, 14, 30, 0}));
    const UrlRecord daily =
        parse(bytes, HistoryFileType::ieDaily, {}, DeletedFlag::no, 120).value();
    EXPECT_EQ(daily.ActionDateUTC, kSecond);
    EXPECT_EQ(daily.OtherDate, kFirst);
    EXPECT_FALSE(daily.ActionDateLocal.has());
}

TEST(ParseIEURL, takesAFileTimeOfZeroForNoDate) {
    for (const auto type : {HistoryFileType::ieHistory, HistoryFileType::ieWeekly}) {
        const UrlRecord record =
            parse(bytesOf({.url = "http://host/"}), type, {}, DeletedFlag::no, 120).value();
        EXPECT_FALSE(record.ActionDateUTC.has());
        EXPECT_FALSE(record.ActionDateLocal.has());
        EXPECT_FALSE(record.OtherDate.has());
    }
}

Date createdOf(std::uint64_t value) {
    return parsed({.url = "http://host/", .created = value}, HistoryFileType::ieHistory)
        .CacheFileCreatedGMTDOS;
}

TEST(ParseIEURL, readsTheThirdDateAsFileTimeOrElseAsDosDate) {
    EXPECT_EQ(createdOf(fileTime(2011, 6, 15, 12, 30, 0)), kSecond);
    EXPECT_EQ(createdOf(fileTime(1980, 1, 1)), Date::fromCivil({1980, 1, 1}));
    EXPECT_EQ(createdOf(test::dosDate(2011, 6, 15, 12, 30, 0)), kSecond);
    // The four bytes after a DOS date hold other data.
    EXPECT_EQ(createdOf(0x0000001200000000 + test::dosDate(2011, 6, 15, 12, 30, 0)), kSecond);
    EXPECT_FALSE(createdOf(0).has());
    EXPECT_FALSE(createdOf(0xFFFFFFFFFFFFFFFF).has());
    EXPECT_FALSE(createdOf(fileTime(2102, 1, 1) & ~0xFFFFFFFFULL).has());
}

test::IndexRecord cached() {
    return {.url = "http://host/a.js",
            .fileSize = 0xFFFFFFFF,
            .folder = 1,
            .fileName = "a%5B1%5D.js",
            .headers = "HTTP/1.1 200 OK\r\n\r\n~U:user\r\n"};
}

TEST(ParseIEURL, readsTheCacheFieldsOfACacheIndex) {
    const UrlRecord record = parsed(cached(), HistoryFileType::ieCache, {"AAAA", "BBBB"});
    EXPECT_EQ(record.CacheFolderName, "BBBB");
    EXPECT_EQ(record.CacheFileName, "a%5B1%5D.js");
    EXPECT_EQ(record.CacheFileNameDecoded, "a[1].js");
    EXPECT_EQ(record.CacheFileNameRecordOffset, 0x79U);
    EXPECT_EQ(record.CacheFileSize, -1); // signed, as all numbers of the format
    EXPECT_EQ(record.MetaData, "HTTP/1.1 200 OK\r\n\r\n~U:user\r\n");
    EXPECT_EQ(record.MetaDataRecordOffset, 0x85U);
    EXPECT_EQ(record.Status, "URL ");
    EXPECT_TRUE(record.IsValidHTMLTagObject);
    EXPECT_FALSE(record.IsValidHTMLPictureObject);
    EXPECT_EQ(parsed({.url = "http://h/a.txt", .fileName = "a.txt"}, HistoryFileType::ieCache)
                  .CacheFileNameDecoded,
              "");
}

TEST(ParseIEURL, readsNoCacheFieldsInOtherIndexes) {
    const UrlRecord record = parsed(cached(), HistoryFileType::ieHistory, {"AAAA", "BBBB"});
    EXPECT_EQ(record.CacheFolderName + record.CacheFileName + record.MetaData, "");
    EXPECT_EQ(record.CacheFileSize, 0);
    EXPECT_FALSE(record.IsValidHTMLTagObject);
}

TEST(ParseIEURL, keepsRecordsWithoutFolderFileOrHeaders) {
    const UrlRecord record = parsed({.url = "http://host/a.GIF"}, HistoryFileType::ieCache, {"AA"});
    EXPECT_EQ(record.CacheFolderName, "");
    EXPECT_EQ(record.CacheFileName, "");
    EXPECT_EQ(record.MetaData, "");
    EXPECT_TRUE(record.IsValidHTMLPictureObject);
}

TEST(ParseIEURL, emptiesHeadersThatAreNone) {
    const auto headers = [](const std::string &text) {
        return parsed({.url = "http://host/", .headers = text}, HistoryFileType::ieCache).MetaData;
    };
    EXPECT_EQ(headers("http/1.0 304"), "http/1.0 304");
    EXPECT_EQ(headers("Content-Type: x"), "");
    EXPECT_EQ(headers("abcd"), "");
    EXPECT_EQ(headers("abc"), "abc"); // too short to be told from headers
    std::string bytes = bytesOf(cached());
    test::put32(bytes, 0x44, 0xFFFFFFFF);
    EXPECT_EQ(parse(bytes, HistoryFileType::ieCache)->MetaData, "");
}

TEST(ParseIEURL, throwsForFieldsOutsideOfTheRecord) {
    for (const std::uint32_t offset : {0xFFFFFFFFU, 0x7FFFFFFFU}) {
        std::string bytes = bytesOf(cached());
        test::put32(bytes, 0x3C, offset);
        EXPECT_THROW(parse(bytes, HistoryFileType::ieCache), OutOfBytes);
        EXPECT_TRUE(parse(bytes, HistoryFileType::ieHistory));
    }
    const std::string bytes = bytesOf(cached());
    EXPECT_THROW(parse(bytes.substr(0, 0x60), HistoryFileType::ieHistory), OutOfBytes);
    EXPECT_THROW(parse(bytes.substr(0, 3), HistoryFileType::ieHistory), OutOfBytes);
}

TEST(ParseIEURL, tellsDeletedRecordsOutsideOfCachesOnly) {
    const std::string leak = bytesOf({.signature = "LEAK", .url = "http://host/"});
    EXPECT_EQ(parse(leak, HistoryFileType::ieHistory)->Status, "URL");
    EXPECT_EQ(parse(leak, HistoryFileType::histEx, {}, DeletedFlag::yes)->Status, "Deleted");
    EXPECT_EQ(parse(leak, HistoryFileType::ieCache, {}, DeletedFlag::yes)->Status, "LEAK");
}

TEST(ParseIEURL, readsRedirects) {
    test::IndexDat index;
    const std::size_t at = index.addRedirect("http://host/?to=%20http://other/");
    const std::string bytes = index.bytes().substr(at);
    for (const auto type :
         {HistoryFileType::ieHistory, HistoryFileType::ieWeekly, HistoryFileType::ieCache}) {
        const UrlRecord record = parse(bytes, type).value();
        EXPECT_EQ(record.URL, "http://host/?to=%20http://other/"); // as it stands
        EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
        EXPECT_EQ(record.Status, "REDR");
        EXPECT_EQ(record.Action, "Redirected");
        EXPECT_EQ(record.cacheType, "IE Cache");
        EXPECT_EQ(record.MapFileOffset, 4711);
        EXPECT_FALSE(record.IsHistory || record.ActionDateUTC.has());
    }
    EXPECT_EQ(parse(bytes, HistoryFileType::ieCookies)->cacheType, "");
    EXPECT_EQ(parse(bytes, HistoryFileType::histEx, {}, DeletedFlag::yes)->Status, "REDR");
}

} // namespace
} // namespace nv
