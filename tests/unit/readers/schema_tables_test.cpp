#include "base/Files.h"
#include "readers/Candidate.h"
#include "readers/sqlite/SchemaTables.h"
#include "support/TempFolder.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

class SchemaTables : public testing::Test {
  protected:
    static std::set<std::string> tablesOf(const fs::path &file) {
        const Evidence evidence({});
        Candidate candidate = candidateOf(file, evidence);
        const Bytes head = evidence.head(file, 4096);
        candidate.head = ByteView(head);
        return schemaTables(candidate);
    }

    TempFolder folder;
    fs::path file = folder.path() / "History";
};

TEST_F(SchemaTables, namesTablesOfOnePageAndNothingElse) {
    {
        SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        database.exec("CREATE TABLE Urls(id INTEGER PRIMARY KEY, url TEXT)");
        database.exec("CREATE INDEX by_url ON Urls(url)");
        database.exec("CREATE VIEW shown AS SELECT url FROM Urls");
        database.exec("CREATE TABLE \"visits\"(id INTEGER)");
    }
    EXPECT_EQ(tablesOf(file), (std::set<std::string>{"urls", "visits"}));
}

TEST_F(SchemaTables, followsASchemaOfManyPages) {
    constexpr int kTables = 120;
    {
        SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        database.exec("PRAGMA page_size=512");
        for (int i = 0; i < kTables; ++i)
            database.exec("CREATE TABLE t" + std::to_string(i) + "(" +
                          std::string(static_cast<std::size_t>(60 + i * 11), 'c') + " TEXT)");
    }
    EXPECT_EQ(tablesOf(file).size(), kTables);
    EXPECT_TRUE(tablesOf(file).contains("t119"));
}

TEST_F(SchemaTables, knowsTablesThatOnlyTheLogHolds) {
    const fs::path seized = folder.path() / "seized";
    fs::create_directory(seized);
    SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    database.exec("CREATE TABLE first(a)");
    database.exec("PRAGMA journal_mode=WAL");
    database.exec("CREATE TABLE moz_places(a)");
    fs::copy(file, seized / "History"); // as a browser that was killed leaves them
    fs::copy(file.string() + "-wal", seized / "History-wal");
    EXPECT_EQ(tablesOf(seized / "History"), (std::set<std::string>{"first", "moz_places"}));
}

TEST_F(SchemaTables, endsWhateverThePagesSay) {
    {
        SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        database.exec("PRAGMA page_size=512");
        for (int i = 0; i < 40; ++i)
            database.exec("CREATE TABLE t" + std::to_string(i) + "(column_of_the_table TEXT)");
    }
    const std::string whole = std::string(ByteView(readWhole(file)).raw());
    for (std::size_t length = 0; length < whole.size(); length += 37) {
        writeWhole(file, whole.substr(0, length));
        EXPECT_LE(tablesOf(file).size(), 40U) << length;
    }
    for (std::size_t at = 100; at < 1100; ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xFF);
        writeWhole(file, damaged);
        EXPECT_LE(tablesOf(file).size(), 41U) << at;
    }
}

TEST_F(SchemaTables, aFileOfAnotherKindHasNone) {
    writeWhole(file, "no database at all, but long enough to be looked at for one");
    EXPECT_TRUE(tablesOf(file).empty());
    writeWhole(file, "");
    EXPECT_TRUE(tablesOf(file).empty());
}

} // namespace
} // namespace nv
