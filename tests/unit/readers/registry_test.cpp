#include "base/Files.h"
#include "readers/RecordKind.h"
#include "readers/Registry.h"
#include "readers/chrome/Kinds.h"
#include "support/TempFolder.h"
#include "support/builders/Cookies.h"
#include "support/builders/Safari.h"

#include <gtest/gtest.h>

#include <array>
#include <set>

namespace nv {
namespace {

using namespace std::string_literals;

/// The first block of an index with the count of folders at offset 72.
std::string indexBytes(char folders) {
    std::string bytes = "Client UrlCache MMF Ver 5.2\0"s;
    bytes.resize(128, '\0');
    bytes[72] = folders;
    return bytes;
}

struct Trial {
    std::string path;
    std::string head;
    bool verify = true;
};

std::string keyOf(const Trial &trial) {
    const Evidence evidence({});
    Candidate candidate = candidateOf(trial.path, evidence);
    candidate.head = viewOf(trial.head);
    candidate.verifySignatures = trial.verify;
    const Reader *reader = recognise(candidate);
    return reader ? std::string(reader->key) : std::string();
}

std::string keyByName(const std::string &path) {
    return keyOf({path, ""});
}

/// Those of the first version: others may stand anywhere among them.
TEST(Registry, listsTheFormatsInTheOrderOfTrial) {
    std::vector<int> types;
    for (const Reader *reader : registry())
        if (reader->type <= HistoryFileType::chromeCookies)
            types.push_back(static_cast<int>(reader->type));
    EXPECT_EQ(types, (std::vector{8,  7,  21, 20, 22, 16, 17, 18, 19, 5,  1, 4,
                                  26, 27, 29, 28, 30, 12, 13, 24, 25, 10, 15}));
}

TEST(Registry, hasEachKeyOnceAndFindsItAgain) {
    std::set<std::string_view> keys;
    for (const Reader *reader : registry()) {
        EXPECT_TRUE(keys.insert(reader->key).second) << reader->key;
        EXPECT_EQ(readerByKey(reader->key), reader);
        EXPECT_EQ(readerFor(reader->type), reader) << "a number that two formats have";
    }
    EXPECT_EQ(readerByKey("ie"), nullptr);
}

TEST(Registry, givesEachFormatItsVersionText) {
    const auto version = [](std::string_view key) { return readerByKey(key)->version; };
    for (const std::string_view key :
         {"firefox-cache", "ie-cookies", "ie-history", "ie-cache", "hist-ex-index", "html"})
        EXPECT_EQ(version(key), "") << key;
    EXPECT_EQ(version("firefox-mork-history"), "2.0");
    EXPECT_EQ(version("firefox3-history"), "3.0");
    EXPECT_EQ(version("opera-cookies"), "9.0");
    EXPECT_EQ(version("netanalysis"), "1.x");
    EXPECT_EQ(version("nvd"), "2.x");
}

TEST(Registry, readsTypesWithoutARowWithTheirFormat) {
    EXPECT_EQ(readerFor(HistoryFileType::ieDaily)->key, "ie-history");
    EXPECT_EQ(readerFor(HistoryFileType::ieWeekly)->key, "ie-history");
    EXPECT_EQ(readerFor(HistoryFileType::ieIndexByCommandLine)->key, "ie-history");
    EXPECT_EQ(readerFor(HistoryFileType::firefoxCacheByName)->key, "firefox-cache");
    EXPECT_EQ(readerFor(HistoryFileType::none), nullptr);
}

TEST(Registry, holdsFormatsThatNoScanFinds) {
    const Evidence evidence({});
    for (const HistoryFileType type : {HistoryFileType::csv, HistoryFileType::macIECache}) {
        ASSERT_NE(readerFor(type), nullptr);
        EXPECT_EQ(readerFor(type)->recognises, nullptr);
        EXPECT_EQ(readerFor(type)->option, nullptr);
    }
}

UrlRecord recordOf(const std::string &cacheType) {
    UrlRecord record;
    record.cacheType = cacheType;
    return record;
}

TEST(Registry, findsTheFormatThatHoldsARecordsBody) {
    EXPECT_EQ(sourceOf(recordOf("FIREFOX CACHE"))->key, "firefox-cache");
    EXPECT_EQ(sourceOf(recordOf("Chrome Cache"))->key, "chrome-cache");
    EXPECT_EQ(sourceOf(recordOf("IE Cache")), nullptr) << "its bodies are files of their own";
    EXPECT_EQ(sourceOf(recordOf("")), nullptr);
}

constexpr RecordKind kShared = {.key = "shared", .word = "Shared Cache"};
constexpr const RecordKind *kSharedKinds[] = {&kChromeCache, &kShared};

bool noBody(const UrlRecord &, const Evidence &, BodyTarget &) {
    return false;
}

bool liesInAFolder(const UrlRecord &record) {
    return record.HistoryFilePath.ends_with("/");
}

constexpr Reader kLaterLayout = {.type = HistoryFileType{1000},
                                 .key = "later",
                                 .kind = "Later",
                                 .recognises = [](const Candidate &) { return true; },
                                 .fetch = noBody,
                                 .kinds = kSharedKinds,
                                 .takesBesideOthers = true,
                                 .isSourceOf = liesInAFolder};
constexpr Reader kNoWord = {.type = HistoryFileType{1001},
                            .key = "first",
                            .kind = "First",
                            .recognises = [](const Candidate &) { return true; },
                            .fetch = noBody,
                            .kinds = kSharedKinds};

TEST(Registry, asksFormatsThatShareAKindForTheirRecords) {
    const std::array<const Reader *, 2> formats = {&kLaterLayout, &kNoWord};
    UrlRecord record = recordOf("Chrome Cache");
    EXPECT_EQ(sourceOf(record, formats), &kNoWord);
    record.HistoryFilePath = "/evidence/Cache/";
    EXPECT_EQ(sourceOf(record, formats), &kLaterLayout);
    record.cacheType = "Opera Cache";
    EXPECT_EQ(sourceOf(record, formats), nullptr);
}

TEST(Registry, givesAFileToTheFirstFormatAndToThoseThatTakeItBesideOthers) {
    const Evidence evidence({});
    const Candidate file = candidateOf("/x/file", evidence);
    using Readers = std::vector<const Reader *>;
    const std::array<const Reader *, 3> formats = {&kNoWord, &kNoWord, &kLaterLayout};
    EXPECT_EQ(readersTaking(file, formats), (Readers{&kNoWord, &kLaterLayout}));
    const std::array<const Reader *, 2> turned = {&kLaterLayout, &kNoWord};
    EXPECT_EQ(readersTaking(file, turned), Readers{&kLaterLayout});
    EXPECT_EQ(readersTaking(file, {}), Readers{});
}

TEST(Recognition, knowsFilesByTheirNames) {
    EXPECT_EQ(keyByName("/x/_CACHE_MAP_"), "firefox-cache");
    EXPECT_EQ(keyByName("/x/google/CHROME/History"), "chrome-history");
    EXPECT_EQ(keyByName("/x/chrome/Archived History"), "chrome-history");
    EXPECT_EQ(keyByName("/x/places.sqlite"), "firefox3-history");
    EXPECT_EQ(keyByName("/x/oldplaces2.sqlite"), "firefox3-history");
    EXPECT_EQ(keyByName("/x/dcache4.url"), "opera-cache");
    EXPECT_EQ(keyByName("/x/GLOBAL.DAT"), "opera-history");
    EXPECT_EQ(keyByName("/x/download.dat"), "opera-history");
    EXPECT_EQ(keyByName("/x/type_history.xml"), "opera-history");
    EXPECT_EQ(keyByName("/x/typed_history.xml"), "opera-history");
    EXPECT_EQ(keyByName("/x/global_history.dat"), "opera-history");
    EXPECT_EQ(keyByName("/x/Cache.db"), "safari-cache");
    EXPECT_EQ(keyByName("/x/History.plist"), "safari-history");
    EXPECT_EQ(keyByName("/x/cookies4.dat"), "opera-cookies");
    EXPECT_EQ(keyByName("/x/cookies.sqlite"), "firefox-cookies");
    EXPECT_EQ(keyByName("/x/Cookies.plist"), "safari-cookies");
    EXPECT_EQ(keyByName("/x/Chrome/Cookies"), "chrome-cookies");
    EXPECT_EQ(keyByName("/x/case.net"), "netanalysis");
    EXPECT_EQ(keyByName("/x/result.nvd"), "nvd");
    EXPECT_EQ(keyByName("/x/page.htm"), "html");
    EXPECT_EQ(keyByName("/x/page.HTML"), "html");
}

TEST(Recognition, passesOverNamesThatOnlyResemble) {
    EXPECT_EQ(keyByName("/x/History"), "");         // not below a folder of Chrome
    EXPECT_EQ(keyByName("/x/Chrome2/Cookies"), ""); // the folder's name must be just that
    EXPECT_EQ(keyByName("/x/data_0"), "");          // no index beside it
    EXPECT_EQ(keyByName("/x/places.sqlite-wal"), "");
    EXPECT_EQ(keyByName("/x/setup.exe"), "");
    EXPECT_EQ(keyByName(""), "");
}

/// The key of a file that is there, by name and content.
std::string keyOfFile(const std::filesystem::path &path, bool verify = true) {
    const Bytes head = readHead(path, 65536);
    return keyOf({path.string(), verify ? std::string(ByteView(head).raw()) : "", verify});
}

TEST(Recognition, takesADatabaseForSafarisCacheByItsTables) {
    const test::TempFolder folder;
    test::SafariCache(folder.path() / "Cache.db").close();
    test::SafariCache(folder.path() / "wide-cache.db", test::SafariCache::Version::oneTable, 65536)
        .close();
    test::SqliteFile(folder.path() / "music/cache.db").run("CREATE TABLE songs(id)").close();
    test::SqliteFile(folder.path() / "empty-cache.db").run("PRAGMA user_version = 1").close();
    EXPECT_EQ(keyOfFile(folder.path() / "Cache.db"), "safari-cache");
    EXPECT_EQ(keyOfFile(folder.path() / "wide-cache.db"), "safari-cache");
    EXPECT_EQ(keyOfFile(folder.path() / "music/cache.db"), "");
    EXPECT_EQ(keyOfFile(folder.path() / "empty-cache.db"), "");
    // The name decides where contents aren't verified, and for what is damaged.
    EXPECT_EQ(keyOfFile(folder.path() / "music/cache.db", false), "safari-cache");
    EXPECT_EQ(keyOf({"/x/Cache.db", "SQLite format 3"}), "safari-cache");
    EXPECT_EQ(keyOf({"/x/Cache.db", std::string(4096, 'x')}), "safari-cache");
}

TEST(Recognition, looksIntoTheLogBesideADatabase) {
    const test::TempFolder folder;
    test::SqliteFile kept(folder.path() / "kept/Cache.db");
    kept.keepInLog().run("CREATE TABLE cfurl_cache_response(entry_ID INTEGER PRIMARY KEY)");
    test::SqliteFile other(folder.path() / "other/Cache.db");
    other.keepInLog().run("CREATE TABLE shaders(id)");
    EXPECT_EQ(keyOfFile(kept.path()), "safari-cache");
    EXPECT_EQ(keyOfFile(other.path()), "");
    std::filesystem::resize_file(other.path().string() + "-wal", 2 << 20);
    EXPECT_EQ(keyOfFile(other.path()), "safari-cache") << "too long to be sure";
}

TEST(Recognition, tellsTheCookiesOfOtherProgramsFromFirefoxs) {
    const test::TempFolder folder;
    constexpr const char *kColumns =
        "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, name TEXT, value TEXT, host TEXT, path "
        "TEXT, expiry INTEGER, lastAccessed INTEGER, isSecure INTEGER, isHttpOnly INTEGER)";
    test::FirefoxCookies(folder.path() / "four/cookies.sqlite").close();
    test::SqliteFile(folder.path() / "three/cookies.sqlite")
        .run(kColumns)
        .run("PRAGMA user_version = 2")
        .close();
    test::SqliteFile(folder.path() / "epiphany/cookies.sqlite").run(kColumns).close();
    EXPECT_EQ(keyOfFile(folder.path() / "four/cookies.sqlite"), "firefox-cookies");
    EXPECT_EQ(keyOfFile(folder.path() / "three/cookies.sqlite"), "firefox-cookies");
    EXPECT_EQ(keyOfFile(folder.path() / "epiphany/cookies.sqlite"), "epiphany-cookies");
}

TEST(Recognition, takesTheFirstRowThatMatches) {
    EXPECT_EQ(keyByName("/x/_cache_map_.html"), "firefox-cache");
    EXPECT_EQ(keyByName("/chrome/dcache4places.sqlite"), "firefox3-history");
    EXPECT_EQ(keyOf({"/x/history_index.dat", "<mdb:mork:z" + indexBytes(0)}),
              "firefox-mork-history");
}

TEST(Recognition, wantsTheMorkMarkInAMorkHistory) {
    EXPECT_EQ(keyOf({"/x/history.dat", "// <!-- <mdb:mork:z v=\"1.4\"/> -->"}),
              "firefox-mork-history");
    EXPECT_EQ(keyOf({"/x/history.dat", "something else"}), "");
    EXPECT_EQ(keyOf({"/x/history.dat", "", false}), "firefox-mork-history");
    EXPECT_EQ(keyOf({"/x/global_history.dat", "", false}), "opera-history");
}

TEST(Recognition, tellsAnIndexByTheNumberOfItsFolders) {
    EXPECT_EQ(keyOf({"/x/History/index.dat", indexBytes(0)}), "ie-history");
    EXPECT_EQ(keyOf({"/x/Content.IE5/index.dat", indexBytes(0)}), "ie-history");
    EXPECT_EQ(keyOf({"/x/History/index.dat", indexBytes(4)}), "ie-cache");
    EXPECT_EQ(keyOf({"/x/index.dat", indexBytes(0).substr(0, 72)}), "ie-history");
    EXPECT_EQ(keyOf({"/x/index.dat", "neither"}), "");
    EXPECT_EQ(keyOf({"/x/index.dat", ""}), "");
}

TEST(Recognition, takesAnIndexOfAFolderCookiesForCookies) {
    EXPECT_EQ(keyOf({"/x/Cookies/index.dat", indexBytes(0)}), "ie-cookies");
    EXPECT_EQ(keyOf({"/x/COOKIES/low/index.dat", indexBytes(4)}), "ie-cookies");
    EXPECT_EQ(keyOf({"/x/MyCookies/index.dat", indexBytes(0)}), "ie-history");
}

TEST(Recognition, goesByNameAloneWithoutVerification) {
    EXPECT_EQ(keyOf({"/x/index.dat", "", false}), "ie-history");
    EXPECT_EQ(keyOf({"/x/Content.IE5/index.dat", "", false}), "ie-history");
    EXPECT_EQ(keyOf({"/x/Cookies/index.dat", "", false}), "ie-cookies");
}

TEST(Recognition, knowsRecoveredIndexesByContentOrByNameInAnyCase) {
    EXPECT_EQ(keyOf({"/x/index.dat", "..NetAnalysisURLCacheMSIE5Hstex.."}), "hist-ex-index");
    EXPECT_EQ(keyOf({"/x/0001-UC-index.dat", indexBytes(4)}), "hist-ex");
    EXPECT_EQ(keyOf({"/x/0001-uc-INDEX.DAT", ""}), "hist-ex");
}

TEST(Recognition, listsTheIndexForTheFirstBlockFileOfChrome) {
    const test::TempFolder folder;
    const auto data = folder.write("Cache/data_0", "");
    EXPECT_EQ(keyByName(data), "");
    const auto index = folder.write("Cache/Index", "");
    const Evidence evidence(folder.path());
    const Candidate candidate = candidateOf(data, evidence);
    const Reader *reader = recognise(candidate);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->key, "chrome-cache");
    EXPECT_EQ(artefactOf(*reader, candidate), index);
    EXPECT_EQ(artefactOf(*readerByKey("nvd"), candidate), data);
}

} // namespace
} // namespace nv
