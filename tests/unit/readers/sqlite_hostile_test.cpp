#include "base/Files.h"
#include "readers/chrome/history/History.h"
#include "readers/firefox/profile/Places.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/Places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace nv {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPages = 24;

/// What differs between the two readers of histories.
struct Format {
    const char *name;
    test::SqliteHistoryReading::ReadFunction read;
    const char *table;
    void (*make)(const fs::path &file);
};

void makeChrome(const fs::path &file) {
    test::ChromeHistory history(file, test::ChromeHistory::Version::schema29, 512);
    for (std::int64_t id = 1; id <= std::int64_t{kPages}; ++id)
        history.add({.id = id,
                     .url = "http://www.example.com/page/" + std::to_string(id),
                     .lastVisitTime = test::chromeTime(1305849600 + id)});
}

void makeFirefox(const fs::path &file) {
    test::Places places(file, test::Places::Version::firefox3, 512);
    for (std::int64_t id = 1; id <= std::int64_t{kPages}; ++id)
        places.add({.id = id,
                    .url = "http://www.example.com/page/" + std::to_string(id),
                    .visitDates = {test::firefoxTime(1305849600 + id)}});
}

struct Outcome {
    ReadResult result;
    std::vector<UrlRecord> records;
    std::vector<Failure> log;
};

class SqliteHostile : public testing::TestWithParam<Format> {
  protected:
    fs::path file() const { return folder.path() / "history"; }
    std::string whole() const {
        GetParam().make(file());
        return test::contentsOf(folder.path()).at(file().string());
    }

    /// Reads the file as it is now, and asserts what holds for any file.
    Outcome readAny() const {
        test::SqliteHistoryReading reading;
        reading.classicOnly = true; // each format's further rows have tests of their own
        reading.read(GetParam().read, file());
        EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
        const bool isSound = reading.result.state == ReadState::complete;
        EXPECT_EQ(isSound, reading.result.reason.empty());
        EXPECT_TRUE(isSound || !reading.log.entries.empty());
        EXPECT_TRUE(isSound || reading.result.reason.starts_with(file().string() + ": "));
        EXPECT_TRUE(reading.result.state != ReadState::failed || reading.records().empty());
        return {reading.result, reading.records(), reading.log.entries};
    }
    void expectFailure(std::string_view words) const {
        const auto reading = readAny();
        EXPECT_EQ(reading.result.state, ReadState::failed);
        EXPECT_NE(reading.result.reason.find(words), std::string::npos) << reading.result.reason;
        EXPECT_EQ(reading.log.size(), 1U);
        EXPECT_EQ(reading.log.at(0).severity, Severity::Serious);
    }

    test::TempFolder folder;
};

INSTANTIATE_TEST_SUITE_P(
    Histories, SqliteHostile,
    testing::Values(Format{"Chrome", parseChromeHistoryFile, "urls", makeChrome},
                    Format{"Firefox", parseFirefox3HistoryFile, "moz_places", makeFirefox}),
    [](const auto &param) { return param.param.name; });

TEST_P(SqliteHostile, refusesWhatIsNoDatabase) {
    writeWhole(file(), std::string(3000, 'x'));
    expectFailure("at offset 0: file is not a database; an SQLite database was expected");
    writeWhole(file(), "SQLite format 3");
    expectFailure("file is not a database");
}

TEST_P(SqliteHostile, refusesAnEncryptedDatabase) {
    std::string bytes = whole();
    for (char &byte : bytes)
        byte = static_cast<char>(byte ^ 0x5A);
    writeWhole(file(), bytes);
    expectFailure("file is not a database");
}

TEST_P(SqliteHostile, saysThatAnEmptyFileHoldsNoTable) {
    writeWhole(file(), "");
    expectFailure("was expected and is not there");
}

TEST_P(SqliteHostile, readsWhatIsLeftOfACutFile) {
    const std::string bytes = whole();
    const std::size_t step = 97;
    std::size_t most = 0;
    for (std::size_t length = 1; length < bytes.size(); length += step) {
        writeWhole(file(), bytes.substr(0, length));
        const auto reading = readAny();
        EXPECT_NE(reading.result.state, ReadState::complete) << length;
        EXPECT_LE(reading.records.size(), kPages) << length;
        most = std::max(most, reading.records.size());
    }
    EXPECT_GT(most, kPages / 2);
}

TEST_P(SqliteHostile, losesNoRowInSilenceToADamagedByte) {
    const std::string bytes = whole();
    constexpr std::array<char, 4> kValues = {'\0', '\x7F', '\x80', '\xFF'};
    for (std::size_t at = 0; at < bytes.size(); at += 5) {
        std::string damaged = bytes;
        damaged[at] = kValues[at % kValues.size()];
        writeWhole(file(), damaged);
        const auto reading = readAny();
        EXPECT_LE(reading.records.size(), kPages) << at;
        EXPECT_TRUE(reading.records.size() == kPages || !reading.log.empty()) << at;
    }
}

TEST_P(SqliteHostile, takesNoViewForTheTable) {
    test::SqliteFile(file()).run(std::string("CREATE TABLE s(id, url); CREATE VIEW ") +
                                 GetParam().table + " AS SELECT * FROM s");
    expectFailure("was expected and is not there");
}

TEST_P(SqliteHostile, takesNoVirtualTableForTheTable) {
    test::SqliteFile(file()).run(std::string("CREATE VIRTUAL TABLE ") + GetParam().table +
                                 " USING fts4(id,url)");
    expectFailure("was expected and is not there");
}

TEST_P(SqliteHostile, runsNoneOfTheSchema) {
    test::SqliteFile made(file());
    const std::string table = GetParam().table;
    made.run("CREATE TABLE " + table +
             "(id INTEGER PRIMARY KEY, url TEXT, visit_count AS (7),"
             "hidden DEFAULT (randomblob(1000000000)), CHECK(load_extension('x') IS NULL));"
             "CREATE TRIGGER t AFTER INSERT ON " +
             table + " BEGIN DELETE FROM " + table +
             "; END;"
             "CREATE INDEX e ON " +
             table +
             "(upper(url)) WHERE hidden > 5;"
             "CREATE VIEW v AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n)"
             " SELECT i FROM n;"
             "CREATE VIRTUAL TABLE f USING fts4(a)");
    made.run("PRAGMA ignore_check_constraints=ON; DROP TRIGGER t;"
             "INSERT INTO " +
             table + "(id,url,hidden) VALUES(1,'http://a/',1)");
    made.close();
    const auto reading = readAny();
    ASSERT_EQ(reading.records.size(), 1U);
    EXPECT_EQ(reading.records[0].URL, "http://a/");
    EXPECT_EQ(reading.records[0].Visits, -1);
}

TEST_P(SqliteHostile, readsTablesBesideASchemaEntryThatMakesNoSense) {
    GetParam().make(file());
    SQLite::Database made(file().native(), SQLite::OPEN_READWRITE);
    made.exec("CREATE TABLE zz(a); PRAGMA writable_schema=ON;"
              "UPDATE sqlite_master SET sql = 'CREATE TABLE zz(' WHERE name = 'zz'");
    const auto reading = readAny();
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.records.size(), kPages);
    EXPECT_NE(reading.result.reason.find("malformed database schema"), std::string::npos);
}

TEST_P(SqliteHostile, keepsAHugeTextWhole) {
    GetParam().make(file());
    SQLite::Database made(file().native(), SQLite::OPEN_READWRITE);
    made.exec(std::string("INSERT INTO ") + GetParam().table + "(id,url,hidden" +
              (GetParam().read == parseChromeHistoryFile ? ",last_visit_time" : "") +
              ") VALUES(99,'http://a/' || hex(zeroblob(2000000)),0" +
              (GetParam().read == parseChromeHistoryFile ? ",0" : "") + ")");
    const auto reading = readAny();
    ASSERT_EQ(reading.records.size(), kPages + 1);
    EXPECT_EQ(reading.records.back().URL.size(), 4'000'009U);
}

TEST_P(SqliteHostile, decodesTextThatIsNotUtf8AndTextWithZeros) {
    GetParam().make(file());
    SQLite::Database made(file().native(), SQLite::OPEN_READWRITE);
    const std::string table = GetParam().table;
    made.exec("UPDATE " + table +
              " SET url = CAST(x'687474703a2f2f61002fe9' AS TEXT) WHERE id = 1");
    const auto reading = readAny();
    ASSERT_EQ(reading.records.size(), kPages);
    EXPECT_EQ(reading.records[0].URLRawValue, "http://a\u2400/\u00e9");
    EXPECT_EQ(reading.records[0].URL, "http://a\u2400/\u00e9");
}

TEST_P(SqliteHostile, readsDatabasesInUtf16) {
    for (const char *encoding : {"UTF-16le", "UTF-16be"}) {
        test::SqliteFile made(file(), 4096, encoding);
        made.run(std::string("CREATE TABLE ") + GetParam().table +
                 "(id INTEGER PRIMARY KEY, url TEXT);"
                 "INSERT INTO " +
                 GetParam().table + " VALUES(1,'http://a/caf\u00e9')");
        made.close();
        const auto reading = readAny();
        ASSERT_EQ(reading.records.size(), 1U) << encoding;
        EXPECT_EQ(reading.records[0].URL, "http://a/caf\u00e9");
    }
}

TEST_P(SqliteHostile, endsWhenPagesPointAtEachOther) {
    const std::string bytes = whole();
    constexpr std::size_t kPage = 512;
    for (std::size_t page = kPage; page < bytes.size(); page += kPage) {
        std::string damaged = bytes;
        if (damaged[page] != 5)
            continue;
        damaged.replace(page + 8, 4,
                        std::string("\0\0\0", 3) + static_cast<char>(page / kPage + 1)); // itself
        writeWhole(file(), damaged);
        const auto reading = readAny();
        EXPECT_LE(reading.records.size(), 2U * kPages);
    }
}

} // namespace
} // namespace nv
