#include "base/Files.h"
#include "readers/sqlite/TableCursor.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/SqliteFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>

namespace nv {
namespace {

using test::SqliteFile;

constexpr std::array<std::string_view, 2> kColumns = {"id", "name"};
constexpr int kRows = 300;
constexpr std::size_t kPageSize = 512;
constexpr std::size_t kLeaf = 13; // what the first byte of a page says that holds rows of a table

/// What a walk over table t gave.
struct Walk {
    std::vector<std::int64_t> ids;
    std::uint64_t unreadable = 0;
    bool lostRows = false;
    std::uint64_t knownLost = 0;
    std::string lossText;
};

class SqliteCursor : public testing::Test {
  protected:
    std::filesystem::path path() const { return folder.path() / "t.sqlite"; }

    /// 300 rows over some 20 pages, with an index that knows them all.
    SqliteFile table(const std::string &columns = "id INTEGER PRIMARY KEY, name TEXT") {
        SqliteFile file(path(), kPageSize);
        file.run("CREATE TABLE t(" + columns + ")");
        file.run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<" +
                 std::to_string(kRows) + ") INSERT INTO t(id,name) " +
                 "SELECT i, 'the name of row ' || i FROM n");
        return file;
    }
    std::string bytes() const { return test::contentsOf(folder.path()).at(path().string()); }
    void write(const std::string &changed) const { writeWhole(path(), changed); }

    /// Offsets of the pages that hold rows of the table: an index has none of this kind.
    static std::vector<std::size_t> leaves(const std::string &file) {
        std::vector<std::size_t> found;
        for (std::size_t at = kPageSize; at < file.size(); at += kPageSize)
            if (file[at] == static_cast<char>(kLeaf))
                found.push_back(at);
        return found;
    }

    Walk walk() const {
        EvidenceDatabase database(path(), std::filesystem::file_size(path()));
        TableCursor cursor(database, "t", kColumns);
        Walk result;
        while (cursor.next()) {
            if (!cursor.isReadable()) {
                ++result.unreadable;
                continue;
            }
            EXPECT_EQ(cursor.row().number(0), cursor.rowId());
            result.ids.push_back(cursor.rowId());
        }
        result.lostRows = cursor.lostRows();
        result.knownLost = cursor.knownLost();
        result.lossText = cursor.lossText();
        return result;
    }

    test::TempFolder folder;
};

TEST_F(SqliteCursor, givesEveryRowInOrder) {
    table().run("INSERT INTO t VALUES(-5,'minus'),(9223372036854775807,'last'),"
                "(-9223372036854775808,'first')");
    const Walk result = walk();
    ASSERT_EQ(result.ids.size(), kRows + 3U);
    EXPECT_EQ(result.ids.front(), INT64_MIN);
    EXPECT_EQ(result.ids[1], -5);
    EXPECT_EQ(result.ids.back(), INT64_MAX);
    EXPECT_FALSE(result.lostRows);
}

TEST_F(SqliteCursor, isAtItsEndAtOnceInAnEmptyTable) {
    table().run("DELETE FROM t");
    const Walk result = walk();
    EXPECT_TRUE(result.ids.empty());
    EXPECT_FALSE(result.lostRows);
}

TEST_F(SqliteCursor, goesOnAfterADamagedPage) {
    table().run("CREATE INDEX i ON t(id)").close();
    std::string file = bytes();
    const auto pages = leaves(file);
    ASSERT_GT(pages.size(), 10U);
    for (const std::size_t page : {pages[0], pages[3], pages[4], pages.back()})
        file.replace(page, kPageSize, kPageSize, '\xEE');
    write(file);
    const Walk result = walk();
    EXPECT_TRUE(result.lostRows);
    EXPECT_EQ(result.ids.size() + result.knownLost, static_cast<std::size_t>(kRows));
    EXPECT_GT(result.ids.size(), 200U);
    EXPECT_EQ(result.unreadable, 0U);
    EXPECT_EQ(result.lossText,
              "in table \"t\": database disk image is malformed at its first row; " +
                  std::to_string(result.knownLost) + " of 300 rows could not be read");
}

TEST_F(SqliteCursor, saysThatTheNumberIsUnknownWithoutAnIndex) {
    table().close();
    std::string file = bytes();
    file.replace(leaves(file)[2], kPageSize, kPageSize, '\0');
    write(file);
    const Walk result = walk();
    EXPECT_GT(result.ids.size(), 250U);
    EXPECT_EQ(result.knownLost, 0U);
    EXPECT_NE(result.lossText.find("an unknown number of rows"), std::string::npos)
        << result.lossText;
}

TEST_F(SqliteCursor, losesOnlyTheRowWhoseTextIsDamaged) {
    table()
        .run("CREATE INDEX i ON t(id);"
             "UPDATE t SET name = hex(zeroblob(2000)) WHERE id = 77")
        .close();
    std::string file = bytes();
    // The text goes on over pages of its own, each led by the number of the next.
    const std::size_t inText = file.find(std::string(kPageSize - 4, '0'));
    ASSERT_NE(inText, std::string::npos);
    const std::size_t page = inText / kPageSize * kPageSize;
    file.replace(page, 4, "\x7F\xFF\xFF\xFF");
    write(file);
    const Walk result = walk();
    EXPECT_EQ(result.ids.size(), kRows - 1U);
    EXPECT_EQ(result.unreadable, 1U);
    EXPECT_EQ(result.knownLost, 1U);
}

TEST_F(SqliteCursor, throwsForTheContentOfAnUnreadableRow) {
    table().run("UPDATE t SET name = hex(zeroblob(2000)) WHERE id = 1").close();
    std::string file = bytes();
    file.replace(file.find(std::string(kPageSize - 4, '0')) / kPageSize * kPageSize, 4,
                 "\x7F\xFF\xFF\xFF");
    write(file);
    EvidenceDatabase database(path(), file.size());
    TableCursor cursor(database, "t", kColumns);
    ASSERT_TRUE(cursor.next());
    EXPECT_EQ(cursor.rowId(), 1);
    EXPECT_FALSE(cursor.isReadable());
    EXPECT_THROW(cursor.row(), EvidenceDamage);
    ASSERT_TRUE(cursor.next());
    EXPECT_EQ(cursor.row().number(0), 2);
}

TEST_F(SqliteCursor, givesNoRowTwiceWhenPagesPointInCircles) {
    table().close();
    std::string file = bytes();
    // The root holds the number of each page after its first cells; let all of them be the first.
    const auto pages = leaves(file);
    const std::size_t root = kPageSize;
    ASSERT_EQ(file[root], 5);
    const auto cells = static_cast<std::size_t>(static_cast<unsigned char>(file[root + 4]));
    for (std::size_t cell = 1; cell < cells; ++cell) {
        const std::size_t pointer = root + 12 + 2 * cell;
        const std::size_t at = root + static_cast<unsigned char>(file[pointer]) * 256U +
                               static_cast<unsigned char>(file[pointer + 1]);
        file[at + 3] = static_cast<char>(pages[0] / kPageSize + 1);
    }
    write(file);
    const Walk result = walk();
    const std::set<std::int64_t> distinct(result.ids.begin(), result.ids.end());
    EXPECT_EQ(distinct.size(), result.ids.size());
    EXPECT_TRUE(result.lostRows);
    EXPECT_GT(result.ids.size(), 0U);
}

TEST_F(SqliteCursor, keepsTheRowsThatFollowADamagedId) {
    table().close();
    std::string file = bytes();
    // A row is length, id, head length, then the type of each value and the values.
    const std::size_t name = file.find("the name of row 40");
    ASSERT_EQ(file[name - 4], 40);
    file[name - 4] = 100;
    write(file);
    const Walk result = walk();
    EXPECT_EQ(result.ids.size(), static_cast<std::size_t>(kRows));
    EXPECT_EQ(std::count(result.ids.begin(), result.ids.end(), 100), 2);
    EXPECT_TRUE(result.lostRows);
    EXPECT_EQ(result.lossText,
              "in table \"t\": rows that are out of order behind row 100; 0 of 300 "
              "rows could not be read");
}

TEST_F(SqliteCursor, noticesRowsThatOnlyAnIndexKnows) {
    table().run("CREATE INDEX i ON t(id)").close();
    std::string file = bytes();
    const std::size_t root = kPageSize;
    ASSERT_EQ(file[root], 5);
    --file[root + 4]; // one page less in the list of pages, and no other sign of it
    write(file);
    const Walk result = walk();
    EXPECT_LT(result.ids.size(), static_cast<std::size_t>(kRows));
    EXPECT_TRUE(result.lostRows);
    EXPECT_EQ(result.ids.size() + result.knownLost, static_cast<std::size_t>(kRows));
}

TEST_F(SqliteCursor, readsWhatIsLeftOfACutFile) {
    table().close();
    const std::string whole = bytes();
    std::size_t least = kRows;
    for (std::size_t pages = whole.size() / kPageSize - 1; pages >= 3; --pages) {
        write(whole.substr(0, pages * kPageSize));
        const Walk result = walk();
        EXPECT_LE(result.ids.size(), least) << pages;
        EXPECT_TRUE(result.lostRows) << pages;
        least = result.ids.size();
    }
    EXPECT_GT(least, 0U);
    EXPECT_LT(least, 50U);
}

TEST_F(SqliteCursor, makesNoValuesOutOfAPageThatIsCut) {
    table().close();
    const std::string whole = bytes();
    for (std::size_t lost = 1; lost < kPageSize; lost += 7) {
        write(whole.substr(0, whole.size() - lost));
        EvidenceDatabase database(path(), whole.size());
        EXPECT_EQ(database.damage(),
                  "the file ends amid a page, at offset " + std::to_string(whole.size() - lost));
        TableCursor cursor(database, "t", kColumns);
        while (cursor.next())
            EXPECT_EQ(cursor.row().text(1), "the name of row " + std::to_string(cursor.rowId()));
    }
}

TEST_F(SqliteCursor, reachesRowsWhoseIdIsHiddenByAColumn) {
    table("id, name, rowid TEXT DEFAULT 'x', oid DEFAULT 5").close();
    const Walk result = walk();
    EXPECT_EQ(result.ids.size(), static_cast<std::size_t>(kRows));
    EXPECT_EQ(result.ids.back(), kRows);
}

TEST_F(SqliteCursor, runsNoExpressionOfTheSchema) {
    SqliteFile(path())
        .run("CREATE TABLE t(id INTEGER PRIMARY KEY,"
             " name AS (hex(zeroblob(100000000))))")
        .run("INSERT INTO t(id) VALUES(1)");
    EvidenceDatabase database(path(), 8192);
    TableCursor cursor(database, "t", kColumns);
    ASSERT_TRUE(cursor.next());
    EXPECT_EQ(cursor.row().text(1), "");
}

TEST_F(SqliteCursor, takesTablesOnly) {
    for (const char *sql :
         {"CREATE TABLE s(id,name); CREATE VIEW t AS SELECT * FROM s",
          "CREATE VIRTUAL TABLE t USING fts4(id,name)", "CREATE TABLE other(id)"}) {
        SqliteFile(path()).run(sql).close();
        EvidenceDatabase database(path(), 8192);
        EXPECT_FALSE(database.hasTable("t")) << sql;
        EXPECT_THROW(TableCursor(database, "t", kColumns), EvidenceDamage) << sql;
    }
}

TEST_F(SqliteCursor, refusesToWriteEvenTheCopy) {
    for (const bool isCut : {false, true}) {
        table().close();
        if (isCut)
            write(bytes().substr(0, 10 * kPageSize));
        EvidenceDatabase database(path(), kPageSize);
        EXPECT_EQ(database.damage().empty(), !isCut);
        EXPECT_THROW(database.prepare("UPDATE main.sqlite_master SET sql = ''").exec(),
                     SQLite::Exception);
        EXPECT_THROW(database.prepare("DELETE FROM t").exec(), SQLite::Exception);
    }
}

TEST_F(SqliteCursor, breaksOffAStatementThatNeverEnds) {
    table().close();
    EvidenceDatabase database(path(), bytes().size());
    SQLite::Statement endless = database.prepare(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT max(i) FROM n");
    database.expectWholeTable();
    EXPECT_THROW(endless.executeStep(), SQLite::Exception);
}

} // namespace
} // namespace nv
