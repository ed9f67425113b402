#include "base/Text.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(Ansi, everyByteSurvivesTheWayThereAndBack) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all.push_back(static_cast<char>(byte));
    EXPECT_EQ(toAnsi(fromAnsi(all)), all);
    EXPECT_TRUE(isUtf8(fromAnsi(all)));
}

TEST(Ansi, aCharacterOutsideOfTheCodePageBecomesAQuestionMark) {
    EXPECT_EQ(toAnsi("a\u20ac\u4e2d\U0001F600z"), "a\x80??z");
}

TEST(Utf8, refusesOverlongSurrogateAndCutForms) {
    EXPECT_TRUE(isUtf8("\u00e9\u4e2d\U0001F600"));
    EXPECT_FALSE(isUtf8("\xC0\x80"));
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));
    EXPECT_FALSE(isUtf8("\xE4\xB8"));
    EXPECT_FALSE(isUtf8("\xF5\x80\x80\x80"));
}

TEST(PercentDecode, takesUtf8RunsAndOtherwiseTheAnsiCodePage) {
    EXPECT_EQ(percentDecode("a%20b%C3%A9"), "a b\u00e9");
    EXPECT_EQ(percentDecode("caf%E9"), "caf\u00e9");
}

TEST(PercentDecode, leavesZeroControlAndMalformedEscapes) {
    EXPECT_EQ(percentDecode("a%00b%0Ac%0D%7F"), "a%00b%0Ac%0D%7F");
    EXPECT_EQ(percentDecode("100%"), "100%");
    EXPECT_EQ(percentDecode("%4"), "%4");
    EXPECT_EQ(percentDecode("%zz%41"), "%zzA");
}

TEST(GetFileExtension, followsTheWindowOfSevenCharacters) {
    EXPECT_EQ(getFileExtension("a.jpg"), ""); // five characters have none
    EXPECT_EQ(getFileExtension("ab.JPG"), "jpg");
    EXPECT_EQ(getFileExtension("http://host/a.html"), "html");
    EXPECT_EQ(getFileExtension("http://host/a.jpg?x=1"), "");
    EXPECT_EQ(getFileExtension("name.abcdefg"), "");
    EXPECT_EQ(getFileExtension("name.abcdef"), "abcdef");
    EXPECT_EQ(getFileExtension(".bashrc"), "");
    EXPECT_EQ(getFileExtension("folder/.x"), "x");
    EXPECT_EQ(getFileExtension("longname."), "");
    EXPECT_EQ(getFileExtension("\u00e9.jpg"), ""); // five characters, six bytes
}

TEST(GetFilenameFromPath, takesWhatStandsAfterTheLastSlashOfEitherKind) {
    EXPECT_EQ(getFilenameFromPath("C:\\a\\b.txt"), "b.txt");
    EXPECT_EQ(getFilenameFromPath("/a/b.txt"), "b.txt");
    EXPECT_EQ(getFilenameFromPath("b.txt"), "b.txt");
    EXPECT_EQ(getFilenameFromPath("a/"), "");
}

TEST(Chars, countsCodePointsAndCutsBetweenThem) {
    EXPECT_EQ(charCount("a\u00e9\u4e2d"), 3u);
    EXPECT_EQ(charSub("a\u00e9\u4e2dz", 1, 2), "\u00e9\u4e2d");
    EXPECT_EQ(charSub("abc", 5), "");
}

TEST(BytesToString, hasAFormForALengthAndOneForTheRest) {
    const std::string bytes("ab\0cd", 5);
    EXPECT_EQ(bytesToString(viewOf(bytes), 0, 0, true), "ab");
    EXPECT_EQ(bytesToString(viewOf(bytes), 0, 0, false, true), "ab cd");
    EXPECT_EQ(bytesToString(viewOf(bytes), 3, 2, false), "cd");
    EXPECT_EQ(bytesToString(viewOf(bytes), 0, 5, false, true), bytes); // blank only without length
    EXPECT_THROW(bytesToString(viewOf(bytes), 3, 3, false), OutOfBytes);
}

TEST(BytesToHex, writesFileOrderInUpperCase) {
    EXPECT_EQ(bytesToHex(viewOf("\x0D\xF0\xAD\x0B"), 0, 4), "0DF0AD0B");
    EXPECT_EQ(bytesToHex(viewOf(std::string_view("\x01\0\x02", 3)), 0, 3, true), "01");
}

TEST(FindNoCase, findsAsciiInEitherCase) {
    EXPECT_EQ(findNoCase("xxHtTp:", "http:"), 2u);
    EXPECT_EQ(findNoCase("abc", "d"), std::string_view::npos);
    EXPECT_EQ(findNoCase("abc", "a", 9), std::string_view::npos);
}

TEST(Counted, countsAreSingularForOneAlone) {
    EXPECT_EQ(counted(0, "row"), "0 rows");
    EXPECT_EQ(counted(1, "row"), "1 row");
    EXPECT_EQ(counted(2, "row"), "2 rows");
    EXPECT_EQ(counted(1, "entry", "entries"), "1 entry");
    EXPECT_EQ(counted(18446744073709551615U, "entry", "entries"), "18446744073709551615 entries");
}

} // namespace
} // namespace nv
