#include "readers/sqlite/CellPath.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

class CellPathTest : public testing::Test {
  protected:
    CellPathTest() {
        SQLite::Database made(path.string(), SQLite::OPEN_CREATE | SQLite::OPEN_READWRITE);
        made.exec(
            "CREATE TABLE urls (id INTEGER PRIMARY KEY, url TEXT);"
            "INSERT INTO urls VALUES (7, 'http://a.example/'), (8, 'http://b.example/');"
            "CREATE TABLE visits (id INTEGER PRIMARY KEY, url, at REAL);"
            "INSERT INTO visits VALUES (1, 7, 1.5), (2, '8', NULL), (3, 99, 2);"
            "CREATE TABLE sites (origin TEXT PRIMARY KEY, n) WITHOUT ROWID;"
            "INSERT INTO sites VALUES ('http://a.example/', 5);"
            "CREATE TABLE many (url); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
            "FROM n WHERE i < 5000) INSERT INTO many SELECT 7 FROM n");
    }
    std::vector<CellFound> cells(std::int64_t row, std::string_view way,
                                 std::optional<std::int64_t> start = {}) {
        if (!database)
            database = std::make_unique<EvidenceDatabase>(path, std::filesystem::file_size(path));
        return cellsAt(*database, {"visits", row}, way, start);
    }
    std::string textOf(std::int64_t row, std::string_view way,
                       std::optional<std::int64_t> start = {}) {
        const auto found = cells(row, way, start);
        const auto *text = found.empty() ? nullptr : std::get_if<std::string>(&found[0].value);
        return text ? *text : std::string();
    }

    test::TempFolder folder;
    std::filesystem::path path = folder.path() / "History";
    std::unique_ptr<EvidenceDatabase> database;
};

TEST_F(CellPathTest, leadsFromRowToRow) {
    EXPECT_EQ(textOf(1, "url>urls.id:url"), "http://a.example/");
    EXPECT_EQ(cells(1, "url>urls.id:url")[0].place, "table urls, row 7, column url");
    EXPECT_EQ(textOf(2, "url>urls.id:url"), "http://b.example/") << "a number kept as a text";
    EXPECT_EQ(textOf(9, "@visit>visits.id:url>urls.id:url", 1), "http://a.example/");
    EXPECT_EQ(startOf("@visit>visits.id:url"), "visit");
    EXPECT_TRUE(startOf("url>urls.id:url").empty());
    EXPECT_EQ(wordsOfPath("url>urls.id:url"), "table urls, column url");
}

TEST_F(CellPathTest, tablesWithoutRowIdsGoByTheirKey) {
    const auto found = cells(1, "url>urls.id:url>sites.origin:n");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].place, "table sites, row with origin http://a.example/, column n");
    EXPECT_EQ(std::get<std::int64_t>(found[0].value), 5);
}

TEST_F(CellPathTest, whatIsntThereGivesNothing) {
    EXPECT_TRUE(cells(3, "url>urls.id:url").empty());
    EXPECT_TRUE(cells(4, "url").empty());
    EXPECT_TRUE(cells(1, "none").empty());
    EXPECT_TRUE(cells(1, "url>none.id:url").empty());
    EXPECT_TRUE(cells(1, "url>urls.id:none").empty());
    EXPECT_TRUE(cells(1, "@visit>visits.id:url").empty());
    EXPECT_EQ(cells(2, "at").at(0).value.index(), 0U) << "NULL";
}

TEST_F(CellPathTest, manyRowsHaveAnEnd) {
    EXPECT_EQ(cells(1, "url>many.url:url").size(), 100U);
    EXPECT_EQ(cells(1, "url>many.url:url>many.url:url").size(), 100U);
}

} // namespace
} // namespace nv
