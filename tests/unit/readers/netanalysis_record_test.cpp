#include "base/Md5.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/DateFormat.h"
#include "unit/readers/NetAnalysisFixture.h"

namespace nv {
namespace {

using test::jetDate;
using test::NetAnalysisCase;
using test::NetAnalysisEvent;
using NetAnalysisRecord = test::NetAnalysisFixture;

NetAnalysisEvent wholeEvent() {
    return {.Type = "LEAK",
            .LastVisited = jetDate(2011, 3, 14, 9, 26, 53),
            .SecondaryDate = jetDate(2011, 3, 13, 1, 2, 3),
            .User = "mara",
            .Hits = 12,
            .InternetHistory = "http://www.harbour-news.example/a%20b.htm?q=1",
            .Hostname = "harbour",
            .URLFileName = "A1B2C3D4\\a%20b[1].htm",
            .FileExists = true,
            .FileOffset = 21760,
            .HistoryVersion = "5.2",
            .ContentData = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n",
            .Comment = "seen twice",
            .Status = "typed, Redirected",
            .SearchCriteria = "q=1"};
}

TEST_F(NetAnalysisRecord, hasEveryField) {
    clock.offset = std::chrono::hours(2);
    const URLClass &record = only(wholeEvent());
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.cacheType, "NetAnalysis");
    EXPECT_EQ(record.URL, "http://www.harbour-news.example/a%20b.htm?q=1");
    EXPECT_EQ(record.URLRawValue, record.URL);
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "q=1");
    EXPECT_EQ(record.host, "harbour");
    EXPECT_EQ(record.User, "mara");
    EXPECT_EQ(record.Visits, 12);
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2011-03-14T07:26:53Z");
    EXPECT_EQ(record.LastVisited, record.ActionDateUTC);
    EXPECT_EQ(isoUtc(record.OtherDate), "2011-03-12T23:02:03Z");
    EXPECT_EQ(record.OtherDateMeaning, "Other");
    EXPECT_EQ(record.Status, "LEAK, typed, Redirected");
    EXPECT_TRUE(record.Typed);
    EXPECT_EQ(record.MapFileOffset, 21760);
    EXPECT_EQ(record.HistoryVersion, "5.2");
    EXPECT_EQ(record.HistoryFilePath, file.string());
    EXPECT_EQ(record.MetaData, "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n");
    EXPECT_EQ(record.Notes, "seen twice");
    EXPECT_EQ(record.CacheFolderName, "C:\\Export\\Content.IE5");
    EXPECT_EQ(record.CacheFileRelativePath, "C:\\Export\\Content.IE5");
    EXPECT_EQ(record.RootPath, folder.path().string() + "/");
    EXPECT_EQ(record.CacheFileName, "A1B2C3D4\\a%20b[1].htm");
    EXPECT_EQ(record.CacheFileNameDecoded, "A1B2C3D4\\a b[1].htm");
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_TRUE(record.IsHistory);
    EXPECT_EQ(record.CacheFileNameRecordOffset + record.MetaDataRecordOffset, 0U);
    EXPECT_EQ(record.CacheFileSize, 0);
    EXPECT_FALSE(record.CacheFileCreatedGMTDOS.has() || record.CacheFileLastAccessed.has());
    EXPECT_FALSE(record.CacheFileRebuilt || record.Tag || record.IsWebPage);
    EXPECT_FALSE(record.IsValidHTMLTagObject || record.IsValidHTMLPictureObject);
    EXPECT_EQ(record.HTMLBody + record.Links + record.WebpageTitle, "");
}

TEST_F(NetAnalysisRecord, ofARowOfNullsIsKept) {
    const URLClass &record = only({.Type = ""});
    EXPECT_FALSE(record.ActionDateUTC.has() || record.OtherDate.has());
    EXPECT_EQ(record.OtherDateMeaning, "Other");
    EXPECT_EQ(record.Visits, -1); // 0 would say that nobody went there
    EXPECT_EQ(record.MapFileOffset, 0);
    EXPECT_EQ(record.URL + record.host + record.Status + record.MetaData + record.Notes, "");
    EXPECT_FALSE(record.CacheFileExists || record.Typed);
}

TEST_F(NetAnalysisRecord, joinsTypeAndStatus) {
    EXPECT_EQ(only({.Type = "URL", .Status = ""}).Status, "URL");
    EXPECT_EQ(only({.Type = "", .Status = "Redirected"}).Status, "Redirected");
    EXPECT_EQ(only({.Type = "URL", .Status = "Redirected"}).Status, "URL, Redirected");
}

TEST_F(NetAnalysisRecord, isTypedBySmallLettersInTheStatusAlone) {
    EXPECT_TRUE(only({.Status = "x typed"}).Typed);
    EXPECT_FALSE(only({.Status = "Orphan Typed"}).Typed);
    EXPECT_FALSE(only({.Type = "typed", .Status = ""}).Typed);
}

TEST_F(NetAnalysisRecord, takesTheHostOfTheUrlWhereTheCaseHasNone) {
    EXPECT_EQ(only({.InternetHistory = "http://www.a.example/b"}).host, "www.a.example");
}

TEST_F(NetAnalysisRecord, keepsTheUrlAsTheCaseHasIt) {
    const URLClass &record = only({.InternetHistory = "Visited: mara@http://a/%41"});
    EXPECT_EQ(record.URL, "Visited: mara@http://a/%41");
    EXPECT_EQ(record.URLRawValue, record.URL);
}

TEST_F(NetAnalysisRecord, hasDatesOfEveryYear) {
    const std::vector<std::pair<double, std::string>> dates = {
        {0, "1899-12-30T00:00:00Z"},
        {-0.25, "1899-12-30T06:00:00Z"}, // the fraction has no sign of its own
        {-1.25, "1899-12-29T06:00:00Z"},
        {1.75, "1899-12-31T18:00:00Z"},
        {-109205, "1601-01-01T00:00:00Z"},
        {-657434, "0100-01-01T00:00:00Z"},
        {jetDate(9999, 12, 31, 23, 59, 59), "9999-12-31T23:59:59Z"},
        {3e6, ""},
        {-1e300, ""},
    };
    for (const auto &[days, text] : dates)
        EXPECT_EQ(isoUtc(only({.LastVisited = days}).ActionDateUTC), text) << days;
}

TEST_F(NetAnalysisRecord, hasTextOfEveryScriptAndLength) {
    for (const std::string text :
         {"\u00fcmlaut", "\u0433\u0430\u0432\u0430\u043d\u044c", "\U0001F980 crab"}) {
        const URLClass &record = only({.User = text, .Comment = text});
        EXPECT_EQ(record.User, text);
        EXPECT_EQ(record.Notes, text);
    }
    for (const std::size_t length : {1, 62, 63, 64, 3998, 3999, 4000, 8000, 30000}) {
        const std::string text = std::string(length - 1, 'x') + "y";
        EXPECT_EQ(only({.ContentData = text}).MetaData, text) << length;
    }
}

TEST_F(NetAnalysisRecord, showsAZeroInsteadOfEndingThere) {
    EXPECT_EQ(only({.InternetHistory = std::string("http://a/\0b", 11)}).URL, "http://a/\u2400b");
}

TEST_F(NetAnalysisRecord, findsTheCachedFileBelowTheEvidence) {
    const auto cached = folder.write("Export/Content.IE5/A1B2C3D4/A b[1].htm", "<html>");
    folder.write("Cases/one.net",
                 NetAnalysisCase("C:\\export\\content.ie5")
                     .add({.URLFileName = "a1b2c3d4\\a b[1].htm", .FileExists = true})
                     .bytes());
    readAgain();
    ASSERT_EQ(sink.records.size(), 1U);
    const URLClass &record = sink.records[0];
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.RootPath + record.CacheFileRelativePath, cached.string());
    EXPECT_EQ(record.CacheFolderName, "C:\\export\\content.ie5");
    EXPECT_EQ(record.CacheFileSize, 6);
    EXPECT_EQ(record.CacheFileCreatedGMTDOS, Evidence({}).factsOf(cached).created);
    EXPECT_TRUE(record.CacheFileLastAccessed.has());
    EXPECT_EQ(record.RunTimeContentPath, cached);
}

TEST_F(NetAnalysisRecord, findsTheCachedFileBesideTheCase) {
    const auto cached = folder.write("Cases/cache/a.htm", "<html>");
    read(NetAnalysisCase("cache").add({.URLFileName = "a.htm", .FileExists = true}));
    EXPECT_EQ(sink.records.at(0).RunTimeContentPath, cached);
}

TEST_F(NetAnalysisRecord, looksForNoFileThatTheCaseLacked) {
    folder.write("Cases/cache/a.htm", "<html>");
    read(NetAnalysisCase("cache").add({.URLFileName = "a.htm", .FileExists = false}));
    EXPECT_FALSE(sink.records.at(0).CacheFileExists);
    EXPECT_EQ(sink.records.at(0).CacheFileSize, 0);
}

TEST_F(NetAnalysisRecord, neverLeadsOutOfTheEvidence) {
    folder.write("outside.htm", "<html>");
    base = folder.path() / "Cases";
    const std::vector<std::pair<std::string, std::string>> hostile = {
        {"..", "outside.htm"},     {".", "../outside.htm"},
        {"C:\\..", "outside.htm"}, {folder.path().string(), "outside.htm"},
        {"/etc", "passwd"},        {"\\\\server\\etc", "passwd"},
        {"", "/etc/passwd"}};
    for (const auto &[cachePath, name] : hostile) {
        read(NetAnalysisCase(cachePath).add({.URLFileName = name, .FileExists = true}));
        ASSERT_EQ(sink.records.size(), 1U);
        EXPECT_EQ(sink.records[0].RunTimeContentPath, "") << cachePath;
        EXPECT_TRUE(sink.records[0].CacheFileExists); // the case's word, not ours
    }
    base = "/"; // without a base folder there is no root that could stand for the case's "C:"
    read(NetAnalysisCase("/etc").add({.URLFileName = "passwd", .FileExists = true}));
    EXPECT_EQ(sink.records.at(0).RunTimeContentPath, "");
}

} // namespace
} // namespace nv
