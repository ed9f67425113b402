#include "db/sql/SideFiles.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct SideFilesTest : testing::Test {
    SideFilesTest() {
        for (const char *name : {"a.nvp", "a.nvp-wal", "a.nvp-shm", "a.nvp-journal", "a.nvp-notes"})
            folder.write(name, "x");
    }
    bool isThere(const char *name) const { return fs::exists(folder.path() / name); }

    test::TempFolder folder;
    fs::path database = folder.path() / "a.nvp";
};

TEST_F(SideFilesTest, theyStandBesideTheDatabaseUnderItsWholeName) {
    EXPECT_EQ(sideFile(database, kLogSuffix), folder.path() / "a.nvp-wal");
    EXPECT_EQ(kSideSuffixes.size(), 3U);
}

TEST_F(SideFilesTest, onlyTheyAreRemovedFromBesideADatabase) {
    removeSideFiles(database);
    EXPECT_TRUE(isThere("a.nvp") && isThere("a.nvp-notes"));
    EXPECT_FALSE(isThere("a.nvp-wal") || isThere("a.nvp-shm") || isThere("a.nvp-journal"));
}

TEST_F(SideFilesTest, aDatabaseIsRemovedWithThemAndMissingOnesAreNoFailure) {
    fs::remove(folder.path() / "a.nvp-shm");
    removeDatabase(database);
    EXPECT_TRUE(isThere("a.nvp-notes"));
    EXPECT_FALSE(isThere("a.nvp") || isThere("a.nvp-wal") || isThere("a.nvp-journal"));
    removeDatabase(database);
    EXPECT_TRUE(isThere("a.nvp-notes"));
}

} // namespace
} // namespace nv
