#include "readers/Limits.h"
#include "readers/sqlite/ColumnList.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "readers/sqlite/RowLookup.h"
#include "support/TempFolder.h"
#include "support/builders/SqliteFile.h"

#include <gtest/gtest.h>

#include <array>

namespace nv {
namespace {

constexpr std::array<std::string_view, 2> kColumns = {"missing", "value"};

/// Look-ups in table "t" by column "id" of a file that a test makes.
struct SqliteLookUp : testing::Test {
    RowLookup &open(const std::string &sql) {
        test::SqliteFile(folder.path() / "file").run(sql);
        copy.emplace(evidence, folder.path() / "file", folder.path());
        database.emplace(copy->path(), copy->size());
        return lookup.emplace(*database, "t", "ID", kColumns);
    }
    test::TempFolder folder;
    Evidence evidence{folder.path()};
    std::optional<EvidenceCopy> copy;
    std::optional<EvidenceDatabase> database;
    std::optional<RowLookup> lookup;
};

TEST(SqliteColumns, areListedAsFarAsTheTableHasThem) {
    const std::set<std::string> present = {"value", "id"};
    const ColumnList list(present, kColumns, {"rowid"});
    EXPECT_EQ(list.sql, "rowid, \"value\"");
    EXPECT_EQ(list.positions, (std::vector{-1, 1}));
    EXPECT_EQ(ColumnList(present, kColumns, {}).sql, "\"value\"");
}

TEST_F(SqliteLookUp, findsTheRowOfAKey) {
    open("CREATE TABLE t(id INTEGER PRIMARY KEY, value); INSERT INTO t VALUES(1,'a'),(-7,'b')");
    EXPECT_EQ(lookup->find(-7)->text(1), "b");
    EXPECT_EQ(lookup->find(1)->text(1), "a");
    EXPECT_EQ(lookup->find(1)->text(0), "");
    EXPECT_FALSE(lookup->find(2));
}

TEST_F(SqliteLookUp, takesTheFirstOfSeveralRows) {
    open("CREATE TABLE t(id, value); INSERT INTO t VALUES(1,'first'),(1,'second')");
    EXPECT_EQ(lookup->find(1)->text(1), "first");
}

TEST_F(SqliteLookUp, saysWhatIsNotThere) {
    const auto message = [this](const std::string &sql) {
        try {
            open(sql);
        } catch (const EvidenceDamage &damage) {
            return std::string(damage.what());
        }
        return std::string();
    };
    const std::string expected = "in its list of tables: table \"t\" with column \"ID\" was "
                                 "expected and is not there";
    EXPECT_EQ(message("CREATE TABLE other(id)"), expected);
    EXPECT_EQ(message("CREATE TABLE t(value)"), expected);
    EXPECT_EQ(message("CREATE TABLE o(id); CREATE VIEW t AS SELECT * FROM o"), expected);
}

TEST_F(SqliteLookUp, givesUpOnATableThatHasLostItsKey) {
    open("CREATE TABLE t(id, value); INSERT INTO t WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
         "SELECT i+1 FROM n WHERE i < 400000) SELECT i, i FROM n");
    EXPECT_EQ(lookup->find(1)->text(1), "1");
    for (std::uint64_t i = 0; i < limits::kSlowLookUps; ++i)
        EXPECT_THROW(lookup->find(400000), EvidenceDamage);
    EXPECT_THROW(lookup->find(1), EvidenceDamage) << "though it would be found at once";
}

} // namespace
} // namespace nv
