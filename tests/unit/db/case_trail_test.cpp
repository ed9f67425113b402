#include "db/CaseTrail.h"
#include "db/ProjectDatabase.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
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

} // namespace
} // namespace nv
