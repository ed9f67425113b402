#include "unit/rebuild/exact/ScannedPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using test::disarmed;
using test::namedIn;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// By the rules that browsers have now, a list holds what any element may hold.
TEST(ScanLists, whatStandsInAListIsRead) {
    const std::string html =
        "<style>select,::picker(select){x:y}</style><SELECT style='background:url(z.png)'>"
        "<button><img src=http://h/a.png></button><div><meta http-equiv=refresh content='0;url=/'>"
        "<iframe src=b.htm></iframe></div><option><img src=c.png onerror=x>one</option></select>";
    EXPECT_THAT(namedIn(html), ElementsAre("select background=z.png", "img src=http://h/a.png",
                                           "iframe src=b.htm", "img src=c.png"));
    const std::string plain = disarmed(html);
    EXPECT_THAT(plain, HasSubstr("http-equiv=\"\""));
    EXPECT_THAT(plain, HasSubstr("onerror=\"\""));
    EXPECT_THAT(plain, HasSubstr("<SELECT style="));
    EXPECT_THAT(plain, HasSubstr("select,::picker(select){x:y}"));
    EXPECT_THAT(
        namedIn("<iframe srcdoc='&lt;select>&lt;b>&lt;img src=a.png>&lt;/select>'></iframe>"),
        ElementsAre("img src=a.png"));
}

/// Browsers with the older rules pass over "<style>" in a list, and what it holds would be tags.
TEST(ScanLists, whatIsTextBehindAListIsTextForAllBrowsers) {
    const std::string tags = "<input><meta http-equiv=refresh content=0><img src=http://h/a>";
    const std::string closed =
        "\\3C input>\\3C meta http-equiv=refresh content=0>\\3C img src=http://h/a>";
    EXPECT_EQ(disarmed("<select><style>" + tags + "</style></select>"),
              "<select><style>" + closed + "</style></select>");
    EXPECT_EQ(disarmed("<p><select></p><style>" + tags + "</style>"),
              "<p><select></p><style>" + closed + "</style>");
    for (const std::string name : {"title", "xmp", "noembed", "noframes", "iframe"})
        EXPECT_THAT(disarmed("<select><" + name + ">" + tags + "</" + name + "></select>"),
                    HasSubstr(" input> meta http-equiv=refresh content=0> img src"))
            << name;
    EXPECT_THAT(disarmed("<select><svg><![CDATA[" + tags + "]]></svg></select>"),
                HasSubstr(" input> meta"));
    EXPECT_THAT(disarmed("<select><plaintext>" + tags), HasSubstr(" input> meta"));
    const std::string before = "<style>a{content:'<b>'}</style><select></select>";
    EXPECT_EQ(disarmed(before), before);
}

TEST(ScanLists, manyListsAreReadInTime) {
    std::string html;
    for (int i = 0; i < 100'000; ++i)
        html += "<select><option><select></select><style>a<b</style>";
    EXPECT_NO_THROW({
        try {
            scanPage(html, "page");
        } catch (const PageTooLarge &) { // told, and soon
        }
    });
}

} // namespace
} // namespace nv
