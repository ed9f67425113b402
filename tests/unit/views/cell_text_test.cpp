#include "base/Text.h"
#include "views/rows/CellText.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_literals;

TEST(DisplayText, leavesPlainTextAlone) {
    EXPECT_EQ(displayText("http://a.example/b?c=1"), "http://a.example/b?c=1");
    EXPECT_EQ(displayText("<b>&amp;</b>"), "<b>&amp;</b>");
    EXPECT_EQ(displayText("Zürich \u05E9\u05DC\u05D5\u05DD \U0001F600"),
              "Zürich \u05E9\u05DC\u05D5\u05DD \U0001F600");
    EXPECT_EQ(displayText(""), "");
}

TEST(DisplayText, showsControlCharactersOnOneLine) {
    EXPECT_EQ(displayText("a\0b"s), "a\u2400b");
    EXPECT_EQ(displayText("a\r\nb\tc"), "a\u240D\u240Ab\u2409c");
    EXPECT_EQ(displayText("a\x7F"
                          "b\x1B"),
              "a\u2421b\u241B");
    EXPECT_EQ(displayText("a\u0085b\u2028c"), "a<U+0085>b<U+2028>c");
}

TEST(DisplayText, writesOutWhatTurnsTheDirection) {
    EXPECT_EQ(displayText("photo\u202Egnp.exe"), "photo<U+202E>gnp.exe");
    EXPECT_EQ(displayText("a\u200Bb\uFEFF\u2066"), "a<U+200B>b<U+FEFF><U+2066>");
    EXPECT_EQ(displayText("pass\u00ADword\u034F"), "pass<U+00AD>word<U+034F>");
}

TEST(DisplayText, showsBytesThatAreNoText) {
    EXPECT_EQ(displayText("a\xFF"
                          "b"),
              "a\uFFFD"
              "b");
    EXPECT_EQ(displayText("\xE2\x82"), "\uFFFD\uFFFD");
    EXPECT_EQ(displayText("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(displayText("\xC0\x80"), "\uFFFD\uFFFD");
}

TEST(DisplayText, cutsByCharacters) {
    EXPECT_EQ(displayText("abcdef", 3), "abc\u2026");
    EXPECT_EQ(displayText("äöüäöü", 3), "äöü\u2026");
    EXPECT_EQ(displayText("äöü", 3), "äöü");
    const std::string huge(10'000'000, '\x01');
    EXPECT_EQ(charCount(displayText(huge)), kCellChars + 1);
}

TEST(TypeWord, isTheUpperCaseType) {
    EXPECT_EQ(typeWord("Firefox2 History"), "FIREFOX2 HISTORY");
    EXPECT_EQ(typeWord("IE Daily"), "IE DAILY");
    EXPECT_EQ(typeWord("IE Cookie"), "IE COOKIES");
    EXPECT_EQ(typeWord("Chrome Cache"), "CHROME CACHE");
    EXPECT_EQ(typeWord(""), "");
}

TEST(TypeWord, hasHistoryAsTheCatchAll) {
    EXPECT_EQ(typeWord("Typed History of Another Browser"), "HISTORY");
    EXPECT_EQ(typeWord("history"), "HISTORY");
}

} // namespace
} // namespace nv
