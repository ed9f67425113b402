#include "readers/sqlite/Row.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace nv {
namespace {

using namespace std::string_literals;

/// One row of the values of a SELECT without a table; column 9 is one that the table lacks.
class SqliteRow : public testing::Test {
  protected:
    Row of(const std::string &values) {
        statement.emplace(database, "SELECT " + values);
        statement->executeStep();
        return {*statement, positions};
    }
    std::optional<std::int64_t> number(const std::string &value) { return of(value).number(0); }
    std::string text(const std::string &value) { return of(value).text(0); }
    bool truth(const std::string &value) { return of(value).truth(0); }

    SQLite::Database database{":memory:"};
    std::optional<SQLite::Statement> statement;
    std::vector<int> positions{0, -1};
};

TEST_F(SqliteRow, readsNumbersOutOfWhateverIsThere) {
    EXPECT_EQ(number("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(number("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(number("2.9"), 2);
    EXPECT_EQ(number("-2.9"), -2);
    EXPECT_EQ(number("1e300"), INT64_MAX);
    EXPECT_EQ(number("-9e999"), INT64_MIN);
    EXPECT_EQ(number("' +12 '"), 12);
    EXPECT_EQ(number("'9007199254740993'"), 9007199254740993);
    EXPECT_EQ(number("'99999999999999999999'"), INT64_MAX);
    EXPECT_EQ(number("'1.5e3'"), 1500);
    EXPECT_EQ(number("'12 apples'"), 12);
    EXPECT_EQ(number("x'3132'"), 12);
}

TEST_F(SqliteRow, findsNoNumberWhereThereIsNone) {
    for (const char *value : {"NULL", "''", "'apples'", "x''", "x'00'", "'+-1'", "'inf'", "'nan'"})
        EXPECT_EQ(number(value), std::nullopt) << value;
    EXPECT_EQ(of("1").number(1), std::nullopt);
}

TEST_F(SqliteRow, readsTextOutOfWhateverIsThere) {
    EXPECT_EQ(text("'caf\u00e9'"), "caf\u00e9");
    EXPECT_EQ(text("NULL"), "");
    EXPECT_EQ(text("''"), "");
    EXPECT_EQ(text("x''"), "");
    EXPECT_EQ(text("-42"), "-42");
    EXPECT_EQ(text("1.5"), "1.5");
    EXPECT_EQ(text("x'636166c3a9'"), "caf\u00e9");
    EXPECT_EQ(text("CAST(x'636166e9' AS TEXT)"), "caf\u00e9"); // no UTF-8: Windows-1252
    EXPECT_EQ(of("1").text(1), "");
}

TEST_F(SqliteRow, showsZerosSoThatNothingIsCutThere) {
    EXPECT_EQ(text("CAST(x'610062' AS TEXT)"), "a\u2400b");
    EXPECT_EQ(text("x'0000'"), "\u2400\u2400");
}

TEST_F(SqliteRow, readsTruth) {
    for (const char *value : {"1", "-1", "0.5", "'1'", "'true'", "' TRUE '", "x'31'"})
        EXPECT_TRUE(truth(value)) << value;
    for (const char *value : {"0", "0.0", "NULL", "''", "'0'", "'no'", "x'00'"})
        EXPECT_FALSE(truth(value)) << value;
    EXPECT_FALSE(of("1").truth(1));
}

TEST_F(SqliteRow, givesBytesAsTheyAreStored) {
    const auto bytes = [this](const std::string &value) {
        const auto found = of(value).bytes(0);
        return found ? std::string(found->raw()) : "nothing";
    };
    EXPECT_EQ(bytes("x'00ff00'"), "\0\xFF\0"s);
    EXPECT_EQ(bytes("'caf\u00e9'"), "caf\u00e9");
    EXPECT_EQ(bytes("CAST(x'636166e9' AS TEXT)"), "caf\xE9");
    EXPECT_EQ(bytes("-12"), "-12");
    EXPECT_EQ(bytes("x''"), "");
    EXPECT_EQ(bytes("''"), "");
    EXPECT_EQ(bytes("NULL"), "nothing");
    EXPECT_FALSE(of("x'00'").bytes(1));
}

TEST_F(SqliteRow, givesTheBytesOfUtf16TextAsUtf8) {
    SQLite::Database wide(":memory:", SQLite::OPEN_READWRITE);
    wide.exec("PRAGMA encoding='UTF-16be'; CREATE TABLE t(a); INSERT INTO t VALUES('caf\u00e9')");
    SQLite::Statement query(wide, "SELECT a FROM t");
    ASSERT_TRUE(query.executeStep());
    EXPECT_EQ(Row(query, positions).bytes(0)->raw(), "caf\u00e9");
}

} // namespace
} // namespace nv
