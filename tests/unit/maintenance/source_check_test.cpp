#include "base/Digest.h"
#include "db/CaseTrail.h"
#include "db/DatabaseClass.h"
#include "maintenance/SourceCheck.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct SourceCheckTest : testing::Test {
    SourceCheckTest() {
        project.FilePath = folder.path() / "case.nvp";
        EXPECT_TRUE(project.CreateDatabaseProject());
    }
    /// As an import leaves it.
    fs::path add(const std::string &name, const std::string &content) {
        folder.write(name, content);
        const fs::path path = folder.path() / name;
        const FileHashes hashes = *hashesOfFile(path);
        SQLite::Statement row(project.connection(),
                              "INSERT INTO SourceFiles (FilePath, MD5Hash, FileSize) "
                              "VALUES (?, ?, ?)");
        row.bind(1, path.string());
        row.bind(2, hashes.MD5);
        row.bind(3, static_cast<std::int64_t>(hashes.size));
        row.exec();
        TrailEntry entry;
        entry.Action = "Import";
        entry.FilePath = path.string();
        entry.MD5Hash = hashes.MD5;
        entry.SHA256Hash = hashes.SHA256;
        CaseTrail(project.connection()).add(entry);
        return path;
    }
    SourceCheck verify() {
        test::MemoryTask task;
        return verifySources(project.connection(), log, task);
    }
    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    DatabaseClass project{log, clock};
};

TEST_F(SourceCheckTest, unchangedFilesAreTheSame) {
    add("a", "one");
    add("b", "");
    const SourceCheck check = verify();
    EXPECT_TRUE(check.allSame());
    EXPECT_EQ(check.sources.size(), 2U);
    EXPECT_EQ(check.sources[0].SHA256Now,
              "7692c3ad3540bb803c020b3aee66cd8887123234ea0c6e7143c0add73ff431ed");
    EXPECT_EQ(summaryText(check), "2 of 2 imported files are as they were.");
}

TEST_F(SourceCheckTest, changedGoneAndUnreadableFilesAreTold) {
    add("a", "one");
    const fs::path gone = add("b", "two");
    const fs::path unreadable = add("c", "three");
    folder.write("a", "One");
    fs::remove(gone);
    fs::remove(unreadable);
    fs::create_directory(unreadable);
    const SourceCheck check = verify();
    EXPECT_FALSE(check.allSame());
    ASSERT_EQ(check.sources.size(), 3U);
    EXPECT_EQ(check.sources[0].state, SourceState::changed);
    EXPECT_EQ(check.sources[1].state, SourceState::gone);
    EXPECT_EQ(check.sources[2].state, SourceState::unreadable);
    EXPECT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(summaryText(check),
              "0 of 3 imported files are as they were, 1 changed, 1 gone, 1 unreadable.");
}

TEST_F(SourceCheckTest, aForgedMd5IsFoundByTheOtherHash) {
    const fs::path file = add("a", "one");
    folder.write("a", "two");
    const FileHashes now = *hashesOfFile(file);
    TrailEntry entry;
    entry.Action = "Import";
    entry.FilePath = file.string();
    entry.MD5Hash = now.MD5;
    entry.SHA256Hash = std::string(64, '0');
    CaseTrail(project.connection()).add(entry);
    EXPECT_EQ(verify().sources.at(1).state, SourceState::changed);
}

TEST_F(SourceCheckTest, eachFileOfTheSameContentIsLookedAt) {
    const fs::path copied = add("a", "one");
    const FileHashes hashes = *hashesOfFile(copied);
    TrailEntry entry;
    entry.Action = "Import";
    entry.FilePath = (folder.path() / "copy").string();
    entry.MD5Hash = hashes.MD5;
    CaseTrail(project.connection()).add(entry);
    const SourceCheck check = verify();
    ASSERT_EQ(check.sources.size(), 2U);
    EXPECT_EQ(check.sources[1].state, SourceState::gone);
}

TEST_F(SourceCheckTest, projectsOfEarlierVersionsHaveOnlyMd5s) {
    add("a", "one");
    project.connection().exec("DROP TABLE AuditTrail");
    const SourceCheck check = verify();
    EXPECT_TRUE(check.allSame());
    EXPECT_EQ(check.sources[0].SHA256Then, "");
    project.connection().exec("UPDATE SourceFiles SET MD5Hash = ''");
    EXPECT_EQ(verify().sources[0].state, SourceState::unknown);
}

TEST_F(SourceCheckTest, aCancelEndsIt) {
    add("a", "one");
    add("b", "two");
    test::CancelAfter task(1);
    const SourceCheck check = verifySources(project.connection(), log, task);
    EXPECT_TRUE(check.cancelled);
    EXPECT_TRUE(check.sources.empty());
}

TEST_F(SourceCheckTest, anEmptyProjectIsTheSame) {
    EXPECT_TRUE(verify().allSame());
}

} // namespace
} // namespace nv
