#include "MadeProject.h"
#include "db/project/StoredQueries.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/queries/TestQuery.h"
#include "views/rows/IdLoader.h"
#include "views/table/UrlTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::HasSubstr;

struct TestQueryTest : testing::Test {
    QueryCheck check(std::string_view sql) { return testTyped(sql, *reader, made.log); }
    test::MadeProject made;
    std::unique_ptr<SQLite::Database> reader = openReadOnly(made.project.filePath);
};

TEST(SanitizeSQLText, lineBreaksAndTabsBecomeOneBlankEach) {
    EXPECT_EQ(sanitizeSQLText("a\r\nb\tc\rd\ne\n\r\nf"), "a b c d e  f");
    EXPECT_EQ(sanitizeSQLText(""), "");
}

TEST_F(TestQueryTest, aSelectIsValid) {
    const QueryCheck query = check("  SELECT *\r\nFROM URLs\tORDER BY Host ASC \n");
    EXPECT_EQ(query.errCode, 0);
    EXPECT_EQ(query.errDescription, "");
    EXPECT_EQ(query.sql, "SELECT * FROM URLs ORDER BY Host ASC");
    EXPECT_EQ(query.orderBy, "Host ASC");
    EXPECT_EQ(check("SELECT TOP 3 * FROM URLs WHERE ActionDateUTC > #1/15/2009#;").errCode, 0);
    EXPECT_EQ(check("WITH w AS (SELECT * FROM URLs) SELECT * FROM w").errCode, 0);
    EXPECT_EQ(check("SELECT * FROM [Google/Gmail]").errCode, 0);
    EXPECT_TRUE(made.log.entries.empty());
}

TEST_F(TestQueryTest, refusalsComeInTheDatabasesOwnWords) {
    const QueryCheck query = check("SELECT colour FROM URLs");
    EXPECT_EQ(query.errCode, 1);
    EXPECT_EQ(query.errDescription, "no such column: colour");
    EXPECT_EQ(query.sql, "SELECT colour FROM URLs");
    ASSERT_EQ(made.log.entries.size(), 1u);
    EXPECT_EQ(made.log.entries[0].procedure, "TestQuery()");
    EXPECT_THAT(check("SELECT * FROM URLs WHERE ActionDateUTC > #31/31/2009#").errDescription,
                HasSubstr("is no date"));
    EXPECT_THAT(check("SELECT * FROM URLs WHERE URL LIKE '[a'").errDescription,
                HasSubstr("Invalid pattern string"));
    EXPECT_EQ(check("SELECT * FROM URLs ORDER BY FileName ASC, ActionDateUTC ASC").errDescription,
              "no such column: FileName");
}

TEST_F(TestQueryTest, nothingButOneSelectIsTaken) {
    made.add({{"URL", std::string("kept")}});
    for (const char *sql : {"",
                            "   ",
                            "-- nothing",
                            "DELETE FROM URLs",
                            "UPDATE URLs SET URL = 'x'",
                            "INSERT INTO URLs (URL) VALUES ('x') RETURNING *",
                            "DROP TABLE URLs",
                            "CREATE TABLE x (y)",
                            "PRAGMA user_version",
                            "PRAGMA journal_mode=DELETE",
                            "ATTACH 'x.db' AS x",
                            "VACUUM",
                            "BEGIN",
                            "EXPLAIN SELECT * FROM URLs",
                            "EXPLAIN QUERY PLAN SELECT * FROM URLs",
                            "SELECT * FROM URLs WHERE URL = ?",
                            "SELECT * FROM URLs WHERE URL = :name",
                            "SELECT 1; DELETE FROM URLs",
                            "SELECT load_extension('x')",
                            "WITH w AS (SELECT 1) DELETE FROM URLs"}) {
        const QueryCheck query = check(sql);
        EXPECT_NE(query.errCode, 0) << sql;
        EXPECT_NE(query.errDescription, "") << sql;
    }
    EXPECT_EQ(check("DELETE FROM URLs").errDescription,
              "not authorized: a query only reads the project, with SELECT");
    EXPECT_EQ(made.fieldOf(1, "URL"), "kept");
}

TEST_F(TestQueryTest, aFailureOfTheFirstRowCounts) {
    made.add({{"URL", std::string("[a")}});
    EXPECT_NE(check("SELECT * FROM URLs WHERE 'x' LIKE URL").errCode, 0);
}

TEST_F(TestQueryTest, aStatementThatNeverEndsIsTaken) {
    const QueryCheck query =
        check("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) SELECT * FROM URLs "
              "WHERE URL_ID = (SELECT max(x) FROM n) OR (SELECT count(*) FROM n) > 0");
    EXPECT_EQ(query.errCode, 0) << query.errDescription;
}

TEST_F(TestQueryTest, aLineCommentWouldHideWhatFollowsIt) {
    EXPECT_THAT(check("SELECT * FROM URLs -- all\nWHERE Visits > 3").errDescription,
                HasSubstr("/* comment */"));
    EXPECT_EQ(check("SELECT * FROM URLs /* all */\nWHERE Visits > 3").errCode, 0);
    EXPECT_EQ(check("SELECT * FROM URLs WHERE URL = '-- a\nb'").errCode, 0);
    EXPECT_EQ(check("SELECT * FROM URLs\nWHERE Visits > 3 -- often").errCode, 0);
}

TEST_F(TestQueryTest, aLoadCanReadAndNothingElse) {
    // A table in the place of a view, a trigger on it, and a view over a function of the program's.
    made.add({{"URL", std::string("kept")}});
    made.db().exec("CREATE VIEW [evil] AS SELECT load_extension('x'), * FROM URLs");
    test::MemoryTask task;
    UrlTable table(made.db(), made.log, made.zone);
    for (const char *name : {"evil", "URLs] ; DELETE FROM URLs; --", "x\" ; DROP TABLE URLs; --"}) {
        table.choice = {name, false, ""};
        EXPECT_EQ(table.loadURLs(task), LoadResult::Failed) << name;
    }
    EXPECT_EQ(made.fieldOf(1, "URL"), "kept");
    RowIds ids;
    for (const char *sql : {"DELETE FROM URLs RETURNING URL_ID",
                            "INSERT INTO URLs (URL) VALUES ('x') RETURNING URL_ID"})
        EXPECT_ANY_THROW(collectIds(made.db(), {sql, ""}, task, ids)) << sql;
    EXPECT_EQ(made.fieldOf(1, "URL"), "kept");
    made.add({{"URL", std::string("written after the load")}});
}

} // namespace
} // namespace nv
