#include "cli/RowWriter.h"

#include <gtest/gtest.h>

#include <sstream>

namespace nv::cli {
namespace {

std::string written(Format format, const std::vector<std::vector<Cell>> &rows) {
    std::ostringstream out;
    const auto writer = makeRowWriter(format, out, {"id", "text"});
    for (const auto &row : rows)
        writer->row(row);
    writer->finish();
    return out.str();
}

TEST(RowWriter, csvQuotesWhatWouldBreakALine) {
    EXPECT_EQ(written(Format::csv, {{1, "a,b"}, {2, "say \"hi\"\r\nnow"}, {3, nullptr}, {4, true}}),
              "id,text\r\n1,\"a,b\"\r\n2,\"say \"\"hi\"\"\r\nnow\"\r\n3,\r\n4,True\r\n");
}

TEST(RowWriter, tsvKeepsOneRowOnOneLine) {
    EXPECT_EQ(written(Format::tsv, {{1, "a\tb\nc\\d"}}), "id\ttext\n1\ta\\tb\\nc\\\\d\n");
}

TEST(RowWriter, jsonLinesAreTypedAndSurviveBadBytes) {
    EXPECT_EQ(written(Format::jsonl, {{1, "x\xFFy"}, {2, nullptr}}),
              "{\"id\":1,\"text\":\"x\uFFFDy\"}\n{\"id\":2,\"text\":null}\n");
}

TEST(RowWriter, theTableAlignsAndCutsButNeverObeysEvidence) {
    EXPECT_EQ(written(Format::table, {{1, "a"}, {22, "\x1B[31mred\nline"}}),
              "id  text\n1   a\n22  \u241B[31mred\u240Aline\n");
    const std::string wide = written(Format::table, {{1, std::string(200, 'x')}});
    EXPECT_NE(wide.find(std::string(79, 'x') + "\u2026\n"), std::string::npos);
}

TEST(RowWriter, theTableOfNoRowsHasItsHeadings) {
    EXPECT_EQ(written(Format::table, {}), "id  text\n");
}

TEST(RowWriter, rowsBeyondTheMeasuredOnesAreCutToTheColumn) {
    std::vector<std::vector<Cell>> rows(150, {1, "ab"});
    rows.push_back({2, "a much longer cell"});
    EXPECT_TRUE(written(Format::table, rows).ends_with("2   a m\u2026\n"));
}

TEST(RowWriter, columnsOfEqualNamesKeepTheirValues) {
    std::ostringstream out;
    makeRowWriter(Format::jsonl, out, {"URL", "URL", "URL (2)", "URL"})->row({1, 2, 3, 4});
    EXPECT_EQ(out.str(), "{\"URL\":1,\"URL (2)\":2,\"URL (2) (2)\":3,\"URL (3)\":4}\n");
}

TEST(Printable, showsControlsAndMarksOfDirectionAsTheTableDoes) {
    EXPECT_EQ(printable("a\u009Bb\u00e9"), "a<U+009B>b\u00e9");
    EXPECT_EQ(printable("photo\u202Egnp.exe"), "photo<U+202E>gnp.exe");
    EXPECT_EQ(printable("photo\u202Egnp.exe", 8), "photo<U\u2026");
    EXPECT_EQ(printable("caf\xE9"), "caf\u00e9");
}

} // namespace
} // namespace nv::cli
