#include "base/Files.h"
#include "readers/BrowserOf.h"
#include "readers/Registry.h"
#include "support/TempFolder.h"
#include "support/builders/SqliteFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::string kSimpleMagic = "\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC";
const std::string kHex = "0A1B2C3D4E5F60718293A4B5C6D7E8F901234567";
const std::string kNone = ""; // what no format takes

/// What is found in a folder, as the import would: by content.
class UnreadFormats : public testing::Test {
  protected:
    /// "key artefact" of the row that takes the file; empty when none does.
    std::string takenAsItLies(const fs::path &name, bool verify = true) const {
        Candidate candidate = candidateOf(folder.path() / name, evidence);
        candidate.verifySignatures = verify;
        const Bytes head = verify ? evidence.head(candidate.file, 65536) : Bytes();
        candidate.head = ByteView(head);
        const Reader *reader = recognise(candidate);
        if (!reader)
            return kNone;
        return std::string(reader->key) + " " +
               artefactOf(*reader, candidate).lexically_relative(folder.path()).string();
    }
    std::string taken(const fs::path &name, const std::string &bytes, bool verify = true) const {
        folder.write(name, bytes);
        return takenAsItLies(name, verify);
    }
    std::string takenWith(const fs::path &name, const std::vector<std::string> &tables) const {
        fs::create_directories((folder.path() / name).parent_path());
        test::SqliteFile file(folder.path() / name);
        for (const std::string &table : tables)
            file.run("CREATE TABLE " + table + "(a)");
        file.close();
        return takenAsItLies(name);
    }

    test::TempFolder folder;
    Evidence evidence{{}};
};

TEST_F(UnreadFormats, aSimpleCacheIsItsFolder) {
    const std::string entry = "Cache/Cache_Data/00acb88820c9a06a_0";
    EXPECT_EQ(taken("Cache/Cache_Data/index", kSimpleMagic + std::string(16, '\0')),
              "chrome-simple-cache Cache/Cache_Data");
    EXPECT_EQ(taken(entry, kSimpleMagic), "chrome-simple-cache Cache/Cache_Data");
    EXPECT_EQ(taken("x/00acb88820c9a06a_s", kSimpleMagic), "chrome-simple-cache x");
    EXPECT_EQ(taken(entry, "other bytes"), kNone);
    EXPECT_EQ(taken("x/00acb88820c9a06_0", kSimpleMagic), kNone);
    EXPECT_EQ(taken("x/index", kSimpleMagic.substr(0, 7)), kNone);
    EXPECT_EQ(taken("GPUCache/00acb88820c9a06a_0", kSimpleMagic), kNone);
    EXPECT_EQ(taken("y/index", "", false), kNone);
    folder.write("y/index-dir/the-real-index", "");
    EXPECT_EQ(takenAsItLies("y/index", false), "chrome-simple-cache y");
}

TEST_F(UnreadFormats, aSqlCacheIsItsFolder) {
    EXPECT_EQ(taken("Cache_Data/index", "SQLCacheTruncate3"), "chrome-sql-cache Cache_Data");
    EXPECT_EQ(takenWith("b/sqldb0", {"resources", "blobs", "meta"}), "chrome-sql-cache b");
    EXPECT_EQ(takenWith("c/sqldb0", {"songs"}), kNone);
    EXPECT_EQ(taken("d/sqldb0", "no database"), kNone);
    EXPECT_EQ(taken("d/index", "SQLCache"), kNone);
}

TEST_F(UnreadFormats, aBlockCacheIsFoundWithoutItsFirstBlockFileOrItsIndex) {
    const std::string index = "\xC3\xCA\x03\xC1"s + std::string(400, '\0');
    EXPECT_EQ(taken("a/index", index), "chrome-lone-index a/index");
    EXPECT_EQ(taken("b/index", std::string("\xC3\xCA\x03")), kNone);
    folder.write("c/data_0", "");
    EXPECT_EQ(taken("c/index", index), kNone) << "its data_0 leads to it";
    EXPECT_EQ(takenAsItLies("c/data_0"), "chrome-cache c/index");
    const std::string blocks = "\xC3\xCA\x04\xC1"s + std::string(400, '\0');
    EXPECT_EQ(taken("d/data_1", blocks), "chrome-lone-index d/data_1");
    EXPECT_EQ(taken("c/data_1", blocks), kNone) << "its index leads to it";
    EXPECT_EQ(taken("e/data_1", "other bytes"), kNone);
}

TEST_F(UnreadFormats, aLevelDBIsItsFolder) {
    EXPECT_EQ(taken("Local Storage/leveldb/CURRENT", "MANIFEST-000001\n"),
              "leveldb Local Storage/leveldb");
    EXPECT_EQ(taken("x/CURRENT", "MANIFEST"), kNone);
    EXPECT_EQ(taken("x/CURRENT", ""), kNone);
    folder.write("rocks/IDENTITY", "");
    EXPECT_EQ(taken("rocks/CURRENT", "MANIFEST-000001\n"), kNone) << "no browser's";
}

TEST_F(UnreadFormats, sessionsAreKnownByTheirBytes) {
    EXPECT_EQ(taken("Sessions/Session_134", "SNSS\3"), "chrome-session Sessions/Session_134");
    EXPECT_EQ(taken("Last Tabs", "SNSS\1"), "chrome-session Last Tabs");
    EXPECT_EQ(taken("Last Session", ""), kNone);
    EXPECT_EQ(taken("Last Session", "", false), "chrome-session Last Session");
    const std::string packed = "mozLz40\0packed"s;
    EXPECT_EQ(taken("sessionstore.jsonlz4", packed), "firefox-jsonlz4 sessionstore.jsonlz4");
    EXPECT_EQ(taken("b/upgrade.jsonlz4-2026", packed), "firefox-jsonlz4 b/upgrade.jsonlz4-2026");
    EXPECT_EQ(taken("b/recovery.baklz4", packed), "firefox-jsonlz4 b/recovery.baklz4");
    EXPECT_EQ(taken("previous.jsonlz4", "mozLz4"), kNone);
    EXPECT_EQ(taken("search.json.mozlz4", packed), kNone) << "no trace of a person";
    EXPECT_EQ(taken("letter.doc", "", false), kNone);
}

TEST_F(UnreadFormats, databasesAreKnownByTheirTables) {
    EXPECT_EQ(takenWith("webappsstore.sqlite", {"webappsstore2"}),
              "firefox-storage webappsstore.sqlite");
    EXPECT_EQ(takenWith("ls/data.sqlite", {"data", "database"}), "firefox-storage ls/data.sqlite");
    EXPECT_EQ(takenWith("idb/18msg.sqlite", {"object_data", "object_store"}),
              "firefox-storage idb/18msg.sqlite");
    EXPECT_EQ(takenWith("caches.sqlite", {"caches", "entries", "response_headers"}),
              "firefox-site-cache caches.sqlite");
    EXPECT_EQ(takenWith("x/caches.sqlite", {"caches", "entries"}), kNone);
    EXPECT_EQ(takenWith("songs.sqlite", {"songs", "data"}), kNone);
    EXPECT_EQ(takenWith("DIPS", {"bounces", "meta"}), "chrome-site-data DIPS");
    EXPECT_EQ(takenWith("Media History", {"playback"}), "chrome-site-data Media History");
    EXPECT_EQ(takenWith("Shared Dictionary/db", {"dictionaries"}),
              "chrome-site-data Shared Dictionary/db");
    EXPECT_EQ(takenWith("x/db", {"dictionaries"}), kNone);
    EXPECT_EQ(takenWith("Safari/History.db", {"history_items", "history_visits"}),
              "safari-history-db Safari/History.db");
    EXPECT_EQ(takenWith("x/History.db", {"songs"}), kNone);
    EXPECT_EQ(takenWith("ephy-history.db", {"hosts", "urls", "visits"}),
              "epiphany-history ephy-history.db");
    EXPECT_EQ(takenWith("cookies.sqlite", {"moz_cookies"}), "epiphany-cookies cookies.sqlite");
    EXPECT_EQ(takenWith("browsedata.db", {"history"}), "falkon-history browsedata.db");
    EXPECT_EQ(takenWith("SBrowser.db", {"BOOKMARKS"}), "android-browser SBrowser.db");
    EXPECT_EQ(takenWith("browser.db", {"history", "bookmarks"}), "android-browser browser.db");
    EXPECT_EQ(takenWith("b/browser.db", {"games"}), kNone);
}

TEST_F(UnreadFormats, databasesInBytesThatAreNoneAreNoDatabases) {
    for (const char *name : {"DIPS", "data.sqlite", "History.db", "ephy-history.db",
                             "browsedata.db", "browser.db", "sqldb0"})
        for (const std::string &bytes :
             {""s, "SQLite format 3"s, "SQLite format 3\0"s + std::string(200, '\xFF')})
            EXPECT_EQ(taken(name, bytes), kNone) << name;
}

TEST_F(UnreadFormats, otherStoresAreKnownByTheirFirstBytes) {
    EXPECT_EQ(taken("WebCacheV01.dat", "sum_\xEF\xCD\xAB\x89 and on"),
              "ie-webcache WebCacheV01.dat");
    EXPECT_EQ(taken("WebCacheV01.dat", "sum_"), kNone);
    EXPECT_EQ(taken("DataStore.edb", "sum_\xEF\xCD\xAB\x89"), kNone) << "another program's";
    EXPECT_EQ(taken("Cookies.binarycookies", "cook\0"s),
              "safari-binarycookies Cookies.binarycookies");
    EXPECT_EQ(taken("cookbook.txt", "cook"), kNone);
    EXPECT_EQ(taken("Cookies.binarycookies", "coo"), kNone);
    const std::string version = "\x11\0\0\0"s;
    EXPECT_EQ(taken("WebKitCache/Version 17/Records/" + kHex + "/Resource/" + kHex, version),
              "webkit-cache WebKitCache/Version 17");
    EXPECT_EQ(taken("V/Records/" + kHex + "/Resource/" + kHex, "\0\0\0\0"s), kNone);
    EXPECT_EQ(taken("V/Records/" + kHex + "/Resource/" + kHex, "\x11"), kNone);
    EXPECT_EQ(taken("V/Other/" + kHex + "/Resource/" + kHex, version), kNone);
}

/// They say of each what it is, and are no part of the classic rules.
TEST(UnreadRows, areListedAfterTheClassicOnes) {
    bool isBeyond = false;
    for (const Reader *reader : registry()) {
        EXPECT_TRUE(reader->isBeyondClassic || !isBeyond) << reader->key << " stands too late";
        isBeyond |= reader->isBeyondClassic;
        if (reader->read)
            continue;
        EXPECT_TRUE(reader->isBeyondClassic) << reader->key;
        EXPECT_FALSE(reader->kind.empty()) << reader->key;
        EXPECT_FALSE(reader->mask.empty()) << reader->key;
        ASSERT_NE(reader->option, nullptr) << reader->key;
    }
}

TEST(UnreadRows, tellTheEngine) {
    EXPECT_EQ(engineOf(readerByKey("chrome-simple-cache")), Engine::chromium);
    EXPECT_EQ(engineOf(readerByKey("firefox-storage")), Engine::gecko);
    EXPECT_EQ(engineOf(readerByKey("safari-history-db")), Engine::safari);
    EXPECT_EQ(engineOf(readerByKey("epiphany-history")), Engine::unknown) << "the place tells";
}

} // namespace
} // namespace nv
