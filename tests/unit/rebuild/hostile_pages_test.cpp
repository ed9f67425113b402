#include "rebuild/LocalNames.h"
#include "unit/rebuild/RebuildFixture.h"

#include <chrono>

namespace nv {
namespace {

/// Pages made to hold an examiner up. The bounds are far above what the tests take, so that a slow
/// machine passes, and far below what a walk over the page for each reference takes.
class HostilePages : public test::RebuildFixture {
  protected:
    static constexpr std::size_t kMegabyte = 1U << 20;

    static std::string repeated(std::string_view text, std::size_t size) {
        std::string page;
        page.reserve(size + text.size());
        while (page.size() < size)
            page += text;
        return page;
    }
    /// Whether the page was rebuilt; it has to end within a minute.
    bool rebuildSoon(const std::string &html) {
        htmlId = add("http://host/page.html", html, "Opera Cache");
        const auto begin = std::chrono::steady_clock::now();
        const bool rebuilt = rebuild(htmlId);
        const auto took = std::chrono::steady_clock::now() - begin;
        EXPECT_LT(took, std::chrono::seconds(60));
        RecordProperty(
            "milliseconds",
            static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(took).count()));
        EXPECT_TRUE(project.log.entries.empty());
        return rebuilt;
    }
    std::string rebuiltPage() { return fileOf(htmlId, sidOf(htmlId) + ".htm"); }

    UrlId htmlId = UrlId::none;
};

TEST_F(HostilePages, ofRulesWithoutValues) {
    rebuildSoon(repeated("src=", 5 * kMegabyte));
    EXPECT_EQ(project.number("SELECT Count(*) FROM Tags"), 0);
}

TEST_F(HostilePages, ofEmptyValues) {
    rebuildSoon(repeated("src=\"\" ", 5 * kMegabyte));
    EXPECT_EQ(project.number("SELECT Count(*) FROM Tags"), 0);
}

TEST_F(HostilePages, ofEveryRuleWithoutAnEnd) {
    rebuildSoon(repeated("src= background= href=background:urlbackground: url url(value="
                         "commonCss.setAttribute(\"href\", background-image:url",
                         kMegabyte / 2));
}

TEST_F(HostilePages, ofThousandsOfReferences) {
    std::string html;
    for (int i = 0; i < 10'000; ++i)
        html += "<img src=\"/pictures/" + std::to_string(i) + "x.gif\" >";
    add("http://host/pictures/77x.gif", "GIF89a", "Opera Cache");
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(project.number("SELECT Count(*) FROM Tags"), 10'000);
    EXPECT_NE(rebuiltPage().find("0000001.gif"), std::string::npos);
}

TEST_F(HostilePages, ofTheSameReferenceThousandsOfTimes) {
    add("http://host/same.gif", "GIF89a", "Opera Cache");
    ASSERT_TRUE(
        rebuildSoon(repeated("<img src=\"/same.gif\" ><img src=gone.gif >", kMegabyte / 2)));
    EXPECT_EQ(rebuiltPage().find("same.gif"), std::string::npos);
}

TEST_F(HostilePages, ofReferencesThatAreNoPlainText) {
    const std::string html =
        "<img src=\"a';DROP/**/TABLE/**/URLs;--.gif\" ><img src=\"%.gif\" ><img src=\"[a.gif\" >"
        "<img src=\"____.gif\" ><img src=a\"b.gif ><img src='x\\y.gif' ><img src=\"a|b|c.gif\" >"
        "<img src=\"\xC3\x28\xFF.gif\" ><img src=\"../../../../etc/passwd\" >";
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs"), 1);
    EXPECT_GT(project.number("SELECT Count(*) FROM Tags"), 6);
}

TEST_F(HostilePages, ofZeroBytes) {
    const std::string zeros(100'000, '\0');
    add("http://host/pictures/one.gif", "GIF89a", "Opera Cache");
    ASSERT_TRUE(rebuildSoon(zeros + "<img src=\"/pictures/one.gif\" >" + zeros + "<img src=\"" +
                            std::string(3, '\0') + "x.gif\" >" + zeros));
    EXPECT_EQ(project.number("SELECT Count(*) FROM Tags WHERE TagURLID = 1"), 1);
    EXPECT_EQ(rebuiltPage().size(), 300'000 + std::string("<img src=\"0000001.gif\" >").size() +
                                        std::string("<img src=\"123x.gif\" >\r\n").size());
}

TEST_F(HostilePages, ofOneCharacterOrNone) {
    EXPECT_FALSE(rebuildSoon("x"));
    EXPECT_FALSE(rebuildSoon("\n"));
    EXPECT_FALSE(rebuildSoon(std::string(1, '\0')));
}

TEST_F(HostilePages, ofLineBreaksOnly) {
    EXPECT_FALSE(rebuildSoon(repeated("\r\n\n\r", 5 * kMegabyte)));
}

TEST_F(HostilePages, ofOneLineWithoutAnEnd) {
    add("http://host/pictures/one.gif", "GIF89a", "Opera Cache");
    ASSERT_TRUE(rebuildSoon(repeated("x", 5 * kMegabyte) + "<img src=\"/pictures/one.gif\" >" +
                            repeated("y", 5 * kMegabyte)));
}

TEST_F(HostilePages, thatNameThemselves) {
    ASSERT_TRUE(rebuildSoon("<iframe src=\"/page.html\" ></iframe> "));
    EXPECT_EQ(page.IngredientIDs, "1|/page.html|0000001.html|\r\n");
}

TEST_F(HostilePages, ofAReferenceThatItsLocalNameBeginsWith) {
    add("http://host/0", "bytes", "Opera Cache");
    std::string html;
    for (int i = 0; i < 200; ++i)
        html += "<img src=\"0\" >";
    ASSERT_TRUE(rebuildSoon(html));
}

} // namespace
} // namespace nv
