#include "base/Base64.h"
#include "base/Files.h"
#include "base/Text.h"
#include "reports/pages/PartsInside.h"
#include "reports/pages/SafePage.h"
#include "support/HostileWays.h"
#include "support/TempFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct SinglePageTest : testing::Test {
    void part(const std::string &name, std::string_view text) { folder.write(name, text); }
    /// The file that a page becomes; empty when it is too large.
    std::string made(std::string_view html) {
        const fs::path page = folder.write("0000001.htm", html);
        guardFolder(page);
        return singlePage(page, most).value_or("");
    }
    static std::string data(std::string_view type, std::string_view text) {
        return fmt::format("data:{};base64,{}", type, base64(viewOf(text)));
    }

    test::TempFolder folder;
    std::size_t most = kLongestSinglePage;
};

/// What stands behind the last "data:TYPE;base64," of a text.
std::string unpacked(const std::string &text, const std::string &type) {
    const std::string mark = "data:" + type + ";base64,";
    const std::size_t at = text.rfind(mark);
    if (at == std::string::npos)
        return {};
    const std::size_t from = at + mark.size();
    return fromBase64(text.substr(from, text.find_first_of("\"&#", from) - from));
}

TEST_F(SinglePageTest, picturesStylesFontsAndFilmsStandInThePage) {
    const std::string film("\0\0\0\x18"
                           "ftypmp42",
                           12);
    part("0000002.gif", "GIF89a");
    part("0000003.css", "@import '0000004.css'; a{background:url(0000002.gif)}"
                        "@font-face{font-family:f;src:url(0000005.woff2)}");
    part("0000004.css", "b{list-style:url(0000002.gif)}");
    part("0000005.woff2", "wOF2");
    part("0000006.mp4", film);
    const std::string page = made("<link rel=stylesheet href=0000003.css media=screen>"
                                  "<style>p{background:url(0000002.gif)}</style>"
                                  "<img src=0000002.gif><video src=0000006.mp4 poster=0000002.gif>"
                                  "</video><p style='background:url(0000002.gif)'>\xE9");
    const std::string gif = data("image/gif", "GIF89a");
    EXPECT_THAT(page, AllOf(StartsWith("\xEF\xBB\xBF<html>"), HasSubstr("<img src=\"" + gif + '"'),
                            HasSubstr("poster=\"" + gif + '"'), HasSubstr("media=\"screen\""),
                            HasSubstr("src=\"" + data("video/mp4", film) + '"'),
                            HasSubstr("p {\nbackground:url(\"" + gif + "\");"),
                            HasSubstr("style=\"background:url(&quot;" + gif + "&quot;);\"")));
    const std::string sheet = unpacked(page, "text/css");
    EXPECT_THAT(sheet, AllOf(HasSubstr("background:url(\"" + gif), HasSubstr("@import url(\""),
                             HasSubstr(data("font/woff2", "wOF2"))));
    EXPECT_EQ(unpacked(sheet, "text/css"), "b {\nlist-style:url(\"" + gif + "\");\n}\n");
    EXPECT_THAT(page, AllOf(Not(HasSubstr("0000")), Not(HasSubstr("'self'"))));
}

TEST_F(SinglePageTest, ofAPicturesSizesEachStandsInThePage) {
    part("0000002.gif", "GIF89a");
    part("0000003.gif", "GIF89b");
    const std::string page = made("<picture><source srcset='0000003.gif'><img sizes=9px "
                                  "srcset='0000002.gif 1x, http://live/ 2x,0000003.gif  3x'>");
    const std::string a = data("image/gif", "GIF89a");
    const std::string b = data("image/gif", "GIF89b");
    EXPECT_THAT(page, HasSubstr("<source srcset=\"" + b + "\"/><img sizes=\"9px\" srcset=\"" + a +
                                " 1x, " + b + " 3x\"/>"));
}

TEST_F(SinglePageTest, framesStandInThePageWithTheirOwnParts) {
    part("0000002.htm", "<!DOCTYPE html><script>1</script><b title='\"'>frame &amp; all</b>"
                        "<iframe src=0000003.htm></iframe>");
    part("0000003.htm", "<!DOCTYPE html><img src=0000004.svg#a>");
    part("0000004.svg",
         "<svg xmlns='http://www.w3.org/2000/svg'><image href='0000005.gif'/></svg>");
    part("0000005.gif", "GIF89a");
    const std::string page = made("<iframe src=0000002.htm></iframe>");
    EXPECT_THAT(page, AllOf(HasSubstr("srcdoc=\"&lt;!DOCTYPE html&gt;&lt;html&gt;"),
                            HasSubstr("&lt;iframe srcdoc=&quot;&amp;lt;!DOCTYPE html"),
                            Not(HasSubstr("script")), Not(HasSubstr("0000"))));
    EXPECT_THAT(page, HasSubstr("#a&amp;quot;/&amp;gt;")) << "the place in the picture stays";
    EXPECT_EQ(unpacked(page, "image/svg+xml"),
              "<svg xmlns=\"http://www.w3.org/2000/svg\"><image></image></svg>")
        << "as a picture it shows no other file";
    const std::string drawing = made("<iframe src=0000004.svg></iframe>");
    EXPECT_THAT(unpacked(drawing, "image/svg+xml"),
                HasSubstr("<image href=\"" + data("image/gif", "GIF89a")));
    const std::string frames = made("<frameset><frame src=0000003.htm></frameset>");
    EXPECT_THAT(unpacked(frames, "text/html;charset=utf-8"), HasSubstr("data:image/svg+xml"));
}

/// Browsers read the text of an attribute by today's rules, whatever it says.
TEST_F(SinglePageTest, framedPagesOfOldRulesKeepThem) {
    part("0000002.htm", "old<iframe src=0000003.htm></iframe>");
    part("0000003.htm", "<!DOCTYPE html PUBLIC '-//W3C//DTD HTML 4.01//EN'>older");
    part("0000004.htm", std::string(2'000'000, 'x'));
    const std::string page = made("<iframe src=0000002.htm></iframe>");
    EXPECT_THAT(page, AllOf(HasSubstr("<iframe src=\"data:text/html"), Not(HasSubstr("srcdoc"))));
    const std::string old = unpacked(page, "text/html;charset=utf-8");
    EXPECT_THAT(old, AllOf(StartsWith("<html>"), HasSubstr("old<iframe src=\"data:")));
    EXPECT_THAT(unpacked(old, "text/html;charset=utf-8"), HasSubstr("older"));
    EXPECT_THAT(made("<iframe src=0000004.htm></iframe>"), HasSubstr("srcdoc=\"&lt;html&gt;"))
        << "longer than any address";
}

TEST_F(SinglePageTest, linksLeadWithinThePageOrNowhere) {
    part("0000002.htm", "other");
    const std::string page = made("<a href=0000001.htm>a</a><a href='0000001.htm#b'>b</a>"
                                  "<a href='#c'>c</a><a href=0000002.htm>d</a>"
                                  "<a href=http://live/>e</a>");
    EXPECT_THAT(page, HasSubstr("<a href=\"#\">a</a><a href=\"#b\">b</a><a href=\"#c\">c</a>"
                                "<a data-href=\"0000002.htm\">d</a>"
                                "<a data-href=\"http://live/\">e</a>"));
}

TEST_F(SinglePageTest, whatShowsItselfStaysAwayThere) {
    part("0000002.htm", "two<iframe src=0000001.htm></iframe><iframe src=0000002.htm></iframe>");
    part("0000003.css", "@import '0000003.css'; a{color:red}");
    const std::string page =
        made("<link rel=stylesheet href=0000003.css><iframe src=0000002.htm></iframe>");
    EXPECT_THAT(page, Not(HasSubstr("0000")));
    EXPECT_THAT(unpacked(page, "text/html;charset=utf-8"),
                HasSubstr("two<iframe></iframe><iframe></iframe>"));
    EXPECT_EQ(unpacked(page, "text/css"), "a {\ncolor:red;\n}\n");
}

TEST_F(SinglePageTest, whatGrowsWithoutEndIsTooLarge) {
    const auto chain = [this](std::string_view extension, std::string_view each) {
        for (int i = 2; i < 9; ++i) {
            std::string text;
            for (int n = 0; n < 100; ++n)
                text += fmt::format(fmt::runtime(each), i + 1);
            part(fmt::format("000000{}.{}", i, extension), text);
        }
    };
    most = 1'000'000; // bytes
    chain("htm", "<iframe src=000000{}.htm></iframe>");
    EXPECT_EQ(made("<iframe src=0000002.htm></iframe>"), "");
    chain("css", "@import '000000{}.css';");
    EXPECT_EQ(made("<link rel=stylesheet href=0000002.css>"), "") << "much work, little text";
    part("0000009.gif", "GIF89a" + std::string(most, ' '));
    EXPECT_EQ(made("<img src=0000009.gif>"), "");
    part("0000010.gif", "GIF89a" + std::string(most / 5, ' '));
    EXPECT_NE(made("<img src=0000010.gif><img src=0000010.gif><img src=0000010.gif>"), "");
    EXPECT_EQ(made("<img src=0000010.gif><img src=0000010.gif><img src=0000010.gif>"
                   "<img src=0000010.gif>"),
              "");
}

TEST_F(SinglePageTest, noHostilePageReachesAnything) {
    part("0000002.gif", "GIF89a");
    part("0000003.css", "a{background:u\\72l(http://live.example/a)}");
    for (const test::HostileWay &way : test::kHostileWays) {
        const std::string html =
            replaceAll(replaceAll(way.html, "@", "http://live.example"), "%", "@");
        const std::string page = made(fmt::format(
            "<html><link rel=stylesheet href=0000003.css><img src=0000002.gif>{}", html));
        ASSERT_NE(page, "") << way.name;
        EXPECT_THAT(page, HasSubstr("default-src 'none'; img-src data:")) << way.name;
        // Guarding finds nothing more to take away: no address is left that leads out.
        const fs::path alone = folder.write("alone/0000001.htm", page);
        guardFolder(alone);
        const std::string again(ByteView(readWhole(alone)).raw());
        EXPECT_EQ(replaceAll(again, "'self' ", ""), page) << way.name;
    }
}

} // namespace
} // namespace nv
