#include "search/FoldedText.h"
#include "search/RowMatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::ElementsAre;

TEST(FoldedText, foldsLettersOfAllAlphabetsAndKnowsTheWayBack) {
    FoldedText folded;
    folded.fold("ABC xyz");
    EXPECT_EQ(folded.text(), "abc xyz");
    EXPECT_EQ(folded.origin(4), 4u);
    EXPECT_EQ(folded.origin(7), 7u);
    const std::string text = "K\u212Aelvin \u0416\u00DC";
    folded.fold(text);
    EXPECT_EQ(folded.text(), "kkelvin \u0436\u00FC") << "the sign of kelvin is three bytes long";
    EXPECT_EQ(folded.origin(2), 4u);
    EXPECT_EQ(folded.origin(folded.text().size()), text.size());
    folded.fold("\xFF\xFE");
    EXPECT_EQ(folded.text(), "\uFFFD\uFFFD");
    folded.fold("");
    EXPECT_EQ(folded.origin(0), 0u);
}

TEST(FoldedText, cutsWordsAsTheIndexDoes) {
    EXPECT_THAT(wordsOf("harbour-news.example/tide_tables?id=17"),
                ElementsAre("harbour", "news", "example", "tide", "tables", "id", "17"));
    EXPECT_THAT(
        wordsOf("Stra\u00DFe Z\u00DCRICH cafe\u0301 \u041C\u043E\u0441\u043A\u0432\u0430"),
        ElementsAre("stra\u00DFe", "zurich", "cafe", "\u043C\u043E\u0441\u043A\u0432\u0430"));
    EXPECT_THAT(wordsOf("-- \u2026 !"), ElementsAre());
    EXPECT_THAT(wordsOf(""), ElementsAre());
}

TEST(FoldedText, findsWordsThatFollowEachOther) {
    const std::string text = "The tide; Tide-Tables of the t\u00EFde";
    EXPECT_EQ(findWords({"tide"}, false, text), (TextSpan{4, 4}));
    EXPECT_EQ(findWords({"tide", "tables"}, false, text), (TextSpan{10, 11}));
    EXPECT_EQ(findWords({"tide", "tab"}, false, text), std::nullopt);
    EXPECT_EQ(findWords({"tide", "tab"}, true, text), (TextSpan{10, 11}));
    EXPECT_EQ(findWords({"of", "the", "tide"}, false, text), (TextSpan{22, 12}));
    EXPECT_EQ(findWords({}, false, text), std::nullopt);
}

TEST(FoldedText, knowsWhereAWordGoesOn) {
    EXPECT_TRUE(isWithinWord("tide", 2));
    EXPECT_FALSE(isWithinWord("tide", 0));
    EXPECT_FALSE(isWithinWord("tide", 4));
    EXPECT_FALSE(isWithinWord("a b", 1));
    EXPECT_TRUE(isWithinWord("Z\u00FCrich", 1));
    EXPECT_TRUE(isWithinWord("Z\u00FCrich", 3));
}

} // namespace
} // namespace nv
