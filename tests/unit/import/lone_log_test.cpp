// What the scan says of the log or journal of a browser's database that isn't there.

#include "base/Files.h"
#include "import/Scan.h"
#include "readers/sqlite/LoneLog.h"
#include "support/ImportOption.h"
#include "support/LiveHistory.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kJournal = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7"s + std::string(12, '\0') +
                             "\x00\x00\x02\x00\x00\x00\x02\x00"s + std::string(2000, 'x');

struct LoneLogTest : testing::Test {
    LoneLogTest() { job.startingDirectory = folder.path() / "evidence"; }

    std::vector<UnreadPlace> told() {
        Unwatched task;
        log.entries.clear();
        return scan(job, task, log).gaps.unreadable;
    }
    std::vector<std::string> paths() {
        std::vector<std::string> found;
        for (const UnreadPlace &place : told())
            found.push_back(place.path.lexically_relative(job.startingDirectory).string());
        return found;
    }
    fs::path write(const std::string &name, const std::string &bytes) const {
        return folder.write("evidence/" + name, bytes);
    }

    test::TempFolder folder;
    test::MemoryLog log;
    ImportSettings job;
};

TEST_F(LoneLogTest, aLogWithPagesIsToldWhereverItLies) {
    const fs::path place = folder.path() / "evidence" / "any";
    test::writeLiveHistory(folder.path() / "live", place);
    EXPECT_THAT(paths(), IsEmpty()) << "it is read with its database";
    fs::remove(place / "History");
    const auto found = told();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].path, place / "History-wal");
    EXPECT_THAT(
        found[0].reason,
        testing::MatchesRegex(".*any/History-wal\" is the log of pages of a database that "
                              "isn't there \\(\"History\", Chromium History\\): rows may lie "
                              "in its [0-9]+ pages?, and none is read without the "
                              "database"));
    EXPECT_EQ(log.entries.size(), 1U);
}

TEST_F(LoneLogTest, aDatabaseOfAnotherCaseIsTheOne) {
    const fs::path place = folder.path() / "evidence" / "any";
    test::writeLiveHistory(folder.path() / "live", place);
    fs::rename(place / "History", place / "HISTORY");
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(LoneLogTest, aJournalWithPagesIsTold) {
    write("any/places.sqlite-journal", kJournal);
    const auto found = told();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_THAT(found[0].reason, HasSubstr("is the journal of a database that isn't there"));
    EXPECT_THAT(found[0].reason, HasSubstr("rows may lie in its 2 pages"));
}

TEST_F(LoneLogTest, inAProfileItsPlaceIsEnoughUnlessItIsEmpty) {
    for (const char *name : {"Cookies-wal", "Login Data-journal", "History-wal"}) {
        const fs::path file = write("User Data/Profile 2/"s + name, "");
        EXPECT_THAT(paths(), IsEmpty());
        write("User Data/Profile 2/"s + name, std::string(900, '\0'));
        EXPECT_THAT(paths(), ElementsAre("User Data/Profile 2/"s + name));
        fs::remove(file);
    }
    write("Profiles/x.default/cookies.sqlite-wal", "cut");
    const auto found = told();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_THAT(found[0].reason, HasSubstr("rows may lie in its 3 bytes"));
}

TEST_F(LoneLogTest, elsewhereAFileOfSuchANameIsAnybodys) {
    write("notes/History-wal", "of the house, and of all that was in it for a hundred years");
    write("notes/Cookies-journal", "");
    write("notes/-wal", kJournal);
    write("notes/recipes-journal", kJournal);
    write("notes/page.htm-journal", kJournal);
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(LoneLogTest, headsThatAreCutOrHostileHoldNoPages) {
    for (std::size_t size = 1; size <= 40; ++size)
        write("any/" + std::to_string(size) + "/History-journal", kJournal.substr(0, size));
    std::string hostile = kJournal;
    hostile.replace(20, 8, 8, '\xFF');
    write("any/places.sqlite-journal", hostile);
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(LoneLogTest, oneThatTheExaminerNamedIsTold) {
    const fs::path file = write("caf\xE9/History-WAL", "bytes");
    Unwatched task;
    const auto found = scanPlaces(job, {file, file.parent_path()}, task, log).gaps.unreadable;
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].path, file);
}

TEST_F(LoneLogTest, formatsThatAreNotAskedForAreNotMissed) {
    write("Default/History-wal", "bytes");
    setWanted(job, test::importOption("chkHistoryChrome"), false);
    EXPECT_THAT(paths(), IsEmpty());
}

TEST(LoneLogNames, leadToTheDatabase) {
    EXPECT_EQ(databaseOfLog("/a/History-wal"), "/a/History");
    EXPECT_EQ(databaseOfLog("/a/\xFF-JOURNAL"), "/a/\xFF");
    EXPECT_FALSE(databaseOfLog("/a/-wal"));
    EXPECT_FALSE(databaseOfLog("/a/History-shm"));
    EXPECT_FALSE(databaseOfLog("/a-wal/History"));
}

} // namespace
} // namespace nv
