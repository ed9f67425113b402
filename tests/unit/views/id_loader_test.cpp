#include "MadeProject.h"
#include "views/rows/DateIndex.h"
#include "views/rows/IdLoader.h"

namespace nv {
namespace {

struct IdLoaderTest : testing::Test, test::MadeProject {
    std::string planOf(const IdQuery &query) {
        SQLite::Statement plan(db(), "EXPLAIN QUERY PLAN " + query.sql);
        std::string text;
        while (plan.executeStep())
            text += plan.getColumn(3).getString() + "\n";
        return text;
    }
    Unwatched task;
    RowIds ids;
};

TEST_F(IdLoaderTest, theDefaultQueryReadsNothingButTheDateIndex) {
    EXPECT_EQ(ensureDateIndex(db(), task), IndexState::Made);
    EXPECT_EQ(ensureDateIndex(db(), task), IndexState::Present);
    EXPECT_EQ(planOf(loadQuery({})), "SCAN URLs USING COVERING INDEX URLDateIndex\n");
}

TEST_F(IdLoaderTest, linksAreCountedByTheirIndexes) {
    EXPECT_EQ(ensureLinkIndexes(db(), task), IndexState::Made);
    EXPECT_EQ(ensureLinkIndexes(db(), task), IndexState::Present);
    for (const char *end : {"Parent_ID", "Child_ID"})
        EXPECT_NE(
            planOf({fmt::format("SELECT Count(Link_ID) FROM LinkAnalysis WHERE {} = ?", end), ""})
                .find("INDEX Link"),
            std::string::npos);
}

TEST_F(IdLoaderTest, aCancelLeavesTheProjectWithoutTheIndex) {
    db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000) "
              "INSERT INTO URLs(ActionDateLocal) SELECT 40000 - i FROM n");
    test::CancelAfter now(0);
    EXPECT_EQ(ensureDateIndex(db(), now), IndexState::Cancelled);
    EXPECT_EQ(ensureDateIndex(db(), task), IndexState::Made);
}

TEST_F(IdLoaderTest, aStatementThatFindsNothingYetIsCancelledToo) {
    test::CancelAfter now(1);
    const IdQuery endless{"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                          "SELECT i FROM n WHERE i < 0",
                          ""};
    EXPECT_EQ(collectIds(db(), endless, now, ids), Walk::Cancelled);
    EXPECT_TRUE(ids.empty());
}

TEST_F(IdLoaderTest, anIdBeyondThirtyTwoBitsFailsClearly) {
    add({{"URL_ID", std::int64_t{7}}});
    add({{"URL_ID", std::int64_t{3'000'000'000}}});
    try {
        collectIds(db(), {"SELECT URL_ID FROM URLs ORDER BY URL_ID", ""}, task, ids);
        FAIL() << "it was taken";
    } catch (const std::runtime_error &failure) {
        EXPECT_STREQ(failure.what(), "URL_ID 3000000000 is beyond 2147483647");
    }
    EXPECT_EQ(ids, RowIds{7}) << "what came before it stays";
    EXPECT_THROW(collectIds(db(), {"SELECT NULL", ""}, task, ids), std::runtime_error);
    EXPECT_THROW(collectIds(db(), {"SELECT 'seven'", ""}, task, ids), std::runtime_error);
}

} // namespace
} // namespace nv
