#include "rebuild/TagScan.h"
#include "support/TestDoubles.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

URLTags scan(std::string_view text) {
    Unwatched task;
    return *scanTags(text, {}, task);
}

/// Values of the tags that have one.
std::vector<std::string> valuesOf(const URLTags &tags) {
    std::vector<std::string> values;
    for (const URLTag &tag : tags)
        if (!tag.originalTag.empty())
            values.push_back(tag.originalTag);
    return values;
}

std::vector<std::string> valuesIn(std::string_view text) {
    return valuesOf(reconcileTags(scan(text)));
}

URLTag only(std::string_view text) {
    const URLTags tags = reconcileTags(scan(text));
    EXPECT_EQ(tags.count(), 1u) << text;
    return tags.count() > 0 ? tags.item(1) : URLTag();
}

TEST(TagScan, findsAValueInQuotationMarks) {
    const URLTag tag = only("<img src=\"../pics/./logo.gif\" alt=x>");
    EXPECT_EQ(tag.originalTag, "../pics/./logo.gif");
    EXPECT_EQ(tag.tagSansParentPaths, "pics/logo.gif");
    EXPECT_EQ(tag.tagFileName, "logo.gif");
    EXPECT_EQ(tag.tagType, "INLINE:SRC");
    EXPECT_EQ(tag.tagDefinition, "src=");
    EXPECT_EQ(tag.fileOffset, 11u); // after the quotation mark, 1-based
    EXPECT_EQ(tag.pathLength, 18u);
    EXPECT_TRUE(tag.isPicture);
    EXPECT_FALSE(tag.isReplaceableHREFTag);
    EXPECT_EQ(tag.tagOptionID, 0);
}

TEST(TagScan, findsTheSameValueWithoutThem) {
    EXPECT_EQ(only("<img src=logo.gif> ").originalTag, "logo.gif");
    EXPECT_EQ(only("<img src=logo.gif> ").fileOffset, 10u);
    EXPECT_EQ(only("<img SRC='logo.gif'> ").originalTag, "logo.gif");
}

TEST(TagScan, knowsAllNineRules) {
    const std::pair<const char *, const char *> cases[] = {
        {"<img src=\"a/pic.gif\" >", "INLINE:SRC"},
        {"<body background=\"a/pic.gif\" >", "INLINE:BACKGROUND"},
        {"<link href=\"a/style.css\" >", "INLINE:HREF"},
        {"x{background:url(a/pic.gif) }", "STYLE:URL1:BACKGROUND"},
        {"x{background-image:url(a/pic.gif) }", "STYLE:URL3:BACKGROUND"},
        {"x{list: url(a/pic.gif) }", "STYLE:URL:OTHER"},
        {"<param value=\"a/pic.gif\" >", "INLINE:VALUE"},
        {"commonCss.setAttribute(\"href\", \"a/style.css\" )", "INLINE:STYLE:HREF"},
    };
    for (const auto &[text, type] : cases)
        EXPECT_EQ(only(text).tagType, type) << text;
}

TEST(TagScan, givesOnePlaceToSeveralRules) {
    const URLTags tags = scan("x{background: url(a/pic.gif) }");
    ASSERT_EQ(tags.count(), 2u);
    EXPECT_EQ(tags.item(1).tagType, "STYLE:URL2:BACKGROUND");
    EXPECT_EQ(tags.item(2).tagType, "STYLE:URL:OTHER");
    EXPECT_EQ(tags.item(1).fileOffset, tags.item(2).fileOffset);
}

TEST(TagScan, closesAQuotedValueInAParenthesisAtOnce) {
    EXPECT_THAT(valuesIn("x{background:url('a/pic.gif') }"), IsEmpty());
}

TEST(TagScan, closesOnTheQuotationMarkAfterABlank) {
    const URLTags tags = scan("<img src= \"a/pic.gif\" >");
    ASSERT_EQ(tags.count(), 1u);
    EXPECT_EQ(tags.item(1).originalTag, " ");
}

TEST(TagScan, passesOverDigitsThatOpenAValue) {
    EXPECT_EQ(only("<img src=2011/pic.gif >").originalTag, "/pic.gif");
    EXPECT_EQ(only("<img src=\"2011/pic.gif\" >").originalTag, "2011/pic.gif");
}

TEST(TagScan, takesOnlyStyleSheetsFromLinks) {
    EXPECT_THAT(valuesIn("<a href=\"page.html\">a</a> <link href=\"a/b.css\" >"),
                ElementsAre("a/b.css"));
    EXPECT_THAT(valuesIn("<link href=\"a/b.css?v=1\" >"), IsEmpty());
}

TEST(TagScan, keepsWhatIsNeitherPictureNorReplaceable) {
    const URLTag tag = only("<script src=\"/lib/run.swf\" >");
    EXPECT_EQ(tag.originalTag, "/lib/run.swf");
    EXPECT_EQ(tag.tagFileName, "");
}

TEST(TagScan, dropsABackgroundThatIsNeitherPictureNorStyleSheet) {
    EXPECT_THAT(valuesIn("x{background-image:url(a/run.php) }"), IsEmpty());
    EXPECT_THAT(valuesIn("x{background:url(a/run.php) }"), ElementsAre("a/run.php"));
}

TEST(TagScan, givesUpAllValuesAtTheFirstFormField) {
    const std::string filler(80, '.');
    const std::string text = "<param value=\"a/one.gif\" >" + filler +
                             "<input type=text value=\"a/two.gif\" >" + filler +
                             "<param value=\"a/three.gif\" >";
    EXPECT_THAT(valuesIn(text), ElementsAre("a/one.gif"));
    // Near the start of the page the test isn't made.
    EXPECT_THAT(valuesIn("<input value=\"a/two.gif\" >"), ElementsAre("a/two.gif"));
}

TEST(TagScan, abandonsAValueThatDoesNotEnd) {
    const std::string digits(4000, '1');
    const std::string text = "src=" + digits + " <img src=\"pic.gif\" >" + digits;
    EXPECT_THAT(valuesIn(text), ElementsAre("pic.gif"));
}

TEST(TagScan, endsARuleAtTheEndOfTheText) {
    EXPECT_THAT(valuesIn("<img src=\"pic.gif\""), IsEmpty()); // the last character isn't looked at
    EXPECT_THAT(valuesIn("src="), IsEmpty());
    EXPECT_EQ(scan("").count(), 0u);
}

TEST(TagScan, worksOnBytes) {
    const URLTag tag = only("caf\xE9 <img src=\"b\xFC.gif\" >");
    EXPECT_EQ(tag.fileOffset, 16u);
    EXPECT_EQ(tag.pathLength, 6u);
    EXPECT_EQ(tag.originalTag, "b\xC3\xBC.gif");
}

TEST(TagScan, canBeCancelled) {
    test::CancelAfter task(2);
    EXPECT_FALSE(scanTags("<img src=a.gif ><img src=b.gif ><img src=c.gif >", {}, task));
}

URLTags tagsOf(std::initializer_list<const char *> values) {
    URLTags tags;
    for (const char *value : values) {
        URLTag tag;
        tag.originalTag = value;
        tag.tagType = "T";
        tags.add(tag);
    }
    return tags;
}

std::vector<std::string> reconciled(std::initializer_list<const char *> values) {
    std::vector<std::string> left;
    for (const URLTag &tag : reconcileTags(tagsOf(values)))
        left.push_back(tag.originalTag);
    return left;
}

TEST(Reconciling, removesOneDoubleForEachTag) {
    EXPECT_THAT(reconciled({"a", "b", "a"}), ElementsAre("a", "b"));
    EXPECT_THAT(reconciled({"a", "a"}), ElementsAre("a"));
    EXPECT_THAT(reconciled({"a", "a", "a"}), ElementsAre("a", "a"));
    EXPECT_THAT(reconciled({"a", "a", "a", "b", "c"}), ElementsAre("a", "a", "b", "c"));
}

TEST(Reconciling, takesABlankBeforeADoubleWhenItStandsLater) {
    EXPECT_THAT(reconciled({"a", "a", " "}), ElementsAre("a", "a"));
}

TEST(Reconciling, leavesABlankThatItDoesNotReach) {
    EXPECT_THAT(reconciled({""}), ElementsAre(""));
    EXPECT_THAT(reconciled({"", ""}), ElementsAre(""));
}

TEST(Reconciling, tellsTypesApart) {
    URLTags tags = tagsOf({"a", "a"});
    tags.item(2).tagType = "U";
    EXPECT_EQ(reconcileTags(tags).count(), 2u);
}

/// The steps as they were laid down, walk and all.
std::vector<std::string> plainly(std::vector<std::string> tags) {
    const std::size_t before = tags.size();
    for (std::size_t i = 1; i <= before; ++i) {
        if (i >= tags.size())
            break;
        for (std::size_t j = tags.size(); j >= i; --j) {
            const bool same = tags[j - 1] == tags[i - 1] && j > i;
            if (same || tags[j - 1].empty()) {
                tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(j - 1));
                break;
            }
        }
    }
    return tags;
}

TEST(Reconciling, agreesWithThePlainWay) {
    for (int code = 0; code < 6561; ++code) { // all lists of eight of three values
        std::vector<std::string> values;
        URLTags tags;
        for (int rest = code, n = 0; n < 8; ++n, rest /= 3) {
            values.emplace_back(rest % 3 == 0 ? "" : rest % 3 == 1 ? "a" : "b");
            URLTag tag;
            tag.originalTag = values.back();
            tags.add(tag);
        }
        std::vector<std::string> left;
        for (const URLTag &tag : reconcileTags(tags))
            left.push_back(tag.originalTag);
        ASSERT_EQ(left, plainly(values)) << code;
    }
}

} // namespace
} // namespace nv
