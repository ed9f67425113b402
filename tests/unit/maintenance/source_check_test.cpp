#include "base/Digest.h"
#include "base/Files.h"
#include "db/project/ProjectDatabase.h"
#include "db/trail/CaseTrail.h"
#include "import/ArtefactHash.h"
#include "import/ImportTrail.h"
#include "maintenance/SourceCheck.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/Unprivileged.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include <sys/stat.h>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct SourceCheckTest : testing::Test {
    SourceCheckTest() {
        project.filePath = folder.path() / "case.nvp";
        EXPECT_TRUE(project.createDatabaseProject());
    }
    /// As an import leaves it.
    fs::path add(const std::string &name, const std::string &content) {
        folder.write(name, content);
        return imported(folder.path() / name);
    }
    /// A cache of two files, one of them in a folder below.
    fs::path addFolder(const std::string &name) {
        folder.write(name + "/index", "one");
        folder.write(name + "/entries/0A", "two");
        return imported(folder.path() / name);
    }
    fs::path imported(const fs::path &path) {
        const FileHashes hashes = *hashesOfArtefact(Evidence(folder.path()), path);
        SQLite::Statement row(project.connection(),
                              "INSERT INTO SourceFiles (FilePath, MD5Hash, FileSize) "
                              "VALUES (?, ?, ?)");
        row.bind(1, textOf(path));
        row.bind(2, hashes.md5);
        row.bind(3, static_cast<std::int64_t>(hashes.size));
        row.exec();
        TrailEntry entry;
        entry.action = "Import";
        entry.filePath = textOf(path);
        entry.fileSize = static_cast<std::int64_t>(hashes.size);
        entry.md5Hash = hashes.md5;
        entry.sha256Hash = hashes.sha256;
        CaseTrail(project.connection()).add(entry);
        CaseTrail(project.connection()).add(trailEntry(ImportEnd{.hashedBeside = 0}));
        return path;
    }
    /// Of a file that was read beside the artefact.
    fs::path addBeside(const std::string &name, const std::string &content) {
        FileBeside file;
        file.path = folder.write(name, content);
        const FileHashes hashes = *hashesOfFile(file.path);
        file.fileSize = hashes.size;
        file.md5Hash = hashes.md5;
        file.sha256Hash = hashes.sha256;
        CaseTrail(project.connection()).add(trailEntry(file, ArtefactResult()));
        return file.path;
    }
    SourceCheck verify() {
        test::MemoryTask task;
        return verifySources(project.connection(), log, task);
    }
    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    ProjectDatabase project{log, clock};
};

TEST_F(SourceCheckTest, unchangedFilesAreTheSame) {
    add("a", "one");
    add("b", "");
    const SourceCheck check = verify();
    EXPECT_TRUE(check.allSame());
    EXPECT_EQ(check.sources.size(), 2U);
    EXPECT_EQ(check.sources[0].sha256Now,
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

TEST_F(SourceCheckTest, filesThatWereReadBesideOthersAreCompared) {
    add("History", "one");
    const fs::path pages = addBeside("History-wal", "two");
    const fs::path body = addBeside("f_000001", "three");
    EXPECT_TRUE(verify().allSame());
    folder.write("f_000001", "THREE");
    fs::remove(pages);
    const SourceCheck check = verify();
    ASSERT_EQ(check.sources.size(), 3U);
    EXPECT_EQ(check.sources[1].path, pages.string());
    EXPECT_EQ(check.sources[1].state, SourceState::gone);
    EXPECT_EQ(check.sources[2].path, body.string());
    EXPECT_EQ(check.sources[2].state, SourceState::changed);
    EXPECT_EQ(summaryText(check), "1 of 3 imported files are as they were, 1 changed, 1 gone.");
    const std::set<fs::path> only = {body};
    test::MemoryTask task;
    EXPECT_EQ(verifySources(project.connection(), log, task, &only).sources.size(), 1U);
}

TEST_F(SourceCheckTest, whatWasNotHashedIsNotCalledUnchanged) {
    add("History", "one");
    FileBeside unread;
    unread.path = folder.write("History-wal", "two");
    unread.failure = "cannot read";
    CaseTrail(project.connection()).add(trailEntry(unread, ArtefactResult()));
    const SourceCheck check = verify();
    EXPECT_FALSE(check.allSame());
    EXPECT_EQ(check.count(SourceState::unknown), 1U);
}

TEST_F(SourceCheckTest, importsOfEarlierVersionsHashedNothingBeside) {
    add("a", "one");
    EXPECT_EQ(verify().besideUnhashed, 0U);
    CaseTrail(project.connection()).add(trailEntry(ImportEnd{.found = 0}));
    EXPECT_EQ(verify().besideUnhashed, 0U) << "it took nothing up";
    TrailEntry entry;
    entry.action = "Import";
    entry.filePath = folder.write("b", "two").string();
    entry.md5Hash = hashesOfFile(entry.filePath)->md5;
    CaseTrail(project.connection()).add(entry);
    CaseTrail(project.connection()).add(trailEntry(ImportEnd{.found = 1}));
    const SourceCheck check = verify();
    EXPECT_EQ(check.besideUnhashed, 1U);
    EXPECT_EQ(summaryText(check),
              "2 of 2 imported files are as they were. What lies beside 1 imported file (logs of "
              "databases, blocks and bodies of caches) wasn't hashed at the import and isn't "
              "compared.");
}

TEST_F(SourceCheckTest, aLogThatLiesBesideADatabaseOnlyNowIsNew) {
    add("History", "one");
    addBeside("History-wal", "two");
    const fs::path other = add("caf\xE9/Cookies", "three");
    EXPECT_TRUE(verify().allSame());
    folder.write("History-shm", "");
    folder.write("Other-wal", "x");
    EXPECT_TRUE(verify().allSame()) << "which hold no rows of it";
    const fs::path journal = folder.write("History-journal", "four");
    const fs::path pages = folder.write("caf\xE9/Cookies-WAL", "");
    const SourceCheck check = verify();
    EXPECT_FALSE(check.allSame());
    ASSERT_EQ(check.sources.size(), 5U);
    EXPECT_EQ(check.sources[1].path, journal.string()) << "behind its database";
    EXPECT_EQ(check.sources[1].state, SourceState::appeared);
    EXPECT_EQ(check.sources[1].sizeNow, 4);
    EXPECT_EQ(check.sources[1].sha256Now, hashesOfFile(journal)->sha256);
    EXPECT_EQ(check.sources[1].md5Then, "");
    EXPECT_EQ(check.sources[4].path, textOf(pages));
    EXPECT_EQ(check.total, 3U);
    EXPECT_EQ(summaryText(check), "3 of 3 imported files are as they were, 2 new beside them (not "
                                  "read at the import).");
    const std::set<fs::path> only = {other};
    test::MemoryTask task;
    EXPECT_EQ(verifySources(project.connection(), log, task, &only).sources.size(), 2U);
}

TEST_F(SourceCheckTest, aNewLogThatCannotBeReadIsNewAllTheSame) {
    add("History", "one");
    const fs::path pages = folder.write("History-wal", "two");
    fs::permissions(pages, fs::perms::none);
    SourceCheck check;
    {
        const test::Unprivileged nobody(folder.path());
        check = verify();
    }
    fs::permissions(pages, fs::perms::owner_all);
    ASSERT_EQ(check.sources.size(), 2U);
    EXPECT_EQ(check.sources[1].state, SourceState::appeared);
    EXPECT_EQ(check.sources[1].sha256Now, "");
    EXPECT_EQ(log.entries.size(), 1U);
}

/// It hashed no log, so nobody knows which were there.
TEST_F(SourceCheckTest, besideWhatAnEarlierVersionImportedNothingIsNew) {
    TrailEntry entry;
    entry.action = "Import";
    entry.filePath = folder.write("History", "one").string();
    entry.md5Hash = hashesOfFile(entry.filePath)->md5;
    CaseTrail(project.connection()).add(entry);
    CaseTrail(project.connection()).add(trailEntry(ImportEnd{.found = 1}));
    folder.write("History-wal", "two");
    EXPECT_TRUE(verify().allSame());
    EXPECT_EQ(verify().besideUnhashed, 1U);
}

TEST_F(SourceCheckTest, anImportThatNeverEndedIsTold) {
    add("a", "one");
    CaseTrail(project.connection()).add(trailEntry(ImportBegin{3, 40}, "/mnt/a"));
    const SourceCheck check = verify();
    EXPECT_TRUE(check.allSame());
    EXPECT_THAT(summaryText(check),
                testing::StartsWith("1 of 1 imported files are as they were. An import began "));
    EXPECT_THAT(summaryText(check), testing::HasSubstr("its rows follow row 40"));
}

TEST_F(SourceCheckTest, aCacheThatIsAFolderIsComparedAsOne) {
    addFolder("same");
    const fs::path changed = addFolder("changed");
    const fs::path more = addFolder("more");
    const fs::path renamed = addFolder("renamed");
    const fs::path emptied = addFolder("emptied");
    fs::remove_all(addFolder("gone"));
    EXPECT_EQ(verify().count(SourceState::same), 5U);
    folder.write("changed/entries/0A", "2wo");
    folder.write("more/entries/0B", "three");
    fs::resize_file(more / "entries" / "0B", std::uintmax_t{1} << 40); // hours to read
    fs::rename(renamed / "index", renamed / "index2");
    fs::remove_all(emptied);
    fs::create_directory(emptied);
    const SourceCheck check = verify();
    std::vector<SourceState> states;
    for (const CheckedSource &source : check.sources)
        states.push_back(source.state);
    EXPECT_EQ(states,
              (std::vector{SourceState::same, SourceState::changed, SourceState::changed,
                           SourceState::changed, SourceState::unreadable, SourceState::gone}));
    EXPECT_EQ(check.sources.at(0).sizeNow, 6);
    test::CancelAfter task(1);
    EXPECT_TRUE(verifySources(project.connection(), log, task).cancelled);
}

TEST_F(SourceCheckTest, onlyPlainFilesAreOpened) {
    const fs::path pipe = add("pipe", "one");
    const fs::path endless = add("endless", "two");
    fs::remove(pipe);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::remove(endless);
    fs::create_symlink("/dev/zero", endless);
    const SourceCheck check = verify();
    EXPECT_EQ(check.sources.at(0).state, SourceState::unreadable);
    EXPECT_EQ(check.sources.at(1).state, SourceState::unreadable);
    ASSERT_EQ(log.entries.size(), 2U);
    EXPECT_NE(log.entries[0].message.find("is no plain file any more"), std::string::npos);
}

TEST_F(SourceCheckTest, aFileThatHasGrownHasChangedHoweverLongItIs) {
    const fs::path grown = add("grown", "one");
    const fs::path filled = add("filled", "");
    constexpr std::uintmax_t kHuge = std::uintmax_t{1} << 40; // a sparse file, hours to read
    fs::resize_file(grown, kHuge);
    fs::resize_file(filled, kHuge);
    const SourceCheck check = verify();
    for (const CheckedSource &source : check.sources) {
        EXPECT_EQ(source.state, SourceState::changed);
        EXPECT_EQ(source.sizeNow, static_cast<std::int64_t>(kHuge));
        EXPECT_EQ(source.md5Now, "");
    }
}

TEST_F(SourceCheckTest, findsFilesWhoseNamesAreNoUtf8) {
    add("caf\xE9/na\xC3\xAFve/a", "one");
    const SourceCheck check = verify();
    EXPECT_TRUE(check.allSame()) << summaryText(check);
}

TEST_F(SourceCheckTest, whatMayNotBeOpenedIsNotGone) {
    const fs::path file = add("closed/a", "one");
    fs::permissions(file.parent_path(), fs::perms::none);
    SourceCheck check;
    {
        const test::Unprivileged nobody(folder.path());
        check = verify();
    }
    fs::permissions(file.parent_path(), fs::perms::owner_all);
    EXPECT_EQ(check.sources.at(0).state, SourceState::unreadable);
}

TEST_F(SourceCheckTest, whatCouldNotBeImportedIsNotCompared) {
    TrailEntry entry;
    entry.action = "Not Readable";
    entry.filePath = "/nowhere";
    CaseTrail(project.connection()).add(entry);
    EXPECT_TRUE(verify().sources.empty());
}

TEST_F(SourceCheckTest, aForgedMd5IsFoundByTheOtherHash) {
    const fs::path file = add("a", "one");
    folder.write("a", "two");
    const FileHashes now = *hashesOfFile(file);
    TrailEntry entry;
    entry.action = "Import";
    entry.filePath = file.string();
    entry.md5Hash = now.md5;
    entry.sha256Hash = std::string(64, '0');
    CaseTrail(project.connection()).add(entry);
    EXPECT_EQ(verify().sources.at(1).state, SourceState::changed);
}

TEST_F(SourceCheckTest, eachFileOfTheSameContentIsLookedAt) {
    const fs::path copied = add("a", "one");
    const FileHashes hashes = *hashesOfFile(copied);
    TrailEntry entry;
    entry.action = "Import";
    entry.filePath = (folder.path() / "copy").string();
    entry.md5Hash = hashes.md5;
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
    EXPECT_EQ(check.sources[0].sha256Then, "");
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
    EXPECT_EQ(summaryText(check),
              "0 of 2 imported files checked, 0 as they were; cancelled before the end.");
}

TEST_F(SourceCheckTest, anEmptyProjectIsTheSame) {
    EXPECT_TRUE(verify().allSame());
}

} // namespace
} // namespace nv
