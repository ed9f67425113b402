#include "rebuild/PageText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(PageText, joinsLinesWhateverTheirBreaks) {
    test::TempFolder folder;
    const auto file = folder.write("page", "one\r\ntwo\nthree\rfour");
    EXPECT_EQ(readTextFile(file, LineBreaks::keep), "one\r\ntwo\r\nthree\r\nfour\r\n");
    EXPECT_EQ(readTextFile(file, LineBreaks::strip), "onetwothreefour");
    EXPECT_EQ(readTextFile(folder.write("empty", ""), LineBreaks::keep), "");
    EXPECT_EQ(readTextFile(folder.write("breaks", "\n\n"), LineBreaks::keep), "\r\n\r\n");
}

TEST(PageText, ofNoFileIsEmpty) {
    EXPECT_EQ(readTextFile("", LineBreaks::strip), "");
    EXPECT_EQ(readTextFile("/there/is/none", LineBreaks::strip), "");
}

TEST(PageText, isSearchedFromAPlaceInEitherCase) {
    EXPECT_EQ(findTextFrom(1, "<IMG SRC=x SRC=y>", "src="), 6u);
    EXPECT_EQ(findTextFrom(7, "<IMG SRC=x SRC=y>", "src="), 12u);
    EXPECT_EQ(findTextFrom(13, "<IMG SRC=x SRC=y>", "src="), 0u);
    EXPECT_EQ(findTextFrom(99, "short", "t"), 0u);
}

TEST(PageText, isReplacedInEitherCaseOnceFromLeftToRight) {
    EXPECT_EQ(replaceAllText("aAbA", "a", "aa"), "aaaabaa");
    EXPECT_EQ(replaceAllText("text", "", "x"), "text");
    EXPECT_EQ(replaceAllText("--> --> -->", "--> -->", " -->"), " --> -->");
}

} // namespace
} // namespace nv
