#include "base/Files.h"
#include "reports/SafePage.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kGuard = "<meta http-equiv=\"Content-Security-Policy\"";

TEST(SafePage, thePolicyComesBeforeAllThatCouldLoad) {
    EXPECT_TRUE(guardedPage("<img src=x>").starts_with(kGuard));
    EXPECT_TRUE(guardedPage("").starts_with(kGuard));
    EXPECT_TRUE(guardedPage(" <!doctype html>\n<html>").starts_with(" <!doctype html>" + kGuard));
    EXPECT_TRUE(guardedPage("<!-- a --><!doctype html>").starts_with(kGuard));
    EXPECT_TRUE(guardedPage("<!doctype").starts_with(kGuard));
}

TEST(SafePage, pagesDoNotMoveOnByThemselves) {
    for (const char *page : {"<meta http-equiv=refresh content='0;url=http://live/'>",
                             "<meta HTTP-EQUIV = \"Refresh\" content=1>",
                             "<meta http-equiv=\"&#82;efresh\">", "<meta http-equiv='set-cookie'>"})
        EXPECT_THAT(guardedPage(page).substr(kGuard.size()), HasSubstr("void-equiv")) << page;
    EXPECT_THAT(guardedPage("<meta http-equiv=\"Content-Type\" content=\"text/html\">"),
                Not(HasSubstr("void-equiv")));
}

TEST(SafePage, addressesOfFileServersBecomeOnesOfTheWeb) {
    EXPECT_THAT(guardedPage("<img src=\"//host/a.gif\">"), HasSubstr("src=\"http://host/a.gif\""));
    EXPECT_THAT(guardedPage("<img src= \\\\host\\a.gif>"), HasSubstr("src=http://host\\a.gif"));
    EXPECT_THAT(guardedPage("url(//host/a)"), HasSubstr("url(http://host/a)"));
    EXPECT_THAT(guardedPage("<img src='file://host/a'>"), HasSubstr("'void://host/a'"));
    EXPECT_THAT(guardedPage("<img src=\"/a.gif\"> http://host/"),
                AllOf(HasSubstr("src=\"void:/a.gif\""), HasSubstr(" http://host/")));
}

TEST(SafePage, nothingIsFetchedFromOutsideOfTheFolder) {
    for (const char *page :
         {"<img src=\"/etc/a.gif\">", "<img src='../0000001.NVR/a.gif'>", "<IMG SRC = ../a.gif>",
          "<body background=/a.gif>", "<link rel=stylesheet href=' /a.css'>",
          "<style>a{background:url(/a.gif)}</style>", "<p style=\"background:url('/a.gif')\">",
          "<style>@import \"/a.css\"</style>", "<img src=c:/a.gif>", "<img src='a/%2e%2e/b'>",
          "<img src='&#47;&#47;host/a'>", "<img src='/\t/host/a'>", "<image xlink:href=/a.gif>",
          "<img src='0000001../../a'>"})
        EXPECT_THAT(guardedPage(page).substr(kGuard.size()), HasSubstr("void:")) << page;
    EXPECT_THAT(guardedPage("<img srcset='a.gif 1x, //host/a 2x' src=0000001.gif>"),
                HasSubstr("<img void-srcset='a.gif 1x, //host/a 2x' src=0000001.gif>"));
    for (const char *page :
         {"<img src=\"0000012.gif\">", "<img src=pic/a.gif>", "<a href=\"http://host/?a=1&b=2\">",
          "<a href='#top'>", "<a href='mailto:a@b'>", "<img src=data:image/gif;base64,R0lGOD//>",
          "<img src=''>", "<p>(/etc) a=/b \"/c\" data-src=/d</p>", "<br class='a'/>",
          "<style>a{background:url(0000012.gif)}</style>", "url", "src=", "@import", "="})
        EXPECT_TRUE(guardedPage(page).ends_with(page)) << page;
}

TEST(SafePage, aPageOfOneWordIsReadInTime) {
    std::string page;
    for (int i = 0; i < 200'000; ++i)
        page += "src=";
    EXPECT_THAT(guardedPage(page), HasSubstr("src=void:src="));
}

TEST(SafePage, noHostIsLookedUpAheadOfThePolicy) {
    for (const char *page :
         {"<iframe src=\"http://live/\">", "<IFRAME title=\"src=0000001.htm > \" src=http://live/>",
          "<frame name='a' src='&#104;ttp://live/'>", "<iframe/src=//live/>", "<iframe>", "<iframe",
          "<iframe src=\"00000012\">", "<link rel=\"DNS-prefetch\" href=x>",
          "<link href=x rel=pre&#99;onnect>", "<link rel=x rel=stylesheet>"})
        EXPECT_THAT(guardedPage(page), HasSubstr("<void-")) << page;
    for (const char *page :
         {"<iframe src=\"0000001.htm\">", "<frame name=\"a>b\" SRC = '0000001.htm'>",
          "<frameset rows=1><frame src=0000001>", "<link href=x rel=\"StyleSheet\">",
          "<link rel='shortcut icon' href=x>"})
        EXPECT_TRUE(guardedPage(page).ends_with(page)) << page;
}

TEST(SafePage, pagesOf16BitsBecomeReadable) {
    const std::string wide("\xFF\xFE<\0b\0>\0", 8);
    const std::string guarded = guardedPage(wide);
    EXPECT_TRUE(guarded.starts_with("\xEF\xBB\xBF" + kGuard));
    EXPECT_TRUE(guarded.ends_with("<b>"));
}

TEST(SafePage, stylesFetchNothingFromElsewhere) {
    const test::TempFolder folder;
    const auto page = folder.write("0000001.htm", "");
    const auto style = folder.write("0000002.CSS", "a{background:url(//host/a)} b{content:'c'} "
                                                   "d{background:url(0000003.gif)}");
    guardFolder(page, Scripts::keep);
    EXPECT_EQ(std::string(ByteView(readWhole(style)).raw()),
              "a{background:url(http://host/a)} b{content:'c'} d{background:url(0000003.gif)}");
}

TEST(SafePage, allThatBrowsersTakeForPagesIsGuarded) {
    const test::TempFolder folder;
    const auto page = folder.write("0000001.htm", "<script>a</script>");
    for (const char *name : {"0000002.gif", "0000003.js", "0000004.css", "_TagIDs.txt"})
        folder.write(name, "<script>");
    for (const char *name : {"0000005", "0000006.php", "0000007.svg", "0000008.xml"})
        folder.write(name, "<script>");
    folder.write("0000009.php", "GIF89a");
    folder.write("0000010.htm", "GIF89a<script>");
    guardFolder(page, Scripts::remove);
    const auto text = [&](const char *name) {
        return std::string(ByteView(readWhole(folder.path() / name)).raw());
    };
    for (const char *name : {"0000002.gif", "0000003.js", "0000004.css", "_TagIDs.txt"})
        EXPECT_EQ(text(name), "<script>") << name;
    for (const char *name : {"0000005", "0000006.php", "0000007.svg", "0000008.xml", "0000010.htm"})
        EXPECT_TRUE(text(name).starts_with(kGuard)) << name;
    EXPECT_EQ(text("0000009.php"), "GIF89a");
    EXPECT_THAT(text("0000001.htm"), HasSubstr("<!-- <script>a</script> -->"));
}

} // namespace
} // namespace nv
