#include "base/Files.h"
#include "db/records/SourceFiles.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

class SourceFilesTest : public testing::Test {
  protected:
    static HistoryFile artefact(const std::string &name, const std::string &hash) {
        HistoryFile file;
        file.fileName = name;
        file.fileExt = "dat";
        file.fullPath = "/evidence/" + name;
        file.fileSize = 5'000'000'000;
        file.md5Hash = hash;
        return file;
    }

    test::TestProject project;
    SourceFiles sources{project.connection(), project.clock, project.log};
};

TEST_F(SourceFilesTest, aNewFileGetsARow) {
    HistoryFile file = artefact("O'Brien's; index.dat", "abc");
    EXPECT_TRUE(sources.logFile(file));
    EXPECT_EQ(file.sourceFileID, SourceFileId{1});
    EXPECT_EQ(project.text("SELECT FileName || '|' || FileExt || '|' || FilePath || '|' || MD5Hash "
                           "|| '|' || FileSize || '|' || Successful FROM SourceFiles"),
              "O'Brien's; index.dat|dat|/evidence/O'Brien's; index.dat|abc|5000000000|0");
    EXPECT_EQ(Date::fromDays(std::stod(project.text("SELECT DateProcessed FROM SourceFiles"))),
              Date::fromTimePoint(project.clock.now()));
}

TEST_F(SourceFilesTest, theSameContentKeepsItsRow) {
    HistoryFile first = artefact("first.dat", "abc");
    HistoryFile second = artefact("second.dat", "abc");
    HistoryFile other = artefact("other.dat", "def");
    ASSERT_TRUE(sources.logFile(first));
    project.clock.point += std::chrono::hours(1);
    EXPECT_TRUE(sources.logFile(second));
    EXPECT_TRUE(sources.logFile(other));
    EXPECT_EQ(second.sourceFileID, first.sourceFileID);
    EXPECT_EQ(other.sourceFileID, SourceFileId{2});
    EXPECT_EQ(project.text("SELECT group_concat(FileName) FROM SourceFiles"),
              "first.dat,other.dat");
}

TEST_F(SourceFilesTest, aFileThatAllRulesHaveReadIsNoLongerTheClassicOnesAlone) {
    SourceFiles classic{project.connection(), project.clock, project.log, ReadBy::classicRules};
    HistoryFile first = artefact("first.dat", "abc");
    HistoryFile other = artefact("other.dat", "def");
    ASSERT_TRUE(classic.logFile(first));
    ASSERT_TRUE(sources.logFile(other));
    const char *const rules = "SELECT group_concat(ClassicOnly) FROM SourceFiles";
    EXPECT_EQ(project.text(rules), "1,0");
    SourceFiles again{project.connection(), project.clock, project.log, ReadBy::classicRules};
    ASSERT_TRUE(again.logFile(other));
    EXPECT_EQ(project.text(rules), "1,0") << "what was read stays read";
    SourceFiles later{project.connection(), project.clock, project.log};
    ASSERT_TRUE(later.logFile(first));
    EXPECT_EQ(project.text(rules), "0,0");
}

TEST_F(SourceFilesTest, filesWithoutHashAreNotTheSame) {
    HistoryFile first = artefact("first.dat", "");
    HistoryFile second = artefact("second.dat", "");
    ASSERT_TRUE(sources.logFile(first));
    ASSERT_TRUE(sources.logFile(second));
    EXPECT_NE(first.sourceFileID, second.sourceFileID);
}

TEST_F(SourceFilesTest, aFileThatWasReadToItsEndIsMarked) {
    HistoryFile first = artefact("first.dat", "abc");
    HistoryFile second = artefact("second.dat", "def");
    ASSERT_TRUE(sources.logFile(first));
    ASSERT_TRUE(sources.logFile(second));
    EXPECT_TRUE(sources.setSuccessful(second.sourceFileID));
    EXPECT_EQ(project.text("SELECT group_concat(Successful) FROM SourceFiles"), "0,1");
}

TEST_F(SourceFilesTest, aFailureIsLoggedUnderItsName) {
    project.connection().exec("ALTER TABLE SourceFiles RENAME TO Elsewhere");
    HistoryFile file = artefact("first.dat", "abc");
    EXPECT_FALSE(sources.logFile(file));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.LogFile()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
}

TEST_F(SourceFilesTest, aProjectThatCantBeWrittenEndsTheTask) {
    project.connection().exec("PRAGMA query_only = 1");
    HistoryFile file = artefact("first.dat", "abc");
    EXPECT_THROW(static_cast<void>(sources.logFile(file)), StorageFailure);
}

TEST_F(SourceFilesTest, theRowSaysWhoseFileItIs) {
    HistoryFile file = artefact("History", "abc");
    file.sha256Hash = "def";
    file.origin = {"Microsoft Edge", "", "Profile 1", "O'Brien", ""};
    EXPECT_TRUE(sources.logFile(file));
    file.origin.browserVersion = "History 70";
    EXPECT_TRUE(sources.noteOrigin(file));
    EXPECT_EQ(project.text("SELECT Browser || '|' || BrowserVersion || '|' || Profile || '|' || "
                           "Person || '|' || Device || '|' || SHA256Hash FROM SourceFiles"),
              "Microsoft Edge|History 70|Profile 1|O'Brien||def");
}

TEST_F(SourceFilesTest, theSameContentOfAnotherPersonIsAnotherFile) {
    HistoryFile alice = artefact("History", "abc");
    alice.origin = {"Chromium", "", "Default", "alice", ""};
    HistoryFile bob = alice;
    bob.origin.person = "bob";
    HistoryFile nobody = artefact("History", "abc");
    HistoryFile again = alice;
    for (HistoryFile *file : {&alice, &bob, &nobody, &again})
        EXPECT_TRUE(sources.logFile(*file));
    EXPECT_EQ(again.sourceFileID, alice.sourceFileID);
    EXPECT_EQ(project.number("SELECT count(*) FROM SourceFiles"), 3);
    SourceFiles later{project.connection(), project.clock, project.log};
    HistoryFile inAnotherRun = bob;
    EXPECT_TRUE(later.logFile(inAnotherRun));
    EXPECT_EQ(inAnotherRun.sourceFileID, bob.sourceFileID);
    HistoryFile nobodyAgain = nobody;
    EXPECT_TRUE(later.logFile(nobodyAgain));
    EXPECT_EQ(nobodyAgain.sourceFileID, nobody.sourceFileID);
}

TEST_F(SourceFilesTest, aRowOfAnEarlierBuildGetsTheOriginOnce) {
    project.connection().exec("INSERT INTO SourceFiles (MD5Hash) VALUES ('ABC')");
    HistoryFile alice = artefact("History", "abc");
    alice.origin = {"Chromium", "156", "Default", "alice", ""};
    HistoryFile bob = alice;
    bob.origin.person = "bob";
    EXPECT_TRUE(sources.logFile(alice));
    EXPECT_TRUE(sources.logFile(bob));
    EXPECT_EQ(alice.sourceFileID, SourceFileId{1});
    EXPECT_EQ(bob.sourceFileID, SourceFileId{2});
    EXPECT_EQ(project.text("SELECT group_concat(Person || BrowserVersion) FROM SourceFiles"),
              "alice156,bob156");
}

} // namespace
} // namespace nv
