#include "base/Cell.h"
#include "base/TextRows.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace nv {
namespace {

using Texts = std::vector<std::string>;

TEST(Cell, isAsTextWhatPeopleExpect) {
    EXPECT_EQ(plainText(nullptr), "");
    EXPECT_EQ(plainText(Cell()), "");
    EXPECT_EQ(plainText(true), "True");
    EXPECT_EQ(plainText(false), "False");
    EXPECT_EQ(plainText(std::uint8_t{7}), "7");
    EXPECT_EQ(plainText(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(plainText(1.5), "1.5");
    EXPECT_EQ(plainText(std::string_view("a")), "a");
}

TEST(Cell, ofANumberIsWholeWhereAFloatHoldsItExactly) {
    EXPECT_EQ(numberCell(20480), Cell(20480));
    EXPECT_EQ(numberCell(-3), Cell(-3));
    EXPECT_EQ(numberCell(0.25), Cell(0.25));
    EXPECT_EQ(numberCell(9007199254740992), Cell(9007199254740992.0));
    EXPECT_EQ(plainText(numberCell(9007199254740992)), "9007199254740992");
    EXPECT_EQ(plainText(numberCell(std::numeric_limits<double>::infinity())), "inf");
}

TEST(TextRows, ofCsvQuoteWhatWouldBreakALine) {
    EXPECT_EQ(csvLine(Texts{"a", "b,c", "say \"hi\"", "two\r\nlines", ""}),
              "a,\"b,c\",\"say \"\"hi\"\"\",\"two\r\nlines\",\r\n");
    EXPECT_EQ(csvLine(Texts{""}), "\r\n");
    EXPECT_EQ(csvLine({}), "\r\n");
}

TEST(TextRows, ofJsonAreTypedKeepTheirOrderAndSurviveBadBytes) {
    const Texts names = {"z", "a", "b\"", "d", "e"};
    const std::vector<Cell> cells = {1, nullptr, true, 0.5, "x\xFFy"};
    EXPECT_EQ(jsonLine(names, cells),
              "{\"z\":1,\"a\":null,\"b\\\"\":true,\"d\":0.5,\"e\":\"x\uFFFDy\"}\n");
    EXPECT_EQ(jsonLine({}, {}), "{}\n");
}

} // namespace
} // namespace nv
