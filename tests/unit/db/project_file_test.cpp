#include "db/project/StoredQueries.h"
#include "db/sql/KeywordLists.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SideFiles.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <thread>

namespace nv {
namespace {

namespace fs = std::filesystem;

std::string outputOf(const std::string &command) {
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(::popen(command.c_str(), "r"), &::pclose);
    std::string output;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get()))
        output += static_cast<char>(c);
    return output;
}

TEST(ProjectFile, aPlainSQLiteProgramReadsEveryView) {
    if (outputOf("command -v sqlite3").empty())
        GTEST_SKIP() << "the sqlite3 program isn't there";
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs (URL, Visits) VALUES ('http://www.ebay.com/', 3)");
    const auto queries = StoredQueries(project.connection()).list();
    project.database.closeDB();
    std::string script;
    for (const StoredQuery &query : queries)
        script += "SELECT count(*) FROM [" + query.name + "];";
    const std::string file = project.database.filePath.string();
    const std::string counts =
        outputOf("sqlite3 -readonly -bail '" + file + "' \"" + script + "\" 2>&1");
    EXPECT_EQ(std::count(counts.begin(), counts.end(), '\n'),
              static_cast<std::ptrdiff_t>(queries.size()))
        << counts;
    EXPECT_EQ(outputOf("sqlite3 -readonly '" + file + "' 'SELECT URL FROM [eBay]' 2>&1"),
              "http://www.ebay.com/\n");
    EXPECT_EQ(outputOf("sqlite3 '" + file + "' 'PRAGMA integrity_check; PRAGMA journal_mode'"),
              "ok\ndelete\n");
}

/// What a program leaves that is killed in the midst of a write: part of it is in the file, and
/// what stood there before is in the journal beside it.
fs::path cutProject(test::TestProject &project) {
    const fs::path file = project.database.filePath;
    const fs::path cut = project.folder.path() / "cut.nvp";
    project.connection().exec("INSERT INTO URLs (URL) VALUES ('http://before/')");
    project.database.closeDB();
    SQLite::Database writer(file.string(), SQLite::OPEN_READWRITE);
    writer.exec(
        "PRAGMA cache_size=1; BEGIN; DELETE FROM URLs; WITH RECURSIVE n(i) AS (SELECT 1 UNION "
        "ALL SELECT i + 1 FROM n WHERE i < 2000) INSERT INTO URLs (URL) SELECT "
        "'http://cut/' || i FROM n");
    fs::copy_file(file, cut);
    fs::copy_file(sideFile(file, kJournalSuffix), sideFile(cut, kJournalSuffix));
    writer.exec("ROLLBACK");
    return cut;
}

TEST(ProjectFile, aWriteThatWasCutShortIsRolledBackByWhoOnlyReads) {
    test::TestProject project;
    const fs::path cut = cutProject(project);
    ASSERT_GT(fs::file_size(sideFile(cut, kJournalSuffix)), 0u);
    ASSERT_NE(fs::file_size(cut), fs::file_size(project.database.filePath));
    const auto database = connectToProject(cut, Access::read);
    EXPECT_EQ(database->execAndGet("SELECT group_concat(URL) FROM URLs").getString(),
              "http://before/");
    EXPECT_FALSE(fs::exists(sideFile(cut, kJournalSuffix)));
    EXPECT_TRUE(isReadOnly(*database));
}

TEST(ProjectFile, aJournalOfAWriteThatGoesOnIsLeft) {
    test::TestProject project;
    const fs::path file = project.database.filePath;
    project.database.closeDB();
    SQLite::Database writer(file.string(), SQLite::OPEN_READWRITE);
    writer.exec("BEGIN; INSERT INTO URLs (URL) VALUES ('http://on-its-way/')");
    ASSERT_TRUE(fs::exists(sideFile(file, kJournalSuffix)));
    EXPECT_EQ(
        connectToProject(file, Access::read)->execAndGet("SELECT count(*) FROM URLs").getInt(), 0);
    EXPECT_TRUE(fs::exists(sideFile(file, kJournalSuffix)));
    writer.exec("COMMIT");
    EXPECT_EQ(
        connectToProject(file, Access::read)->execAndGet("SELECT count(*) FROM URLs").getInt(), 1);
}

TEST(ProjectFile, aSecondWriterWaitsForAShortWrite) {
    test::TestProject project;
    const fs::path file = project.database.filePath;
    project.database.closeDB();
    const auto first = connectToProject(file, Access::note);
    first->exec("BEGIN IMMEDIATE; INSERT INTO URLs (URL) VALUES ('http://first/')");
    std::thread later([&first] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        first->exec("COMMIT");
    });
    const auto second = connectToProject(file, Access::write); // into another mode of the journal
    {
        const int rows = second->execAndGet("SELECT count(*) FROM URLs").getInt();
        EXPECT_EQ(rows, 1);
    }
    later.join();
    const auto third = connectToProject(file, Access::write);
    auto writing = std::make_unique<Savepoint>(*second);
    second->exec("INSERT INTO URLs (URL) VALUES ('http://second/')");
    std::thread end([&writing] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        writing->release();
    });
    {
        Savepoint waiting(*third);
        EXPECT_EQ(third->execAndGet("SELECT count(*) FROM URLs").getInt(), 2)
            << "nothing is missed";
        third->exec("INSERT INTO URLs (URL) VALUES ('http://third/')");
        waiting.release();
    }
    end.join();
    EXPECT_EQ(second->execAndGet("SELECT count(*) FROM URLs").getInt(), 3);
}

TEST(ProjectFile, queriesFindWhatTheirNamesSay) {
    test::TestProject project;
    project.connection().exec(
        "INSERT INTO URLs (URL, Visits, IsPicture, CacheFileExists, URLFileExt, Category, "
        "ThumbnailMD5Hash, IsHistory, CacheType, Tagged, ActionDateUTC, IngredientIDs) VALUES "
        "('http://a.facebook.com/b.jpg', 9, 1, 1, 'jpg', 'Pictures', 'ff', 0, 'IE Cache', 1, "
        "40709, '1|a|b'),"
        "('file:///c:/report.DOC', 1, 0, 0, 'doc', '', '', 1, 'ie daily', 0, 39000, '')");
    const std::map<std::string, int> counts = {
        {"_DEFAULT", 2},
        {"Rebuilt Webpages", 1},
        {"Social Networks", 1},
        {"Facebook", 1},
        {"YouTube", 0},
        {"MS Office Documents", 1},
        {"TOP 25 URLs", 2},
        {"Pictures (Cache only)", 1},
        {"_Show Only Pictures", 1},
        {"_Show Only JPEGs", 1},
        {"_Show Only GIFs", 0},
        {"_Show Only History", 1},
        {"_Tagged Items", 1},
        {"_Show Only IE Daily History", 1},
        {"_Activity for Last Month", 1},
        {"_Activity for Last 6 Months", 1},
    };
    for (const auto &[name, count] : counts)
        EXPECT_EQ(project.number("SELECT count(*) FROM [" + name + "]"), count) << name;
}

TEST(ProjectFile, twentyFiveRowsAreTheTop) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs (Visits) WITH RECURSIVE n(i) AS (SELECT 1 UNION "
                              "SELECT i + 1 FROM n WHERE i < 40) SELECT i FROM n");
    EXPECT_EQ(project.text("SELECT count(*) || '/' || min(Visits) FROM [TOP 25 URLs]"), "25/16");
}

TEST(ProjectFile, isKnownByItsHeader) {
    test::TestProject project;
    EXPECT_EQ(project.number("PRAGMA application_id"), 0x4E565031);
    EXPECT_EQ(project.number("PRAGMA user_version"), 1);
    EXPECT_EQ(project.text("PRAGMA journal_mode"), "wal");
}

TEST(ProjectFile, closingRollsAnOpenTransactionBack) {
    test::TestProject project;
    project.connection().exec("BEGIN; INSERT INTO Keywords (Keyword) VALUES ('x')");
    project.database.closeDB();
    project.database.open();
    EXPECT_EQ(project.number("SELECT count(*) FROM Keywords"), 0);
}

TEST(ProjectFile, closingWhileAnotherReadsLeavesEverythingInTheFile) {
    test::TestProject project;
    project.connection().exec("INSERT INTO Keywords (Keyword) VALUES ('x')");
    const auto reader = openReadOnly(project.database.filePath);
    EXPECT_EQ(reader->execAndGet("SELECT count(*) FROM Keywords").getInt(), 1);
    project.database.closeDB();
    EXPECT_TRUE(project.log.entries.empty());
    const fs::path copy = project.folder.path() / "copy.nvp";
    fs::copy_file(project.database.filePath, copy);
    EXPECT_EQ(openReadOnly(copy)->execAndGet("SELECT count(*) FROM Keywords").getInt(), 1);
}

TEST(ProjectFile, closingTellsOfALogThatMustStay) {
    test::TestProject project;
    const auto reader = openReadOnly(project.database.filePath);
    SQLite::Statement open(*reader, "SELECT * FROM StoredQueries");
    ASSERT_TRUE(open.executeStep());
    project.connection().exec("INSERT INTO Keywords (Keyword) VALUES ('x')");
    project.database.closeDB();
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "DatabaseClass.CloseDB()");
}

TEST(ProjectFile, aTermThatIsNoPatternIsLeftOutAndLogged) {
    test::TempFolder folder;
    test::MemoryLog log;
    folder.write("adult-content.txt", "# ours\nxxx\n[open; fine\n");
    folder.write("child-exploitation.txt", "a\xC4#b");
    const KeywordLists lists = loadKeywordLists({folder.path(), {}}, log);
    EXPECT_EQ(lists.adultContent, (std::vector<std::string>{"xxx", "fine"}));
    EXPECT_EQ(lists.childExploitation, std::vector<std::string>{"a\u00c4"});
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_TRUE(
        log.entries[0].message.ends_with("adult-content.txt: record at 3: Invalid pattern string"));
}

TEST(ProjectFile, anAgencysListStandsInForTheShippedOneOfItsName) {
    test::TempFolder shipped;
    test::TempFolder agency;
    test::MemoryLog log;
    shipped.write("adult-content.txt", "shipped");
    shipped.write("child-exploitation.txt", "shipped too");
    agency.write("adult-content.txt", "ours");
    const KeywordLists lists = loadKeywordLists({shipped.path(), agency.path()}, log);
    EXPECT_EQ(lists.adultContent, std::vector<std::string>{"ours"});
    EXPECT_EQ(lists.childExploitation, std::vector<std::string>{"shipped too"});
    EXPECT_TRUE(log.entries.empty());
    std::filesystem::create_directory(agency.path() / "child-exploitation.txt"); // unreadable
    EXPECT_TRUE(loadKeywordLists({shipped.path(), agency.path()}, log).childExploitation.empty());
    EXPECT_EQ(log.entries.size(), 1u);
}

TEST(ProjectFile, aListOfThousandsOfTermsStillMakesAProject) {
    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    std::string terms;
    for (int i = 0; i < 5000; ++i)
        terms += "term" + std::to_string(i) + "\n";
    folder.write("adult-content.txt", terms);
    folder.write("child-exploitation.txt", terms);
    ProjectDatabase project(log, clock);
    project.filePath = folder.path() / "case.nvp";
    project.keywordFolder = folder.path();
    ASSERT_TRUE(project.createDatabaseProject());
    project.connection().exec("INSERT INTO URLs (URL) VALUES ('x TERM4999 y')");
    const char *count = "SELECT count(*) FROM [Child Exploitation]";
    EXPECT_EQ(project.connection().execAndGet(count).getInt(), 1);
    EXPECT_TRUE(log.entries.empty());
}

} // namespace
} // namespace nv
