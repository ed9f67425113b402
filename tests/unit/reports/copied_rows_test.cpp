#include "reports/exports/CopiedRows.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace nv {
namespace {

std::string copied(CopyForm form, const std::vector<Cell> &cells) {
    CopiedRows rows(form, {"Host", "Visits", "URL"});
    rows.add(cells);
    rows.add({Cell("b.example"), Cell(), Cell("x")});
    return rows.take();
}

TEST(CopiedRows, csvIsQuotedAndRunsNothing) {
    const std::string text = copied(CopyForm::csv, {Cell("a,\"b"), Cell(2), Cell("=1+1")});
    EXPECT_NE(text.find("\"a,\"\"b\",2,"), std::string::npos) << text;
    EXPECT_NE(text.find("'=1+1"), std::string::npos) << text;
}

TEST(CopiedRows, markdownIsATableWithoutLinks) {
    EXPECT_EQ(copied(CopyForm::markdown, {Cell("a|b\nc"), Cell(2), Cell("http://h/[x](y)")}),
              "| Host | Visits | URL |\n| --- | --- | --- |\n"
              "| a\\|b c | 2 | http\\://h/\\[x\\]\\(y\\) |\n| b.example |  | x |\n");
}

TEST(CopiedRows, jsonIsAListOfObjects) {
    const std::string odd = "a\"\n\xFF\xE2\x80\xAE";
    const auto rows =
        nlohmann::json::parse(copied(CopyForm::json, {Cell(odd), Cell(2), Cell("u")}));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0]["Visits"], 2);
    EXPECT_TRUE(rows[1]["Visits"].is_null());
    EXPECT_EQ(nlohmann::json::parse(CopiedRows(CopyForm::json, {"a"}).take()).size(), 0U);
}

} // namespace
} // namespace nv
