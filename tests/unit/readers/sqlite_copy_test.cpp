#include "base/Files.h"
#include "readers/chrome/history/History.h"
#include "readers/firefox/profile/Places.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/Places.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

using test::ChromeHistory;

constexpr std::int64_t kStamp = 1305849600; // 2011-05-20

std::string bytesOf(const fs::path &file) {
    return test::contentsOf(file.parent_path()).at(file.string());
}

class SqliteCopy : public testing::Test {
  protected:
    fs::path file() const { return folder.path() / "Default" / "History"; }
    SqliteCopy() { reading.classicOnly = true; }
    test::SqliteHistoryReading &read() { return reading.read(parseChromeHistoryFile, file()); }
    void expectUntouched(const std::map<std::string, std::string> &before) const {
        EXPECT_EQ(test::contentsOf(folder.path()), before);
        EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(SqliteCopy, leavesEvidenceAndScratchAsTheyWere) {
    ChromeHistory history(file());
    test::addExamplePages(history);
    history.close();
    const auto before = test::contentsOf(folder.path());
    const auto changed = fs::last_write_time(file());
    EXPECT_EQ(read().records().size(), 3U);
    expectUntouched(before);
    EXPECT_EQ(fs::last_write_time(file()), changed);
}

TEST_F(SqliteCopy, readsRowsThatAreStillInTheLog) {
    ChromeHistory history(file());
    test::addExamplePages(history);
    history.keepInLog();
    history.add({.id = 9, .url = "http://late/", .lastVisitTime = test::chromeTime(kStamp)});
    history.run("DELETE FROM urls WHERE id = 2");
    history.close();
    ASSERT_GT(fs::file_size(file().string() + "-wal"), 0U);
    const auto before = test::contentsOf(folder.path());
    read();
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[2].URL, "http://late/");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    expectUntouched(before);
}

TEST_F(SqliteCopy, findsTheLogWithoutRegardToCase) {
    ChromeHistory history(file());
    history.keepInLog();
    history.add({.id = 9, .url = "http://late/"});
    history.close();
    fs::rename(file().string() + "-wal", folder.path() / "Default" / "HISTORY-WAL");
    EXPECT_EQ(read().records().size(), 1U);
}

TEST_F(SqliteCopy, readsADatabaseOfLogModeWithoutItsLog) {
    ChromeHistory history(file());
    history.keepInLog();
    history.run("PRAGMA wal_checkpoint(TRUNCATE)");
    history.add({.id = 9, .url = "http://late/"});
    history.run("PRAGMA wal_checkpoint(TRUNCATE)");
    history.close();
    fs::remove(file().string() + "-wal");
    EXPECT_EQ(read().records().size(), 1U);
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(SqliteCopy, undoesATransactionThatWasNeverEnded) {
    ChromeHistory history(file(), ChromeHistory::Version::schema29, 512);
    test::addExamplePages(history);
    history.closeAmid("UPDATE urls SET title = hex(randomblob(3000)); DELETE FROM urls WHERE id=1");
    const auto before = test::contentsOf(folder.path());
    ASSERT_EQ(before.size(), 3U); // the folder, the file and its journal
    read();
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[0].WebpageTitle, "Shop \u2013 example");
    EXPECT_TRUE(reading.log.entries.empty());
    expectUntouched(before);
}

/// Appends what SQLite writes at the end of a journal whose transaction spans several files.
void nameLeadingJournal(const fs::path &journal, const std::string &name) {
    const auto bigEndian = [](std::uint32_t value) {
        std::string bytes;
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<char>(value >> shift & 0xFF));
        return bytes;
    };
    std::uint32_t sum = 0;
    for (const char letter : name)
        sum += static_cast<std::uint32_t>(static_cast<signed char>(letter));
    writeWhole(journal, bytesOf(journal) + bigEndian(2097153) + name +
                            bigEndian(static_cast<std::uint32_t>(name.size())) + bigEndian(sum) +
                            "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7");
}

TEST_F(SqliteCopy, neverTouchesAFileThatAJournalNames) {
    ChromeHistory history(file(), ChromeHistory::Version::schema29, 512);
    test::addExamplePages(history);
    history.closeAmid("UPDATE urls SET title = hex(randomblob(3000))");
    const test::TempFolder elsewhere;
    const fs::path precious = elsewhere.write("case.nvp", "precious");
    nameLeadingJournal(file().string() + "-journal", precious.string());
    const auto before = test::contentsOf(folder.path());
    EXPECT_EQ(read().records().size(), 3U);
    EXPECT_TRUE(fs::exists(precious));
    expectUntouched(before);
}

TEST_F(SqliteCopy, undoesATransactionOverSeveralFilesWhileItsLeadingJournalIsThere) {
    ChromeHistory history(file(), ChromeHistory::Version::schema29, 512);
    test::addExamplePages(history);
    history.closeAmid("UPDATE urls SET title = 'x' || hex(randomblob(3000))");
    nameLeadingJournal(file().string() + "-journal", "C:\\Users\\u\\Default\\History-mj5A3C");
    folder.write("Default/History-mj5A3C", "x");
    read();
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[0].WebpageTitle, "Shop \u2013 example");
}

TEST_F(SqliteCopy, keepsATransactionWhoseLeadingJournalIsGone) {
    ChromeHistory history(file(), ChromeHistory::Version::schema29, 512);
    history.add({.id = 1, .url = "http://a/", .title = "before"});
    history.closeAmid("UPDATE urls SET title = 'after'; INSERT INTO meta VALUES('x',"
                      "hex(randomblob(9000)))");
    nameLeadingJournal(file().string() + "-journal", "/home/u/History-mj5A3C");
    read();
    ASSERT_EQ(reading.records().size(), 1U);
    EXPECT_EQ(reading.records()[0].WebpageTitle, "after");
}

TEST_F(SqliteCopy, removesWhatItCopiedWhenReadingFails) {
    folder.write("Default/History", std::string(5000, 'x'));
    folder.write("Default/History-wal", "not a log");
    folder.write("Default/History-journal", "not a journal");
    const auto before = test::contentsOf(folder.path());
    EXPECT_EQ(read().result.state, ReadState::failed);
    EXPECT_EQ(reading.log.entries.size(), 1U);
    expectUntouched(before);
}

TEST_F(SqliteCopy, removesWhatItCopiedWhenTheProjectCanNotBeWritten) {
    struct Full final : RecordSink {
        void save(UrlRecord &) override { throw StorageFailure("the disk is full"); }
    } sink;
    ChromeHistory history(file());
    test::addExamplePages(history);
    history.close();
    HistoryFile described;
    described.fullPath = file();
    const Evidence evidence("");
    ContentProbe content;
    ReadContext context{described, evidence,    content,     reading.clock, reading.scratch.path(),
                        sink,      reading.log, reading.task};
    EXPECT_THROW(parseChromeHistoryFile(context), StorageFailure);
    EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
}

TEST_F(SqliteCopy, saysThatAFileIsGone) {
    read();
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_NE(reading.result.reason.find("cannot open"), std::string::npos);
    EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
}

TEST_F(SqliteCopy, isNotMisledByRemainsOfAnEarlierRun) {
    ChromeHistory history(file());
    test::addExamplePages(history);
    history.close();
    reading.scratch.write("~evidence.sqlite", "old");
    reading.scratch.write("~evidence.sqlite-wal", "old");
    reading.scratch.write("~evidence.sqlite-journal", "old");
    EXPECT_EQ(read().records().size(), 3U);
    EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
}

TEST_F(SqliteCopy, readsAFileWhateverItIsCalled) {
    const fs::path odd = folder.path() / "caf\xe9 ?#%41" / "no name at all";
    test::Places places(odd);
    test::addExamplePlaces(places);
    places.close();
    reading.classicOnly = true;
    EXPECT_EQ(reading.read(parseFirefox3HistoryFile, odd).records().size(), 3U);
}

} // namespace
} // namespace nv
