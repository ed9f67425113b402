#include "base/Files.h"
#include "db/marks/SearchResults.h"
#include "db/project/StoredQueries.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

struct SearchResultsTest : testing::Test, test::TestProject {
    SearchResultsTest() {
        for (int row = 0; row < 5; ++row)
            connection().exec("INSERT INTO URLs (URL) VALUES ('http://host/')");
    }
    void add(const std::string &name, const std::vector<ResultHit> &hits) {
        SearchResult result;
        result.name = name;
        result.kind = "Keywords";
        result.searchText = "it's \"quoted\"; DROP TABLE URLs; --";
        result.filePath = "/lists/first.txt";
        result.sha256Hash = std::string(64, 'c');
        result.madeUTC = Date::fromUnixSeconds(1308139200);
        result.rowCount = 2;
        result.appVersion = "2.0.0";
        SearchResults(connection()).add(result, hits.size(), [&](std::size_t at) {
            return hits.at(at);
        });
    }
};

TEST_F(SearchResultsTest, aNewProjectHasNone) {
    EXPECT_TRUE(SearchResults(connection()).list().empty());
    EXPECT_FALSE(SearchResults(connection()).find("Tide"));
    EXPECT_TRUE(SearchResults(connection()).hits({}).empty());
    EXPECT_FALSE(connection().tableExists("SearchResults"));
}

TEST_F(SearchResultsTest, comeBackAsTheyWereKept) {
    add("Tide", {{2, "low; water", "Page", 4}, {4, "", "", 0}});
    add("'; DROP TABLE URLs; --", {});
    const auto all = SearchResults(connection()).list();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].name, "Tide");
    EXPECT_EQ(all[0].kind, "Keywords");
    EXPECT_EQ(all[0].searchText, "it's \"quoted\"; DROP TABLE URLs; --");
    EXPECT_EQ(all[0].filePath, "/lists/first.txt");
    EXPECT_EQ(all[0].madeUTC.unixSeconds(), 1308139200);
    EXPECT_EQ(all[0].rowCount, 2);
    const auto hits = SearchResults(connection()).hits(all[0]);
    ASSERT_EQ(hits.size(), 2u);
    EXPECT_EQ(hits[0].term, "low; water");
    EXPECT_EQ(hits[0].hits, 4);
    EXPECT_EQ(hits[1].urlID, 4);
    EXPECT_EQ(SearchResults(connection()).find("TIDE")->resultID, all[0].resultID);
}

TEST_F(SearchResultsTest, areStoredQueriesOfTheirNames) {
    add("Tide", {{2, "a", "Page", 1}, {2, "b", "Page", 1}, {4, "a", "Title", 1}});
    EXPECT_EQ(text("SELECT group_concat(URL_ID) FROM Tide"), "2,4");
    const auto result = *SearchResults(connection()).find("Tide");
    EXPECT_EQ(StoredQueries(connection()).text("Tide"), queryOfResult(result.resultID));
    SearchResults(connection()).remove(result);
    EXPECT_FALSE(StoredQueries(connection()).text("Tide"));
    EXPECT_EQ(number("SELECT count(*) FROM SearchHits"), 0);
    EXPECT_EQ(number("SELECT count(*) FROM URLs"), 5);
}

TEST_F(SearchResultsTest, leaveAQueryThatTheExaminerHasChanged) {
    add("Tide", {{2, "a", "Page", 1}});
    StoredQueries(connection()).save({"Tide", "SELECT * FROM URLs"});
    SearchResults(connection()).remove(*SearchResults(connection()).find("Tide"));
    EXPECT_EQ(StoredQueries(connection()).text("Tide"), "SELECT * FROM URLs");
}

TEST_F(SearchResultsTest, areKeptWholeOrNotAtAll) {
    EXPECT_ANY_THROW(add("URLs", {{2, "a", "Page", 1}})) << "a table bears that name";
    EXPECT_TRUE(SearchResults(connection()).list().empty());
    database.closeDB();
    database.open(Access::read);
    EXPECT_THROW(add("Tide", {{2, "a", "Page", 1}}), StorageFailure);
}

} // namespace
} // namespace nv
