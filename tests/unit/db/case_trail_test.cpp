#include "db/project/ProjectDatabase.h"
#include "db/trail/CaseTrail.h"
#include "db/trail/TrailChain.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Savepoint.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

struct CaseTrailTest : testing::Test {
    CaseTrailTest() {
        project.filePath = folder.path() / "case.nvp";
        EXPECT_TRUE(project.createDatabaseProject());
    }
    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    ProjectDatabase project{log, clock};
};

TEST_F(CaseTrailTest, aNewProjectHasNone) {
    EXPECT_TRUE(CaseTrail(project.connection()).entries().empty());
    EXPECT_FALSE(project.connection().tableExists("AuditTrail"));
}

TEST_F(CaseTrailTest, entriesComeBackInTheirOrder) {
    TrailEntry entry;
    entry.actionDateUTC = Date::fromUnixSeconds(1308139200);
    entry.action = "Import";
    entry.detail = "chrome-history: complete";
    entry.filePath = "/mnt/\xC3\xA4'; DROP TABLE URLs; --/History";
    entry.fileSize = 5'000'000'000;
    entry.md5Hash = std::string(32, 'a');
    entry.sha256Hash = std::string(64, 'b');
    entry.rowCount = 12;
    entry.appVersion = "2.0.0";
    CaseTrail trail(project.connection());
    trail.add(entry);
    entry.action = "Export";
    trail.add(entry);
    project.closeDB();
    project.open();
    const auto entries = CaseTrail(project.connection()).entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].trailID, 1);
    EXPECT_EQ(entries[0].action, "Import");
    EXPECT_EQ(entries[0].actionDateUTC, entry.actionDateUTC);
    EXPECT_EQ(entries[0].filePath, entry.filePath);
    EXPECT_EQ(entries[0].fileSize, 5'000'000'000);
    EXPECT_EQ(entries[1].action, "Export");
    EXPECT_EQ(entries[1].rowCount, 12);
}

TEST_F(CaseTrailTest, whatIsWrittenCantBeChanged) {
    CaseTrail(project.connection()).add({});
    EXPECT_THROW(project.connection().exec("UPDATE AuditTrail SET RowCount = 9"),
                 SQLite::Exception);
    EXPECT_THROW(project.connection().exec("DELETE FROM AuditTrail"), SQLite::Exception);
    EXPECT_EQ(CaseTrail(project.connection()).entries().size(), 1U);
}

/// Six entries, and the trail without its guards, for what a forger could do.
struct TrailChainTest : CaseTrailTest {
    TrailChainTest() {
        for (int number = 1; number <= 6; ++number)
            add("entry " + std::to_string(number));
    }
    void add(const std::string &detail) {
        TrailEntry entry;
        entry.actionDateUTC = Date::fromUnixSeconds(1308139200);
        entry.action = "Import";
        entry.detail = detail;
        entry.fileSize = 5;
        CaseTrail(project.connection()).add(entry);
    }
    void forge(const std::string &sql) {
        project.connection().exec("DROP TRIGGER IF EXISTS AuditTrail_NoUpdate; "
                                  "DROP TRIGGER IF EXISTS AuditTrail_NoDelete; " +
                                  sql);
    }
    TrailChain chain() { return checkTrail(project.connection()); }
};

TEST_F(TrailChainTest, eachEntryHoldsTheHashOfTheOneBefore) {
    const auto entries = CaseTrail(project.connection()).entries();
    ASSERT_EQ(entries.size(), 6U);
    for (std::size_t at = 0; at < entries.size(); ++at) {
        EXPECT_EQ(entries[at].entryHash.size(), 64U);
        EXPECT_EQ(entries[at].entryHash, trailHash(entries[at], entries[at].previousHash));
        EXPECT_EQ(entries[at].previousHash, at == 0 ? "" : entries[at - 1].entryHash);
    }
    EXPECT_TRUE(chain().isWhole());
    EXPECT_EQ(chain().entries, 6);
    EXPECT_EQ(chain().head, entries.back().entryHash);
    EXPECT_NE(chainText(chain()).find(entries.back().entryHash), std::string::npos);
}

TEST_F(TrailChainTest, theHashIsTheOneOfTheDocument) {
    TrailEntry entry;
    entry.action = "Import";
    // printf '0:\n0:\n6:Import\n0:\n0:\n1:0\n0:\n0:\n1:0\n0:\n' | sha256sum
    EXPECT_EQ(trailHash(entry, ""),
              "7bfecd2aecdb0a051c89c866bc9bfd1633a73b54204bf58b01d7a2fac1540822");
}

TEST_F(TrailChainTest, eachKindOfForgeryIsNamedByItsFirstEntry) {
    const std::vector<std::pair<std::string, std::int64_t>> forgeries = {
        {"UPDATE AuditTrail SET Detail = 'other' WHERE Trail_ID = 3", 3},
        {"UPDATE AuditTrail SET ActionDateUTC = ActionDateUTC + 1 WHERE Trail_ID = 6", 6},
        {"UPDATE AuditTrail SET EntryHash = PreviousHash WHERE Trail_ID = 4", 4},
        {"UPDATE AuditTrail SET EntryHash = '', PreviousHash = '' WHERE Trail_ID = 4", 4},
        {"DELETE FROM AuditTrail WHERE Trail_ID = 2", 2},
        {"DELETE FROM AuditTrail WHERE Trail_ID = 1", 1},
        {"DELETE FROM AuditTrail WHERE Trail_ID = 6", 6},
        {"DELETE FROM AuditTrail", 1},
        {"UPDATE AuditTrail SET EntryHash = NULL, PreviousHash = NULL", 1},
        {"UPDATE AuditTrail SET EntryHash = NULL, PreviousHash = NULL WHERE Trail_ID < 4", 1},
        {"DROP TABLE AuditTrail", 1},
        {"ALTER TABLE AuditTrail DROP COLUMN EntryHash; "
         "ALTER TABLE AuditTrail DROP COLUMN PreviousHash",
         1},
        {"DELETE FROM AuditTrail; DELETE FROM sqlite_sequence WHERE name = 'AuditTrail'", 1},
        {"DELETE FROM AuditTrail WHERE Trail_ID > 4; "
         "UPDATE sqlite_sequence SET seq = 4 WHERE name = 'AuditTrail'",
         5}};
    for (const auto &[sql, number] : forgeries) {
        SQLite::Savepoint undone(project.connection(), "forgery");
        forge(sql);
        EXPECT_EQ(chain().broken, number) << sql << ' ' << chainText(chain());
        undone.rollback();
    }
    EXPECT_TRUE(chain().isWhole());
}

/// As of projects of builds that kept no end.
TEST_F(TrailChainTest, aTrailThatLostItsHashesIsTakenForNoEarlierOne) {
    const std::string forgetEnd = "DELETE FROM DefaultSettings WHERE DefaultName = 'CaseTrailEnd';";
    for (const char *sql : {"UPDATE AuditTrail SET EntryHash = NULL, PreviousHash = NULL",
                            "DROP TABLE AuditTrail", "ALTER TABLE AuditTrail DROP COLUMN EntryHash",
                            "DELETE FROM AuditTrail; "
                            "DELETE FROM sqlite_sequence WHERE name = 'AuditTrail'"}) {
        SQLite::Savepoint undone(project.connection(), "forgery");
        forge(forgetEnd + sql);
        EXPECT_FALSE(chain().isWhole()) << sql;
        undone.rollback();
    }
    forge(forgetEnd + "UPDATE AuditTrail SET EntryHash = NULL, PreviousHash = NULL");
    add("the next one");
    EXPECT_EQ(chain().broken, 1) << chainText(chain());
}

TEST_F(TrailChainTest, entriesThatFollowALossDontHideIt) {
    for (const auto &[sql, number] : std::vector<std::pair<std::string, std::int64_t>>{
             {"DELETE FROM AuditTrail WHERE Trail_ID > 4; "
              "UPDATE sqlite_sequence SET seq = 4 WHERE name = 'AuditTrail'",
              6},
             {"DROP TABLE AuditTrail", 6},
             {"UPDATE AuditTrail SET EntryHash = NULL, PreviousHash = NULL", 1}}) {
        SQLite::Savepoint undone(project.connection(), "forgery");
        forge(sql);
        for (int more = 0; more < 8; ++more) {
            add("later");
            EXPECT_FALSE(chain().isWhole()) << sql << ' ' << more;
        }
        EXPECT_EQ(chain().broken, number) << sql << ' ' << chainText(chain());
        undone.rollback();
    }
}

/// Its entries follow the end that was kept.
TEST_F(TrailChainTest, entriesOfABuildThatKeepsNoEndAreTaken) {
    const std::string kept =
        project.connection()
            .execAndGet("SELECT DefaultValue FROM DefaultSettings WHERE DefaultName = "
                        "'CaseTrailEnd'")
            .getString();
    EXPECT_EQ(kept, "6 0 " + chain().head);
    add("of the other build");
    project.connection().exec("UPDATE DefaultSettings SET DefaultValue = '" + kept +
                              "' WHERE DefaultName = 'CaseTrailEnd'");
    EXPECT_TRUE(chain().isWhole()) << chainText(chain());
    add("the next one");
    EXPECT_TRUE(chain().isWhole()) << chainText(chain());
    EXPECT_EQ(chain().entries, 8);
}

TEST_F(TrailChainTest, aTrailOfAnEarlierVersionIsChainedFromThenOn) {
    forge("DELETE FROM DefaultSettings WHERE DefaultName = 'CaseTrailEnd'; "
          "ALTER TABLE AuditTrail DROP COLUMN EntryHash; "
          "ALTER TABLE AuditTrail DROP COLUMN PreviousHash; "
          "DELETE FROM SchemaColumns WHERE ColumnName LIKE '%Hash' AND TableName = 'AuditTrail'");
    EXPECT_EQ(chain().unchained, 6);
    EXPECT_TRUE(chain().isWhole());
    EXPECT_NE(chainText(chain()).find("not chained"), std::string::npos);
    add("the first of this version");
    add("the second");
    EXPECT_EQ(chain().entries, 8);
    EXPECT_EQ(chain().unchained, 6);
    EXPECT_TRUE(chain().isWhole()) << chainText(chain());
    EXPECT_EQ(project.connection()
                  .execAndGet("SELECT count(*) FROM SchemaColumns WHERE TableName = 'AuditTrail' "
                              "AND ColumnName IN ('PreviousHash', 'EntryHash')")
                  .getInt(),
              2);
    forge("UPDATE AuditTrail SET Detail = 'other' WHERE Trail_ID = 2");
    EXPECT_EQ(chain().broken, 7) << "what follows was chained to it";
}

TEST_F(TrailChainTest, aTableThatOnlyBearsTheNameStaysAsItIs) {
    forge("DROP TABLE AuditTrail; CREATE TABLE AuditTrail (x)");
    EXPECT_ANY_THROW(add("nothing"));
    EXPECT_EQ(project.connection()
                  .execAndGet("SELECT count(*) FROM pragma_table_info('AuditTrail')")
                  .getInt(),
              1);
}

TEST_F(TrailChainTest, textsOfAnyKindAreHashedAsTheyAreStored) {
    add(std::string("a\0b\xFF\n1:x", 9));
    add("");
    EXPECT_TRUE(chain().isWhole()) << chainText(chain());
}

TEST_F(CaseTrailTest, aProjectWithoutATrailHasNoChain) {
    EXPECT_TRUE(checkTrail(project.connection()).isWhole());
    EXPECT_EQ(chainText(checkTrail(project.connection())), "The case trail has no entries.");
}

} // namespace
} // namespace nv
