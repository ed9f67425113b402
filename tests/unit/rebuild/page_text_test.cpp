#include "rebuild/PageText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(PageText, joinsLinesWhateverTheirBreaks) {
    test::TempFolder folder;
    const auto file = folder.write("page", "one\r\ntwo\nthree\rfour");
    EXPECT_EQ(ReadTextFile(file, LineBreaks::keep), "one\r\ntwo\r\nthree\r\nfour\r\n");
    EXPECT_EQ(ReadTextFile(file, LineBreaks::strip), "onetwothreefour");
    EXPECT_EQ(ReadTextFile(folder.write("empty", ""), LineBreaks::keep), "");
    EXPECT_EQ(ReadTextFile(folder.write("breaks", "\n\n"), LineBreaks::keep), "\r\n\r\n");
}

TEST(PageText, ofNoFileIsEmpty) {
    EXPECT_EQ(ReadTextFile("", LineBreaks::strip), "");
    EXPECT_EQ(ReadTextFile("/there/is/none", LineBreaks::strip), "");
}

TEST(PageText, isSearchedFromAPlaceInEitherCase) {
    EXPECT_EQ(FindTextFrom(1, "<IMG SRC=x SRC=y>", "src="), 6u);
    EXPECT_EQ(FindTextFrom(7, "<IMG SRC=x SRC=y>", "src="), 12u);
    EXPECT_EQ(FindTextFrom(13, "<IMG SRC=x SRC=y>", "src="), 0u);
    EXPECT_EQ(FindTextFrom(99, "short", "t"), 0u);
}

TEST(PageText, isReplacedInEitherCaseOnceFromLeftToRight) {
    EXPECT_EQ(ReplaceAllText("aAbA", "a", "aa"), "aaaabaa");
    EXPECT_EQ(ReplaceAllText("text", "", "x"), "text");
    EXPECT_EQ(ReplaceAllText("--> --> -->", "--> -->", " -->"), " --> -->");
}

} // namespace
} // namespace nv
