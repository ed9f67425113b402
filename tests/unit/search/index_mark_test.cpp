#include "SearchedProject.h"
#include "db/sql/Connection.h"
#include "db/trail/CaseTrail.h"
#include "search/IndexMark.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <functional>
#include <memory>

namespace nv::test {
namespace {

using testing::ElementsAre;

struct IndexMarkTest : testing::Test, SearchedProject {
    IndexMarkTest() {
        add({{"URL", "http://host/one"}, {"WebPageTitle", "first"}});
        add({{"URL", "http://host/two"}, {"WebPageTitle", "second"}});
        CaseTrail(connection()).add(entry()); // makes its table
        found("host");
    }
    static TrailEntry entry() {
        TrailEntry entry;
        entry.action = "Search";
        return entry;
    }
    bool holds() { return index().isUpToDate(); }
    /// A note as the program writes it, and what somebody else does meanwhile.
    void note(const std::function<void()> &meanwhile = [] {}) {
        IndexMark mark(connection());
        CaseTrail(connection()).add(entry());
        meanwhile();
        mark.keep();
    }
    std::unique_ptr<SQLite::Database> other() {
        return std::make_unique<SQLite::Database>(database.filePath.string(),
                                                  SQLite::OPEN_READWRITE);
    }
    static constexpr const char *kChange =
        "UPDATE URLs SET WebPageTitle = 'third' WHERE URL_ID = 2";
};

TEST_F(IndexMarkTest, anIndexHoldsOnOverANote) {
    ASSERT_TRUE(holds());
    CaseTrail(connection()).add(entry());
    EXPECT_FALSE(holds()) << "without a mark a note is a change like any other";
    found("host");
    note();
    EXPECT_TRUE(holds());
    note();
    EXPECT_TRUE(holds()) << "again";
}

/// As commands do that only look.
TEST_F(IndexMarkTest, aNoteLeavesAFileInTheFormThatItHas) {
    database.closeDB();
    database.open(Access::read);
    found("host");
    const auto noteAside = [this](const std::function<void()> &meanwhile) {
        const auto writer = connectToProject(database.filePath, Access::note);
        IndexMark mark(*writer);
        CaseTrail(*writer).add(entry());
        meanwhile();
        mark.keep();
    };
    noteAside([] {});
    EXPECT_TRUE(holds());
    EXPECT_EQ(number("SELECT count(*) FROM AuditTrail"), 2);
    other()->exec(kChange);
    EXPECT_FALSE(holds());
    EXPECT_THAT(found("third"), ElementsAre(2));
    noteAside([this] { other()->exec("UPDATE URLs SET WebPageTitle = 'new' WHERE URL_ID = 1"); });
    EXPECT_FALSE(holds());
    EXPECT_THAT(found("new"), ElementsAre(1));
    const std::string name = database.filePath.string();
    EXPECT_FALSE(std::filesystem::exists(name + "-wal"));
    EXPECT_FALSE(std::filesystem::exists(name + "-journal"));
}

TEST_F(IndexMarkTest, oneThatDoesNotHoldStaysSo) {
    connection().exec(kChange);
    note();
    EXPECT_FALSE(holds());
    EXPECT_THAT(found("third"), ElementsAre(2));
    other()->exec("UPDATE URLs SET WebPageTitle = 'fourth' WHERE URL_ID = 1");
    note();
    EXPECT_THAT(found("fourth"), ElementsAre(1));
}

TEST_F(IndexMarkTest, whatAnotherProgramWritesMeanwhileIsSeen) {
    note([&] { other()->exec("UPDATE URLs SET WebPageTitle = 'fourth' WHERE URL_ID = 2"); });
    EXPECT_FALSE(holds());
    EXPECT_THAT(found("fourth"), ElementsAre(2));
    // Between the look at the index and the note: the same.
    IndexMark mark(connection());
    other()->exec(kChange);
    CaseTrail(connection()).add(entry());
    mark.keep();
    EXPECT_FALSE(holds());
    EXPECT_THAT(found("third"), ElementsAre(2));
}

TEST_F(IndexMarkTest, whatIsWrittenRightAfterIsSeen) {
    for (int at = 0; at < 5; ++at) { // the sooner, the more the dates of the files are alike
        const std::string word = fmt::format("number{}", at);
        note();
        ASSERT_TRUE(holds());
        const auto changes = other();
        changes->exec(fmt::format("UPDATE URLs SET WebPageTitle = '{}' WHERE URL_ID = 2; "
                                  "PRAGMA wal_checkpoint(TRUNCATE)",
                                  word));
        EXPECT_FALSE(holds()) << at;
        EXPECT_THAT(found(word), ElementsAre(2));
    }
}

TEST_F(IndexMarkTest, whatIsOpenInTheConnectionMayHideChanges) {
    {
        SQLite::Transaction transaction(connection());
        connection().exec(kChange);
        note();
        transaction.commit();
    }
    EXPECT_FALSE(holds());
    EXPECT_THAT(found("third"), ElementsAre(2));
    {
        SQLite::Statement rows(connection(), "SELECT URL_ID FROM URLs");
        ASSERT_TRUE(rows.executeStep());
        note();
    }
    EXPECT_FALSE(holds()) << "nobody looks: the next search compares";
}

TEST_F(IndexMarkTest, aReaderOrAWriterOfTheIndexIsNotWaitedFor) {
    SQLite::Database reader(database.filePath.string(), SQLite::OPEN_READONLY);
    SQLite::Statement rows(reader, "SELECT URL_ID FROM URLs");
    ASSERT_TRUE(rows.executeStep());
    note();
    EXPECT_TRUE(holds()) << "a reader is nobody's change";
    const auto writer = index_file::open(place().beside, true);
    writer->exec("BEGIN EXCLUSIVE");
    note();
    writer->exec("ROLLBACK");
    EXPECT_FALSE(holds());
}

TEST_F(IndexMarkTest, withoutAnIndexNothingIsMade) {
    std::filesystem::remove(place().beside);
    note();
    EXPECT_FALSE(std::filesystem::exists(place().beside));
    writeWhole(place().beside, "something else");
    note();
    EXPECT_EQ(std::filesystem::file_size(place().beside), 14U);
}

} // namespace
} // namespace nv::test
