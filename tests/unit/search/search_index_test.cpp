#include "SearchedProject.h"
#include "base/Files.h"
#include "base/Md5.h"
#include "db/project/StoredQueries.h"
#include "db/sql/Dialect.h"
#include "support/Unprivileged.h"

#include <filesystem>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct SearchIndexTest : testing::Test, SearchedProject {
    SearchIndexTest() {
        for (int row = 1; row <= 20; ++row)
            add({{"URL", fmt::format("http://host/page{}.html", row)},
                 {"HTMLBody", fmt::format("the text of number{}", row)}});
        fs::create_directories(place().scratch);
    }
    IndexNews updated() {
        SearchIndex search = index();
        IndexNews told;
        EXPECT_EQ(search.bringUpToDate(task, told), IndexEnd::ready);
        return told;
    }
    fs::path file() const { return place().beside; }
    /// Bytes in the middle of the file that make no sense.
    void damage(std::uint64_t from, std::size_t count) {
        const Bytes bytes = readWhole(file());
        std::string text(ByteView(bytes).raw());
        for (std::size_t at = from; at < from + count && at < text.size(); ++at)
            text[at] = static_cast<char>(at * 37 + 11);
        writeWhole(file(), text);
    }
};

TEST_F(SearchIndexTest, isMadeOnceAndThenTaken) {
    const IndexNews first = updated();
    EXPECT_TRUE(first.madeAnew);
    EXPECT_EQ(first.added, 20);
    EXPECT_EQ(first.why, "");
    EXPECT_TRUE(fs::exists(file()));
    const IndexNews second = updated();
    EXPECT_FALSE(second.hasAny());
}

TEST_F(SearchIndexTest, leavesNothingElseBesideTheProject) {
    updated();
    found("*numb*");
    database.closeDB();
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder.path()))
        if (entry.is_regular_file())
            names.push_back(entry.path().filename());
    EXPECT_THAT(names, testing::UnorderedElementsAre("case.nvp", "case.nvp.search"));
}

TEST_F(SearchIndexTest, followsWhateverHasChangedTheProject) {
    EXPECT_THAT(found("number7"), ElementsAre(7));
    // Another program, which knows nothing of the index.
    {
        SQLite::Database other(database.filePath.string(), SQLite::OPEN_READWRITE);
        other.exec("UPDATE URLs SET HTMLBody = 'quite another' WHERE URL_ID = 7");
        other.exec("DELETE FROM URLs WHERE URL_ID = 8");
        other.exec("INSERT INTO URLs (URL, Notes) VALUES ('http://late/', 'number7 again')");
    }
    EXPECT_THAT(found("number7"), ElementsAre(21));
    EXPECT_FALSE(news.madeAnew) << "only what has changed is indexed";
    EXPECT_THAT(found("another"), ElementsAre(7));
    EXPECT_THAT(found("number8"), IsEmpty());
}

TEST_F(SearchIndexTest, indexesOnlyWhatHasChanged) {
    updated();
    connection().exec("UPDATE URLs SET Notes = 'a note' WHERE URL_ID = 3");
    const IndexNews told = updated();
    EXPECT_FALSE(told.madeAnew);
    EXPECT_EQ(told.changed, 1);
    EXPECT_EQ(told.added + told.gone, 0);
    connection().exec("UPDATE URLs SET Tagged = 1");
    EXPECT_FALSE(updated().hasAny()) << "ticks aren't searched";
}

TEST_F(SearchIndexTest, findsARowThatComesBackUnderItsNumber) {
    updated();
    connection().exec("DELETE FROM URLs WHERE URL_ID = 5");
    EXPECT_THAT(found("number5"), IsEmpty());
    connection().exec("INSERT INTO URLs (URL_ID, HTMLBody) VALUES (5, 'number5 is back')");
    EXPECT_THAT(found("number5"), ElementsAre(5));
    EXPECT_THAT(found("back"), ElementsAre(5));
}

TEST_F(SearchIndexTest, isMadeAnewWhenItIsGone) {
    updated();
    fs::remove(file());
    EXPECT_TRUE(updated().madeAnew);
    writeWhole(file(), "");
    EXPECT_TRUE(updated().madeAnew) << "a start that was killed left it empty";
}

TEST_F(SearchIndexTest, isMadeAnewWhenItIsDamaged) {
    updated();
    const auto size = fs::file_size(file());
    // The list of tables; the middle; all but the head.
    for (const auto &[from, count] :
         {std::pair<std::uint64_t, std::size_t>{100, 2000}, {size / 2, size / 2}, {100, size}}) {
        updated();
        damage(from, count);
        log.entries.clear();
        EXPECT_THAT(found("number7"), ElementsAre(7)) << from;
    }
    updated();
    fs::resize_file(file(), 3000);
    EXPECT_THAT(found("number7"), ElementsAre(7));
}

TEST_F(SearchIndexTest, isMadeAnewForAnotherForm) {
    updated();
    {
        SQLite::Database other(file().string(), SQLite::OPEN_READWRITE);
        other.exec("PRAGMA user_version = 99");
    }
    const IndexNews told = updated();
    EXPECT_TRUE(told.madeAnew);
    EXPECT_THAT(told.why, HasSubstr("another version"));
}

TEST_F(SearchIndexTest, losesNothingThatLiesUnderItsName) {
    writeWhole(file(), "somebody's notes, which are no database at all");
    const IndexNews told = updated();
    EXPECT_TRUE(told.madeAnew);
    EXPECT_THAT(told.why, HasSubstr("case.nvp.search.aside1"));
    const Bytes kept = readWhole(file().string() + ".aside1");
    EXPECT_EQ(ByteView(kept).raw(), "somebody's notes, which are no database at all");
}

TEST_F(SearchIndexTest, servesAProjectThatIsOnlyRead) {
    updated();
    connection().exec("UPDATE URLs SET Notes = 'late note' WHERE URL_ID = 4");
    database.closeDB();
    const auto before = fileMD5(database.filePath);
    database.open(Access::read);
    EXPECT_THAT(found("late"), ElementsAre(4));
    database.closeDB();
    EXPECT_EQ(fileMD5(database.filePath), before);
    database.open();
}

TEST_F(SearchIndexTest, liesInTheScratchFolderWhereItsOwnCannotBeWritten) {
    const Unprivileged nobody(folder.path());
    fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
    IndexNews told = updated();
    EXPECT_TRUE(told.inScratch);
    EXPECT_THAT(found("number7"), ElementsAre(7));
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(SearchIndexTest, isNotWrittenAmongEvidence) {
    IndexPlace among = place();
    among.isEvidence = true;
    SearchIndex search(connection(), among, log);
    RowMatch match(parseSearch("number7"));
    const SearchFound first = findRows(connection(), search, match, task);
    EXPECT_THAT(first.ids, ElementsAre(7));
    EXPECT_TRUE(first.index.inScratch);
    EXPECT_EQ(first.index.file.parent_path(), among.scratch);
    EXPECT_FALSE(fs::exists(file()));
    EXPECT_FALSE(findRows(connection(), search, match, task).index.madeAnew)
        << "within a run it is made once";
}

TEST_F(SearchIndexTest, passesADamagedOneThatCannotBeRemoved) {
    updated();
    damage(100, fs::file_size(file()));
    const Bytes bytes = readWhole(file());
    const std::string before(ByteView(bytes).raw());
    IndexPlace among = place();
    among.isEvidence = true;
    SearchIndex search(connection(), among, log);
    RowMatch match(parseSearch("number7"));
    EXPECT_THAT(findRows(connection(), search, match, task).ids, ElementsAre(7));
    const Bytes after = readWhole(file());
    EXPECT_EQ(ByteView(after).raw(), before);
}

TEST_F(SearchIndexTest, removesWhatAKilledProcessLeft) {
    updated();
    const std::string left = file().string() + ".~new2147483646"; // beyond the numbers of processes
    const std::string other = file().string() + ".~newer";
    fs::copy_file(file(), left);
    fs::copy_file(file(), other);
    fs::remove(file());
    EXPECT_TRUE(updated().madeAnew);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(other));
}

TEST_F(SearchIndexTest, keepsWhatACancelledCallHasDone) {
    CancelAfter soon(5);
    SearchIndex search = index();
    EXPECT_EQ(search.bringUpToDate(soon, news), IndexEnd::cancelled);
    EXPECT_EQ(soon.headings.size(), 1u);
    IndexNews told;
    EXPECT_EQ(search.bringUpToDate(task, told), IndexEnd::ready);
    EXPECT_FALSE(told.madeAnew);
    EXPECT_EQ(told.added, 20 - news.added);
    EXPECT_THAT(found("number20"), ElementsAre(20));
}

TEST_F(SearchIndexTest, makesItsPartsWhenTheyAreAskedFor) {
    EXPECT_THAT(found("*umber1*"), ElementsAre(1, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19));
    connection().exec("UPDATE URLs SET HTMLBody = 'lumber12' WHERE URL_ID = 12");
    EXPECT_THAT(found("*umber1*"), ElementsAre(1, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19));
    EXPECT_THAT(found("*lumb*"), ElementsAre(12));
    connection().exec("UPDATE URLs SET Notes = 'x' WHERE URL_ID = 1");
    SearchIndex search = index();
    CancelAfter soon(3);
    EXPECT_EQ(search.bringUpToDate(soon, news, true), IndexEnd::cancelled);
    EXPECT_THAT(found("*lumb*"), ElementsAre(12));
}

TEST_F(SearchIndexTest, saysWhichRowsCouldNotBeSearched) {
    connection().exec(
        "INSERT INTO URLs (URL_ID, URL) VALUES (3000000000, 'http://far/'), "
        "(9223372036854775807, 'http://far/'), (0, 'http://far/'), (-5, 'http://far/')");
    EXPECT_THAT(found("far"), IsEmpty());
    SearchIndex search = index();
    ASSERT_EQ(search.bringUpToDate(task, news), IndexEnd::ready);
    EXPECT_EQ(search.outside(), 4);
    EXPECT_TRUE(search.unread().empty());
}

TEST_F(SearchIndexTest, isGivenUpWhenMostOfItIsDead) {
    connection().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                      "15000) INSERT INTO URLs (URL) SELECT 'http://many/' || i FROM n");
    updated();
    connection().exec("UPDATE URLs SET Notes = 'all of them'");
    EXPECT_TRUE(updated().madeAnew);
    EXPECT_EQ(found("them").size(), 15'020u);
}

TEST_F(SearchIndexTest, takesProjectsOfEarlierBuilds) {
    for (const StoredQuery &query : StoredQueries(connection()).list())
        connection().exec("DROP VIEW " + quotedName(query.name));
    connection().exec("DROP TABLE RecordFacts; ALTER TABLE URLs DROP COLUMN Browser");
    EXPECT_THAT(found("number7"), ElementsAre(7));
    EXPECT_THAT(found("browser:edge"), IsEmpty());
}

/// What is merged at once leaves as much free room in the file as it took up.
TEST_F(SearchIndexTest, leavesLittleRoomFreeWhereManyPiecesWereMerged) {
    const fs::path made = folder.path() / "made.search";
    const auto index = index_file::make(made);
    // A piece for some tens of rows, in place of one for some hundred thousand.
    index->exec("INSERT INTO Brief (Brief, rank) VALUES ('hashsize', 20000)");
    index->exec("BEGIN; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                "20000) INSERT INTO Brief (rowid, Text) SELECT i, 'http://host' || (i % 97) || "
                "'/page/' || (i * 7919 % 20011) || '?q=' || (i * 31) FROM n; COMMIT");
    const auto pages = [&](const char *which) {
        return index->execAndGet(fmt::format("PRAGMA {}", which)).getInt64();
    };
    EXPECT_GT(pages("page_count"), 100);
    EXPECT_LT(pages("freelist_count") * 5, pages("page_count"));
    EXPECT_EQ(
        index->execAndGet("SELECT count(*) FROM Brief WHERE Brief MATCH '\"/page/\"'").getInt(),
        20'000);
    EXPECT_EQ(
        index->execAndGet("SELECT count(*) FROM Brief WHERE Brief MATCH '\"host96/\"'").getInt(),
        20'000 / 97);
}

/// Each change that is brought in is one more.
TEST_F(SearchIndexTest, findsAllInMorePiecesThanLieSideBySide) {
    updated();
    for (int change = 1; change <= 150; ++change) {
        const int row = change % 20 + 1;
        connection().exec(
            fmt::format("UPDATE URLs SET Notes = 'note{}.', HTMLBody = 'text{} of number{}' WHERE "
                        "URL_ID = {}",
                        change, change, row, row));
        ASSERT_THAT(found(fmt::format("note{}.", change)), ElementsAre(row));
        ASSERT_FALSE(news.madeAnew);
    }
    EXPECT_EQ(found("note13").size(), 9u) << "of the last 20: 131 to 139";
    EXPECT_THAT(found("text150"), ElementsAre(11));
    EXPECT_THAT(found("text130"), IsEmpty());
    EXPECT_EQ(found("number1").size(), 1u);
}

TEST_F(SearchIndexTest, serves100000Rows) {
    connection().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
        "INSERT INTO URLs (URL, Host, HTMLBody) SELECT 'http://h' || (i % 97) || '/p' || i, 'h' "
        "|| (i % 97), 'word' || (i % 1000) || ' and others' FROM n");
    EXPECT_EQ(found("word77").size(), 100u);
    EXPECT_EQ(found("/p100").size(), 112u) << "100, 1000 to 1009, 10000 to 10099, 100000";
    EXPECT_EQ(found("host:h96 word5*").size(), found("host:h96 /word5/").size());
    // What the index knows is read by parts: changes at their ends, rows in between and behind.
    connection().exec("UPDATE URLs SET HTMLBody = 'changed' WHERE URL_ID IN (1, 49999, 50000, "
                      "50001, 100000); DELETE FROM URLs WHERE URL_ID IN (7, 50002, 100001); "
                      "INSERT INTO URLs (URL_ID, HTMLBody) VALUES (100121, 'changed'), "
                      "(200000, 'changed'); UPDATE URLs SET URL_ID = 150000 WHERE URL_ID = 50003");
    EXPECT_THAT(found("changed"), ElementsAre(1, 49999, 50000, 50001, 100000, 100121, 200000));
    EXPECT_EQ(news.changed, 5);
    EXPECT_EQ(news.added, 3);
    EXPECT_EQ(news.gone, 4);
    EXPECT_EQ(found("others").size(), 100000u - 2 - 4);
    connection().exec("DELETE FROM URLs WHERE URL_ID > 20");
    EXPECT_EQ(found("others").size(), 0u);
}

} // namespace
} // namespace nv::test
