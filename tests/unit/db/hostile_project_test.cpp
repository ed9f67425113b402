#include "base/Files.h"
#include "base/Trap.h"
#include "db/project/ProjectDatabase.h"
#include "db/project/StoredQueries.h"
#include "db/sql/ReadOnlyConnection.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <unistd.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// Projects that were damaged, made by somebody else, or lie where nothing can be written.
struct HostileProjectTest : testing::Test {
    HostileProjectTest() { project.filePath = folder.path() / "case.nvp"; }

    void makeProject(const std::string &sql = "") {
        ASSERT_TRUE(project.createDatabaseProject());
        project.connection().exec(sql);
        project.closeDB();
    }
    std::string reasonOf(const fs::path &file) {
        project.filePath = file;
        return failureOf(log, "test", [this] { project.open(); }).value_or("opened");
    }
    /// As a user that may not write everywhere, in a process of its own: 0 when `body` said true.
    template <class Body>
    static void asNobody(Body body) {
        if (::setgid(65534) != 0 || ::setuid(65534) != 0)
            std::_Exit(3);
        std::_Exit(body() ? 0 : 1);
    }

    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    ProjectDatabase project{log, clock};
};

TEST_F(HostileProjectTest, openingNamesTheFileAndTheReason) {
    const auto text = folder.write("text.nvp", std::string(5000, 'x'));
    EXPECT_EQ(reasonOf(text),
              "\"" + text.string() + "\": this is no project (file is not a database)");
    EXPECT_NE(reasonOf(folder.path() / "none.nvp").find("there is no such file"),
              std::string::npos);
    EXPECT_NE(reasonOf(folder.path()).find("this is a folder"), std::string::npos);
    EXPECT_NE(reasonOf("").find("there is no such file"), std::string::npos);
    EXPECT_NE(reasonOf(folder.write("empty.nvp", "")).find("the file is empty"), std::string::npos);
    EXPECT_FALSE(project.isOpen());
}

TEST_F(HostileProjectTest, aCutFileIsRefusedAndLeftAsItIs) {
    makeProject();
    const std::string whole{ByteView(readWhole(project.filePath)).raw()};
    const auto cut = folder.write("cut.nvp", whole.substr(0, whole.size() / 2));
    const std::string reason = reasonOf(cut);
    EXPECT_NE(reason.find("malformed"), std::string::npos) << reason;
    EXPECT_EQ(fs::file_size(cut), whole.size() / 2);
    EXPECT_FALSE(fs::exists(cut.string() + "-wal"));
}

TEST_F(HostileProjectTest, aDatabaseOfAnotherProgramWithATableOfTheNameIsRefusedUnchanged) {
    const auto foreign = folder.path() / "foreign.nvp";
    SQLite::Database(foreign.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE URLs (URL_ID INTEGER PRIMARY KEY, URL TEXT); "
              "INSERT INTO URLs (URL) VALUES ('theirs')");
    // What they wrote last lies beside the file: to open it would bring that in.
    SQLite::Database theirs(foreign.string(), SQLite::OPEN_READWRITE);
    theirs.exec("PRAGMA journal_mode=WAL; INSERT INTO URLs (URL) VALUES ('more')");
    const auto copy = folder.path() / "copy.nvp";
    for (const char *suffix : {"", "-wal"})
        fs::copy_file(foreign.string() + suffix, copy.string() + suffix);
    const auto bytesOf = [](const fs::path &file) {
        return std::string(ByteView(readWhole(file)).raw());
    };
    const std::string before = bytesOf(copy);
    const std::string journal = bytesOf(copy.string() + "-wal");
    EXPECT_NE(reasonOf(copy).find("this is no project: its application_id is 0x00000000"),
              std::string::npos);
    EXPECT_EQ(bytesOf(copy), before);
    EXPECT_EQ(bytesOf(copy.string() + "-wal"), journal);
    EXPECT_FALSE(fs::exists(copy.string() + "-shm"));
    EXPECT_THROW(openReadOnly(copy), StorageFailure);
}

TEST_F(HostileProjectTest, aProjectThatLacksTheSmallTablesStillOpens) {
    makeProject("DROP TABLE Keywords; DROP TABLE URLSortTable; DROP TABLE SchemaColumns");
    EXPECT_EQ(reasonOf(project.filePath), "opened");
}

TEST_F(HostileProjectTest, makingOneLeavesAFileThatIsThereAlone) {
    const auto note = folder.write("case.nvp", "somebody's own file");
    EXPECT_FALSE(project.createDatabaseProject());
    EXPECT_FALSE(project.isOpen());
    EXPECT_EQ(ByteView(readWhole(note)).raw(), "somebody's own file");
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].procedure, "DatabaseClass.CreateDatabaseProject()");
    EXPECT_NE(log.entries[0].message.find("already"), std::string::npos);
    project.filePath = folder.path() / "no" / "folder.nvp";
    EXPECT_FALSE(project.createDatabaseProject());
}

TEST_F(HostileProjectTest, namesWithAMeaningToTheDatabaseAreNamesOfFiles) {
    for (const char *name : {"file:x?mode=memory", ":memory:", "a b%20'\".nvp", "\xC3\xA4.nvp"}) {
        project.filePath = folder.path() / name;
        EXPECT_TRUE(project.createDatabaseProject()) << name;
        project.closeDB();
        EXPECT_TRUE(fs::exists(project.filePath)) << name;
    }
}

TEST_F(HostileProjectTest, triggersNeverRun) {
    makeProject("CREATE TRIGGER t AFTER INSERT ON Keywords BEGIN DELETE FROM DefaultSettings; END;"
                "INSERT INTO DefaultSettings VALUES ('a', 'b')");
    project.open();
    project.connection().exec("INSERT INTO Keywords (Keyword) VALUES ('x')");
    EXPECT_EQ(project.connection().execAndGet("SELECT count(*) FROM DefaultSettings").getInt(), 1);
}

TEST_F(HostileProjectTest, aViewThatSelectsItselfIsAnErrorAndNoMore) {
    makeProject("DROP VIEW \"_DEFAULT\"; CREATE VIEW \"_DEFAULT\" AS SELECT * FROM \"_DEFAULT\"");
    project.open();
    EXPECT_THROW(project.connection().execAndGet("SELECT * FROM _DEFAULT"), SQLite::Exception);
    StoredQueries(project.connection()).resetDEFAULTQuery();
    EXPECT_EQ(project.connection().execAndGet("SELECT count(*) FROM _DEFAULT").getInt(), 0);
}

TEST_F(HostileProjectTest, aMissingQueryTableIsToldAndNoStorageFailure) {
    makeProject("DROP TABLE StoredQueries");
    project.open();
    EXPECT_THROW(StoredQueries(project.connection()).list(), SQLite::Exception);
}

TEST_F(HostileProjectTest, aFileOrFolderThatCantBeWrittenIsRefused) {
    if (::getuid() != 0)
        GTEST_SKIP() << "needs to become another user";
    makeProject();
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(project.filePath, fs::perms{0444});
    const auto says = [this](std::string_view what) {
        return reasonOf(project.filePath).find(what) != std::string::npos;
    };
    EXPECT_EXIT(asNobody([&] { return says("the file can't be written"); }),
                testing::ExitedWithCode(0), "");
    fs::permissions(project.filePath, fs::perms{0666});
    fs::permissions(folder.path(), fs::perms{0555});
    EXPECT_EXIT(asNobody([&] { return says("its folder can't be written"); }),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(asNobody([&] {
                    return openReadOnly(project.filePath)
                               ->execAndGet("SELECT count(*) FROM _DEFAULT")
                               .getInt() == 0;
                }),
                testing::ExitedWithCode(0), "");
    fs::permissions(folder.path(), fs::perms::owner_all);
}

} // namespace
} // namespace nv
