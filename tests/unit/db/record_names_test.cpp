#include "db/records/RecordNames.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

UrlRecord named(const std::string &url, const std::string &cacheFileExt = {}) {
    UrlRecord record;
    record.URL = url;
    record.CacheFileExt = cacheFileExt;
    orderNames(record);
    return record;
}

TEST(RecordNames, giveTheFileNameAtTheEndOfAUrlWithItsExtension) {
    const UrlRecord record = named("http://host/folder/Picture.PNG");
    EXPECT_EQ(record.URLFileName, "Picture.PNG");
    EXPECT_EQ(record.CacheFileExt, "png");
    EXPECT_EQ(record.URLFileExt, "png");
    EXPECT_EQ(named("file:\\C:\\docs\\notes.doc").URLFileName, "notes.doc");
}

TEST(RecordNames, takeNothingFromTheTailOfAHostName) {
    for (const char *url : {"http://www.example.com", "http://a.b.co.uk", "http://x.com",
                            "http://host/setup.com", "http://www.army.MIL"}) {
        const UrlRecord record = named(url);
        EXPECT_EQ(record.URLFileName, "") << url;
        EXPECT_EQ(record.CacheFileExt, "") << url;
        EXPECT_EQ(record.URLFileExt, "") << url;
    }
    EXPECT_EQ(named("http://www.example.com", "htm").URLFileExt, "htm");
}

TEST(RecordNames, takeAReadersFileNameAwayThatIsTheHost) {
    const auto nameLeft = [](const std::string &url, const std::string &name) {
        UrlRecord record;
        record.URL = url;
        record.URLFileName = name;
        orderNames(record);
        return record.URLFileName;
    };
    EXPECT_EQ(nameLeft("https://example.com", "example.com"), "");
    EXPECT_EQ(nameLeft("http://www.army.MIL", "www.army.MIL"), "");
    EXPECT_EQ(nameLeft("http://host/a.gif", "a.gif"), "a.gif") << "short, but a file's";
    EXPECT_EQ(nameLeft("example.com", "session"), "session") << "a cookie's own name";
}

TEST(RecordNames, wantMoreThanFiveCharactersAndAPoint) {
    EXPECT_EQ(named("http://host/a.gif").URLFileName, "");
    EXPECT_EQ(named("http://host/a.gif").CacheFileExt, "");
    EXPECT_EQ(named("http://host/a.gif").URLFileExt, "gif"); // from the URL all the same
    EXPECT_EQ(named("http://host/ab.gif").URLFileName, "ab.gif");
    EXPECT_EQ(named("http://host/folder").URLFileName, "");
    EXPECT_EQ(named("http://host/").URLFileName, "");
    EXPECT_EQ(named("").URLFileName, "");
}

TEST(RecordNames, takeNoTailThatLooksLikeAUrl) {
    EXPECT_EQ(named("http://host/http.server.gif").URLFileName, "");
    EXPECT_EQ(named("http://host/res:shdoclc.dll").URLFileName, "");
    EXPECT_EQ(named("http://host/xres:shdoclc.dll").URLFileName, "xres:shdoclc.dll");
    EXPECT_EQ(named("xres:shdoclc.dll").URLFileName, "") << "no slash, no tail";
}

TEST(RecordNames, keepTheCachedFilesExtensionWhereTheUrlHasNone) {
    const UrlRecord record = named("http://host/view.php?id=7", "htm");
    EXPECT_EQ(record.URLFileName, "view.php?id=7");
    EXPECT_EQ(record.CacheFileExt, "htm");
    EXPECT_EQ(record.URLFileExt, "htm");
    EXPECT_EQ(named("http://host/index.php", "htm").CacheFileExt, "php"); // the URL goes first
}

TEST(RecordNames, storeTheUrlTwiceWithoutARawValue) {
    EXPECT_EQ(named("http://host/").URLRawValue, "http://host/");
    UrlRecord record;
    record.URL = "http://host/";
    record.URLRawValue = "Visited: user@http://host/";
    orderNames(record);
    EXPECT_EQ(record.URLRawValue, "Visited: user@http://host/");
}

TEST(RecordNames, markScriptsAndStylesheetsAsIngredients) {
    EXPECT_TRUE(named("http://host/script.js").IsJavascript);
    EXPECT_TRUE(named("http://host/style.css").IsJavascript);
    EXPECT_TRUE(named("http://host/x", "JS").IsJavascript);
    EXPECT_FALSE(named("http://host/page.html").IsJavascript);
}

TEST(RecordNames, makePicturesByTheExtensionInEitherCase) {
    EXPECT_TRUE(named("http://host/x", "JPG").IsPicture);
    EXPECT_FALSE(named("http://host/x", "JPG").IsWebPage);
    EXPECT_FALSE(named("http://host/a.gif").IsPicture); // too short for a name of its own
    EXPECT_FALSE(named("http://host/picture.ico").IsPicture);
}

UrlRecord pageWith(const std::string &extension, bool isPicture) {
    UrlRecord record;
    record.URL = "http://host/x";
    record.CacheFileExt = extension;
    record.IsPicture = isPicture;
    record.IsWebPage = true;
    orderNames(record);
    return record;
}

TEST(RecordNames, takeThePageFlagFromFilesThatAreNone) {
    EXPECT_FALSE(pageWith("gif", false).IsWebPage);
    EXPECT_FALSE(pageWith("swf", false).IsWebPage);
    EXPECT_FALSE(pageWith("txt", false).IsPicture);
    EXPECT_TRUE(pageWith("html", false).IsWebPage);
}

TEST(RecordNames, leaveAPictureOfTheReaderAsItIs) {
    const UrlRecord record = pageWith("txt", true);
    EXPECT_TRUE(record.IsPicture);
    EXPECT_TRUE(record.IsWebPage);
}

TEST(RecordNames, changeNothingTheSecondTime) {
    for (const char *url : {"http://host/Picture.PNG", "http://www.example.com",
                            "http://host/view.php?id=7", "http://host/a.gif"}) {
        UrlRecord once = named(url, "txt");
        UrlRecord twice = once;
        orderNames(twice);
        EXPECT_EQ(once.URLFileName, twice.URLFileName);
        EXPECT_EQ(once.URLFileExt, twice.URLFileExt);
        EXPECT_EQ(once.CacheFileExt, twice.CacheFileExt);
        EXPECT_EQ(once.IsPicture, twice.IsPicture);
    }
}

TEST(OrderNames, keepsTheNameOfACookieWhoseUrlIsABareHost) {
    UrlRecord record;
    record.URL = "adap.tv";
    record.URLFileName = "audienceData";
    orderNames(record);
    EXPECT_EQ(record.URLFileName, "audienceData");
    EXPECT_EQ(record.CacheFileExt, "");
}

} // namespace
} // namespace nv
