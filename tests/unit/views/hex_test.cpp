#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "views/hex/HexFind.h"
#include "views/hex/HexSource.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace nv::test {
namespace {

using namespace std::string_literals;

class HexTest : public testing::Test {
  protected:
    std::optional<std::uint64_t>
    find(const std::string &bytes, const std::vector<HexNeedle> &needles, std::uint64_t from = 0) {
        const FileReader file(folder.write("bytes", bytes));
        Unwatched task;
        const HexSearch search = findInFile(file, needles, from, task);
        return search.match ? std::optional(search.match->offset) : std::nullopt;
    }
    std::optional<std::uint64_t> findText(const std::string &bytes, std::string_view text,
                                          LetterCase letters = LetterCase::exact) {
        return find(bytes, needlesOfText(text, letters));
    }

    static std::string lineOf(HexSource &source, std::uint64_t row) {
        const Bytes bytes = source.row(row);
        return hexLine(ByteView(bytes, row * kHexRowBytes), source.offsetDigits());
    }

    TempFolder folder;
};

TEST_F(HexTest, rowsHaveOffsetBytesAndCharacters) {
    HexSource source(folder.write("bytes", "0123456789ABCDEF\x00JF\xE9\x7F"s));
    EXPECT_EQ(source.size(), 21U);
    EXPECT_EQ(source.rowCount(), 2U);
    EXPECT_EQ(lineOf(source, 0), "00000000  30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  "
                                 "0123456789ABCDEF");
    EXPECT_EQ(lineOf(source, 1), "00000010  00 4A 46 E9 7F                                   "
                                 ".JF..");
    EXPECT_TRUE(source.row(2).empty());
    EXPECT_TRUE(source.row(UINT64_MAX).empty());
}

TEST_F(HexTest, anEmptyFileHasNoRows) {
    HexSource source(folder.write("bytes", ""));
    EXPECT_EQ(source.rowCount(), 0U);
    EXPECT_TRUE(source.row(0).empty());
}

TEST_F(HexTest, aFileOfGigabytesIsReadOnlyWhereItIsLookedAt) {
    const std::uint64_t size = (std::uint64_t{20} << 30) + 3;
    const auto path = folder.write("big", "");
    std::filesystem::resize_file(path, size); // takes no place on the disk
    {
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(size - 3));
        file << "end";
    }
    HexSource source(path);
    EXPECT_EQ(source.offsetDigits(), 9);
    EXPECT_EQ(source.rowCount(), size / 16 + 1);
    EXPECT_EQ(lineOf(source, source.rowCount() - 1).substr(0, 20), "500000000  65 6E 64 ");
    Unwatched task;
    const HexSearch search =
        findInFile(source.file(), needlesOfText("END", LetterCase::ignored), size - 1000, task);
    ASSERT_TRUE(search.match);
    EXPECT_EQ(search.match->offset, size - 3);
}

TEST_F(HexTest, textIsFoundInThreeEncodings) {
    EXPECT_EQ(findText("..caf\xE9", "café"), 2U);
    EXPECT_EQ(findText("..caf\xC3\xA9", "café"), 2U);
    EXPECT_EQ(findText("..c\0a\0f\0\xE9\0"s, "café"), 2U);
    EXPECT_EQ(findText("..caf?", "café"), std::nullopt);
    EXPECT_EQ(findText("\x34\x04\x30\x04"s, "да"), 0U);
    EXPECT_EQ(findText("??", "да"), std::nullopt); // no character of Windows-1252
    EXPECT_EQ(needlesOfText("abc", LetterCase::exact).size(), 2U);
    EXPECT_TRUE(needlesOfText("", LetterCase::exact).empty());
}

TEST_F(HexTest, caseCanBeIgnored) {
    EXPECT_EQ(findText("..Pass", "pASS"), std::nullopt);
    EXPECT_EQ(findText("..Pass", "pASS", LetterCase::ignored), 2U);
    EXPECT_EQ(findText("..CAF\xC3\x89", "café", LetterCase::ignored), 2U);
    EXPECT_EQ(findText("..\xC4\xB0stanbul", "istanbul", LetterCase::ignored), 2U);
    EXPECT_EQ(findText("..\xC4\xB1ss\xC4\xB1z", "ISSIZ", LetterCase::ignored), 2U);
    EXPECT_EQ(findText("..\xC4\xB0stanbul", "istanbul", LetterCase::exact), std::nullopt);
    EXPECT_EQ(findText("\x14\x04\x10\x04"s, "да", LetterCase::ignored), 0U);
}

TEST_F(HexTest, bytesAreGivenAsDigits) {
    const auto needle = needleOfBytes(" 4A 46 49 46 ");
    ASSERT_TRUE(needle);
    EXPECT_EQ(find("\xFF\xD8\xFF\xE0\0\x10JFIF"s, {*needle}), 6U);
    EXPECT_TRUE(needleOfBytes("4a464946"));
    for (const char *wrong : {"", "   ", "4", "4A 4", "4 A", "4G", "0x4A"})
        EXPECT_FALSE(needleOfBytes(wrong)) << wrong;
}

TEST_F(HexTest, aMatchAcrossTwoBlocksIsFoundAndTheSearchGoesOnAfterOne) {
    std::string bytes(std::size_t{4} << 20, '.');
    bytes.replace(bytes.size() - 2, 2, "se");
    bytes += "am..seam";
    const auto needles = needlesOfText("seam", LetterCase::exact);
    const std::uint64_t first = (std::uint64_t{4} << 20) - 2;
    EXPECT_EQ(find(bytes, needles), first);
    EXPECT_EQ(find(bytes, needles, first + 1), first + 6);
    EXPECT_EQ(find(bytes, needles, first + 7), std::nullopt);
    EXPECT_EQ(find(bytes, needles, UINT64_MAX), std::nullopt);
}

TEST_F(HexTest, aSearchIsCancelledBetweenBlocks) {
    const FileReader file(folder.write("bytes", std::string(std::size_t{9} << 20, '.')));
    CancelAfter task(1);
    const HexSearch search = findInFile(file, needlesOfText("x", LetterCase::exact), 0, task);
    EXPECT_TRUE(search.cancelled);
    EXPECT_FALSE(search.match);
}

TEST_F(HexTest, offsetsAreDecimalUnlessMarked) {
    EXPECT_EQ(offsetIn(" 100 "), 100U);
    EXPECT_EQ(offsetIn("0x1F40"), 8000U);
    EXPECT_EQ(offsetIn("1F40h"), 8000U);
    for (const char *wrong : {"", "h", "0x", "-1", "1F40", "12 34", "99999999999999999999999"})
        EXPECT_FALSE(offsetIn(wrong)) << wrong;
}

} // namespace
} // namespace nv::test
