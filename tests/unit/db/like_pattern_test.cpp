#include "db/sql/LikePattern.h"
#include "db/sql/SqlTokens.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

bool like(std::string_view text, std::string_view pattern) {
    return LikePattern::compile(pattern).value().matches(text);
}

TEST(LikePattern, plainPatternsOpenAtEitherEnd) {
    EXPECT_TRUE(like("http://WWW.eBay.com/", "%.ebay.%"));
    EXPECT_FALSE(like("http://ebay.com/", "%.ebay.%"));
    EXPECT_TRUE(like("report.DOC", "%.doc"));
    EXPECT_FALSE(like("report.docx", "%.doc"));
    EXPECT_TRUE(like("abc", "AB%"));
    EXPECT_TRUE(like("abc", "ABC"));
    EXPECT_FALSE(like("abcd", "abc"));
    EXPECT_TRUE(like("", "%"));
    EXPECT_TRUE(like("", "%%"));
    EXPECT_TRUE(like("", ""));
    EXPECT_FALSE(like("a", ""));
}

TEST(LikePattern, knowsOneCharacterAndLists) {
    EXPECT_TRUE(like("cat", "c_t"));
    EXPECT_TRUE(like("c\u00e4t", "c_t"));
    EXPECT_TRUE(like("b7", "[a-c][0-9]"));
    EXPECT_FALSE(like("d7", "[a-c][0-9]"));
    EXPECT_TRUE(like("D7", "[!a-c]7"));
    EXPECT_TRUE(like("100%", "100[%]"));
    EXPECT_FALSE(like("1000", "100[%]"));
    EXPECT_TRUE(like("a-b", "a[-]b"));
    EXPECT_TRUE(like("xxabyab", "%ab%ab"));
    EXPECT_FALSE(like("xxab", "%ab_%"));
}

TEST(LikePattern, listsAreFoldedAndMayBeEmpty) {
    EXPECT_TRUE(like("B", "[a-c]"));
    EXPECT_TRUE(like("b", "[A-C]"));
    EXPECT_FALSE(like("b", "[!A-C]"));
    EXPECT_TRUE(like("_", "[A-_]"));
    EXPECT_TRUE(like("ab", "a[]b"));
    EXPECT_TRUE(like("a!b", "a[!]b"));
    EXPECT_FALSE(like("axb", "a[!]b"));
    EXPECT_TRUE(like("\u00c9", "[\u00e0-\u00ef]"));
}

TEST(LikePattern, lettersMatchInEitherCaseBeyondAscii) {
    EXPECT_TRUE(like("\u00c4RGER", "\u00e4rger"));
    EXPECT_TRUE(like("\u0416\u0423\u041a", "%\u0436\u0443\u043a%"));
    EXPECT_FALSE(like("\u00c4", "\u00d6"));
}

TEST(LikePattern, starAndQuestionMarkStandForThemselves) {
    EXPECT_TRUE(like("a*b?", "a*b?"));
    EXPECT_FALSE(like("axby", "a*b?"));
}

TEST(LikePattern, refusesAnOpenList) {
    EXPECT_FALSE(LikePattern::compile("%[a"));
    EXPECT_FALSE(LikePattern::compile("[%"));
    EXPECT_FALSE(LikePattern::compile("[c-a]"));
    EXPECT_THROW(LikePattern::check("%[a"), DialectError);
    EXPECT_NO_THROW(LikePattern::check("a]"));
}

TEST(LikePattern, costsNoMoreThanTheProductOfTheLengths) {
    EXPECT_FALSE(like(std::string(20'000, 'a'), "%a_a%a_a%a_a%a_a%a_b"));
}

TEST(LikePattern, survivesBytesThatAreNoText) {
    EXPECT_TRUE(like(std::string("\xFF\x00z", 3), "__z"));
    EXPECT_FALSE(like("\xE4\xB8", "[a-z]"));
    EXPECT_TRUE(like("\xE4pfel", "_pfel"));
}

TEST(LikePattern, aByteThatIsNoTextDoesntSwallowTheNext) {
    const std::string text("\xC1[f", 3);
    EXPECT_TRUE(like(text, escapedForLike(text)));
    EXPECT_TRUE(like(text, "_[[]f"));
    EXPECT_FALSE(like("anything", "\xC0\xA5"));    // no "%" in disguise
    EXPECT_TRUE(LikePattern::compile("\xC1\x9B")); // and no "["
}

TEST(EscapedForLike, makesThePatternsOwnCharactersPlain) {
    for (const char *text : {"100%", "a_b", "[x]", "%_["})
        EXPECT_TRUE(like(text, escapedForLike(text))) << text;
    EXPECT_FALSE(like("axb", escapedForLike("a_b")));
}

} // namespace
} // namespace nv
