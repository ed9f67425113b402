// What the scan says of a browser's database that ends before its tables.

#include "base/Files.h"
#include "import/Scan.h"
#include "support/ImportOption.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class CutDatabaseScan : public testing::Test {
  protected:
    CutDatabaseScan() { job.startingDirectory = folder.path(); }

    ScanResult scanned() {
        Unwatched task;
        return scan(job, task, log);
    }
    static Lines unreadable(const ScanResult &result) {
        Lines paths;
        for (const UnreadPlace &place : result.gaps.unreadable)
            paths.push_back(place.path.string());
        return paths;
    }

    test::TempFolder folder;
    test::MemoryLog log;
    ImportSettings job;
};

/// Its schema begins on page 1 and goes on far behind it, as in files of browsers.
std::string historyOfManyPages(const fs::path &file, int rows) {
    {
        SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        database.exec("CREATE TABLE filled(a)");
        for (int i = 0; i < rows; ++i)
            database.exec("INSERT INTO filled VALUES(zeroblob(2000))");
        for (int i = 0; i < 60; ++i)
            database.exec("CREATE TABLE t" + std::to_string(i) + "(" + std::string(200, 'c') + ")");
        database.exec("CREATE TABLE urls(id)");
        database.exec("CREATE TABLE visits(id)");
    }
    std::string whole{ByteView(readWhole(file)).raw()};
    fs::remove(file);
    return whole;
}

TEST_F(CutDatabaseScan, namesADatabaseThatIsCutBeforeItsTables) {
    const std::string whole = historyOfManyPages(folder.path() / "made", 100);
    ASSERT_GT(whole.size(), 200'000u);
    for (const std::size_t length :
         {std::size_t{16}, std::size_t{100}, std::size_t{5'000}, std::size_t{60'000}}) {
        const auto file = folder.write("Default/History", whole.substr(0, length));
        log.entries.clear();
        const ScanResult result = scanned();
        EXPECT_EQ(result.historyFiles.count(), 0u) << length;
        ASSERT_EQ(unreadable(result), Lines{file.string()}) << length;
        EXPECT_NE(result.gaps.unreadable.at(0).reason.find("is damaged or cut short"),
                  std::string::npos);
        EXPECT_EQ(log.entries.size(), 1u);
    }
    folder.write("Default/History", whole);
    EXPECT_EQ(scanned().historyFiles.count(), 1u);
}

TEST_F(CutDatabaseScan, takesOrNamesADatabaseThatIsCutAnywhere) {
    const std::string whole = historyOfManyPages(folder.path() / "made", 4);
    for (std::size_t length = 16; length < whole.size(); length += 1500) {
        folder.write("Default/History", whole.substr(0, length));
        const ScanResult result = scanned();
        EXPECT_EQ(result.historyFiles.count() + result.gaps.unreadable.size(), 1u) << length;
    }
}

TEST_F(CutDatabaseScan, namesADamagedDatabaseOnlyWhereItsNameIsAskedFor) {
    const std::string cut = historyOfManyPages(folder.path() / "made", 100).substr(0, 60'000);
    folder.write("History", cut);
    folder.write("notes.sqlite", cut);
    folder.write("other.db", cut);
    EXPECT_EQ(unreadable(scanned()), Lines{(folder.path() / "History").string()});
    setWanted(job, test::importOption("chkHistoryChrome"), false);
    EXPECT_EQ(unreadable(scanned()), Lines{});
}

TEST_F(CutDatabaseScan, isSilentAboutASoundDatabaseOfAnotherProgram) {
    for (const char *size : {"512", "4096"}) {
        const fs::path file = folder.path() / "History";
        {
            SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            database.exec(std::string("PRAGMA page_size=") + size);
            for (int i = 0; i < 40; ++i)
                database.exec("CREATE TABLE a_long_name_of_a_table_of_another_program" +
                              std::to_string(i) + "(" +
                              std::string(static_cast<std::size_t>(60 + i * 31), 'c') + ")");
        }
        const ScanResult result = scanned();
        EXPECT_EQ(result.historyFiles.count(), 0u);
        EXPECT_EQ(unreadable(result), Lines{}) << size;
        fs::remove(file);
    }
}

} // namespace
} // namespace nv
