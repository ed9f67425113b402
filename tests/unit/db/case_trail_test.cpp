#include "db/CaseTrail.h"
#include "db/DatabaseClass.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

struct CaseTrailTest : testing::Test {
    CaseTrailTest() {
        project.FilePath = folder.path() / "case.nvp";
        EXPECT_TRUE(project.CreateDatabaseProject());
    }
    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    DatabaseClass project{log, clock};
};

TEST_F(CaseTrailTest, aNewProjectHasNone) {
    EXPECT_TRUE(CaseTrail(project.connection()).entries().empty());
    EXPECT_FALSE(project.connection().tableExists("AuditTrail"));
}

TEST_F(CaseTrailTest, entriesComeBackInTheirOrder) {
    TrailEntry entry;
    entry.ActionDateUTC = Date::fromUnixSeconds(1308139200);
    entry.Action = "Import";
    entry.Detail = "chrome-history: complete";
    entry.FilePath = "/mnt/\xC3\xA4'; DROP TABLE URLs; --/History";
    entry.FileSize = 5'000'000'000;
    entry.MD5Hash = std::string(32, 'a');
    entry.SHA256Hash = std::string(64, 'b');
    entry.RowCount = 12;
    entry.AppVersion = "2.0.0";
    CaseTrail trail(project.connection());
    trail.add(entry);
    entry.Action = "Export";
    trail.add(entry);
    project.CloseDB();
    project.open();
    const auto entries = CaseTrail(project.connection()).entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].Trail_ID, 1);
    EXPECT_EQ(entries[0].Action, "Import");
    EXPECT_EQ(entries[0].ActionDateUTC, entry.ActionDateUTC);
    EXPECT_EQ(entries[0].FilePath, entry.FilePath);
    EXPECT_EQ(entries[0].FileSize, 5'000'000'000);
    EXPECT_EQ(entries[1].Action, "Export");
    EXPECT_EQ(entries[1].RowCount, 12);
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
