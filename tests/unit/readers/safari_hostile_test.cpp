#include "base/Files.h"
#include "readers/safari/Cache.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/Safari.h"

#include <gtest/gtest.h>

#include <array>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::SafariCache;

constexpr int kEntries = 12;
constexpr int kPage = 512;

/// A cache with small pages, whose bodies lie after the headers and take several pages each.
void makeCache(const fs::path &file, SafariCache::Version version = {}) {
    SafariCache cache(file, version, kPage);
    for (int id = 1; id <= kEntries; ++id) {
        const std::string url = "http://www.example.com/page/" + std::to_string(id);
        cache.add({.id = id,
                   .url = url,
                   .response = test::safariResponse(
                       url, test::headersOf("text/html", "Wed, 09 Mar 2011 18:00:00 GMT")),
                   .body = std::string(2000, 'b')});
    }
}

struct SafariHostile : testing::Test {
    fs::path file() const { return folder.path() / "Cache.db"; }
    std::string whole() const {
        makeCache(file());
        return test::contentsOf(folder.path()).at(file().string());
    }
    /// Reads the file as it is now, and asserts what holds for any file.
    const test::SqliteHistoryReading &read() {
        reading.emplace();
        reading->read(parseSafariCacheFile, file());
        const ReadResult &result = reading->result;
        EXPECT_TRUE(fs::is_empty(reading->scratch.path()));
        EXPECT_EQ(result.state == ReadState::complete, result.reason.empty());
        EXPECT_TRUE(result.state == ReadState::complete || !reading->log.entries.empty());
        EXPECT_TRUE(result.state != ReadState::failed || reading->records().empty());
        return *reading;
    }
    void expectFailure(std::string_view words) {
        read();
        EXPECT_EQ(reading->result.state, ReadState::failed);
        EXPECT_NE(reading->result.reason.find(words), std::string::npos) << reading->result.reason;
        ASSERT_EQ(reading->log.entries.size(), 1U);
        EXPECT_EQ(reading->log.entries[0].severity, Severity::Serious);
        EXPECT_EQ(reading->log.entries[0].procedure, "ParserClass.ParseSafariCacheFile()");
    }
    test::TempFolder folder;
    std::optional<test::SqliteHistoryReading> reading;
};

TEST_F(SafariHostile, whatIsNoDatabaseIsRefused) {
    writeWhole(file(), std::string(3000, 'x'));
    expectFailure("at offset 0: file is not a database; an SQLite database was expected");
    writeWhole(file(), "");
    expectFailure("table \"cfurl_cache_response\" was expected and is not there");
}

TEST_F(SafariHostile, anEncryptedCacheIsRefused) {
    std::string bytes = whole();
    for (char &byte : bytes)
        byte = static_cast<char>(byte ^ 0x5A);
    writeWhole(file(), bytes);
    expectFailure("file is not a database");
}

TEST_F(SafariHostile, noViewIsTakenForTheList) {
    test::SqliteFile(file()).run("CREATE TABLE s(entry_id, request_key);"
                                 "CREATE VIEW cfurl_cache_response AS SELECT * FROM s");
    expectFailure("table \"cfurl_cache_response\" was expected and is not there");
}

TEST_F(SafariHostile, withoutTheBlobsTheUrlsAreStored) {
    makeCache(file());
    SQLite::Database(file().native(), SQLite::OPEN_READWRITE)
        .exec("ALTER TABLE cfurl_cache_blob_data RENAME TO s;"
              "CREATE VIEW cfurl_cache_blob_data AS SELECT * FROM s");
    read();
    EXPECT_EQ(reading->result.state, ReadState::cutShort);
    EXPECT_NE(reading->result.reason.find("so dates and bodies are missing"), std::string::npos);
    ASSERT_EQ(reading->records().size(), std::size_t{kEntries});
    EXPECT_FALSE(reading->records()[0].CacheFileExists);
    EXPECT_EQ(reading->log.entries.size(), 1U);
}

TEST_F(SafariHostile, damageToABodyCostsNoHeader) {
    std::string bytes = whole();
    const std::size_t body = bytes.find(std::string(400, 'b'), bytes.size() / 2);
    ASSERT_NE(body, std::string::npos);
    const std::size_t page = body / kPage * kPage;
    bytes.replace(page, 4, "\x7F\xFF\xFF\xFF"); // the number of the body's next page
    writeWhole(file(), bytes);
    read();
    EXPECT_EQ(reading->result.state, ReadState::cutShort);
    EXPECT_NE(reading->result.reason.find("1 headers or bodies could not be read"),
              std::string::npos);
    ASSERT_EQ(reading->records().size(), std::size_t{kEntries});
    int bodies = 0;
    for (const UrlRecord &record : reading->records()) {
        EXPECT_TRUE(record.ActionDateUTC.has());
        bodies += record.CacheFileExists ? 1 : 0;
    }
    EXPECT_EQ(bodies, kEntries - 1);
    EXPECT_EQ(reading->log.entries[0].procedure, "ADO.GetDB3Field()");
    EXPECT_EQ(reading->log.entries[0].severity, Severity::Warning);
}

TEST_F(SafariHostile, ofACutFileIsReadWhatIsLeft) {
    const std::string bytes = whole();
    std::size_t most = 0;
    for (std::size_t length = 1; length < bytes.size(); length += 97) {
        writeWhole(file(), bytes.substr(0, length));
        read();
        EXPECT_NE(reading->result.state, ReadState::complete) << length;
        EXPECT_LE(reading->records().size(), std::size_t{kEntries}) << length;
        most = std::max(most, reading->records().size());
    }
    EXPECT_EQ(most, std::size_t{kEntries});
}

TEST_F(SafariHostile, noRowIsLostInSilenceToADamagedByte) {
    const std::string bytes = whole();
    constexpr std::array<char, 4> kValues = {'\0', '\x7F', '\x80', '\xFF'};
    for (std::size_t at = 0; at < bytes.size(); at += 29) {
        std::string damaged = bytes;
        damaged[at] = kValues[at % kValues.size()];
        writeWhole(file(), damaged);
        read();
        EXPECT_LE(reading->records().size(), std::size_t{kEntries}) << at;
        EXPECT_TRUE(reading->records().size() == kEntries || !reading->log.entries.empty()) << at;
    }
}

TEST_F(SafariHostile, rowsStillInTheLogAreRead) {
    SafariCache cache(file());
    cache.add({.id = 1});
    cache.keepInLog();
    cache.add({.id = 2, .url = "http://b/", .body = "in the log"});
    cache.close();
    ASSERT_TRUE(fs::exists(file().string() + "-wal"));
    read();
    ASSERT_EQ(reading->records().size(), 2U);
    EXPECT_EQ(reading->records()[1].CacheFileSize, 9);
}

} // namespace
} // namespace nv
