#include "base/Files.h"
#include "readers/Candidate.h"
#include "readers/Limits.h"
#include "readers/Registry.h"
#include "readers/chrome/history/Favicons.h"
#include "readers/chrome/history/Shortcuts.h"
#include "readers/chrome/history/TopSites.h"
#include "support/FactsOf.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace nv {
namespace {

namespace fs = std::filesystem;

using test::factOf;
using test::SqliteFile;

constexpr const char *kIconTables =
    "CREATE TABLE icon_mapping(id INTEGER PRIMARY KEY,page_url,icon_id);"
    "CREATE TABLE favicons(id INTEGER PRIMARY KEY,url,icon_type);"
    "CREATE TABLE favicon_bitmaps(id INTEGER PRIMARY KEY,icon_id,last_updated,last_requested);";
constexpr const char *kTopSitesTable =
    "CREATE TABLE top_sites(url TEXT PRIMARY KEY,url_rank,title);";
constexpr const char *kShortcutsTable =
    "CREATE TABLE omni_box_shortcuts(id VARCHAR PRIMARY KEY,text,url,contents,description,"
    "transition,keyword,last_access_time,number_of_hits);";
constexpr const char *kPredictorTable =
    "CREATE TABLE network_action_predictor(id TEXT PRIMARY KEY,user_text,url,number_of_hits,"
    "number_of_misses);";

class ChromiumProfile : public testing::Test {
  protected:
    fs::path file(const std::string &name) const { return folder.path() / "any folder" / name; }
    void make(const std::string &name, const std::string &sql) {
        SqliteFile(file(name)).run(sql).close();
    }
    void makeHistoryOf(const std::string &url) {
        test::ChromeHistory history(file("History"));
        history.add({.id = 1, .url = url});
    }
    using Reader = test::SqliteHistoryReading::ReadFunction;
    const std::vector<UrlRecord> &read(Reader reader, const std::string &name) {
        reading.emplace();
        reading->read(reader, file(name));
        EXPECT_TRUE(fs::is_empty(reading->scratch.path()));
        return reading->records();
    }
    std::vector<std::string> keysOf(const fs::path &path, bool verify = true) const {
        const Evidence evidence(folder.path());
        Candidate candidate = candidateOf(path, evidence);
        candidate.verifySignatures = verify;
        const Bytes head = verify ? evidence.head(path, limits::kHeadBytes) : Bytes();
        candidate.head = ByteView(head);
        std::vector<std::string> keys;
        for (const nv::Reader *reader : readersTaking(candidate, registry()))
            keys.emplace_back(reader->key);
        return keys;
    }

    test::TempFolder folder;
    std::optional<test::SqliteHistoryReading> reading;
};

TEST_F(ChromiumProfile, isKnownByTablesBelowAnyFolder) {
    using Keys = std::vector<std::string>;
    makeHistoryOf("http://a/");
    make("Archived History", "CREATE TABLE urls(id); CREATE TABLE visits(id)");
    make("Favicons", kIconTables);
    make("Top Sites", kTopSitesTable);
    make("Shortcuts", kShortcutsTable);
    make("Network Action Predictor", kPredictorTable);
    EXPECT_EQ(keysOf(file("History")), Keys{"chromium-history"});
    EXPECT_EQ(keysOf(file("Archived History")), Keys{"chromium-history"});
    EXPECT_EQ(keysOf(file("Favicons")), Keys{"chromium-favicons"});
    EXPECT_EQ(keysOf(file("Top Sites")), Keys{"chromium-top-sites"});
    EXPECT_EQ(keysOf(file("Shortcuts")), Keys{"chromium-shortcuts"});
    EXPECT_EQ(keysOf(file("Network Action Predictor")), Keys{"chromium-predictor"});
    EXPECT_EQ(keysOf(file("Favicons"), false), Keys{"chromium-favicons"}) << "the name decides";
}

TEST_F(ChromiumProfile, takesAFileOfTheClassicRulesOnce) {
    fs::create_directories(folder.path() / "Chrome");
    makeHistoryOf("http://a/");
    fs::copy_file(file("History"), folder.path() / "Chrome" / "History");
    EXPECT_EQ(keysOf(folder.path() / "Chrome" / "History"),
              std::vector<std::string>{"chrome-history"});
}

TEST_F(ChromiumProfile, passesOverFilesOfTheseNamesWithOtherTables) {
    make("History", "CREATE TABLE urls(id); CREATE TABLE songs(id)");
    make("Favicons", "CREATE TABLE favicons(id)");
    make("Top Sites", "CREATE TABLE sites(id)");
    make("Shortcuts", "CREATE TABLE keys(id)");
    folder.write("any folder/Network Action Predictor", "text");
    for (const char *name :
         {"History", "Favicons", "Top Sites", "Shortcuts", "Network Action Predictor"})
        EXPECT_TRUE(keysOf(file(name)).empty()) << name;
}

TEST_F(ChromiumProfile, hasRowsOfIconsWhosePagesTheHistoryDoesNotList) {
    makeHistoryOf("http://listed/");
    make("Favicons", std::string(kIconTables) +
                         "INSERT INTO icon_mapping VALUES(1,'http://listed/',1),(2,'http://x/',1);"
                         "INSERT INTO favicons VALUES(1,'http://icon/',1),(2,'http://unused/',1);"
                         "INSERT INTO favicon_bitmaps VALUES(1,1,13411731600000000,0)");
    const auto &records = read(parseChromeFaviconsFile, "Favicons");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].cacheType, "Chrome Icon");
    EXPECT_EQ(records[0].URL, "http://x/");
    EXPECT_EQ(records[0].Action, "");
    EXPECT_FALSE(records[0].IsHistory || records[0].ActionDateUTC.has());
    EXPECT_TRUE(records[0].OtherDate.has());
    EXPECT_EQ(factOf(records[0], "icon_url"), "http://icon/");
    EXPECT_EQ(reading->result.noted,
              (std::map<std::string, std::uint64_t>{
                  {"pages that the history lists have no row of their own", 1}}));
    EXPECT_EQ(reading->result.passedOver.at("icons that no page has"), 1U);
}

TEST_F(ChromiumProfile, saysThatTheHistoryBesideItCantBeRead) {
    folder.write("any folder/History", std::string(3000, 'x'));
    make("Top Sites",
         std::string(kTopSitesTable) + "INSERT INTO top_sites VALUES('http://a/',0,'A')");
    const auto &records = read(parseChromeTopSitesFile, "Top Sites");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(reading->result.state, ReadState::complete);
    EXPECT_EQ(
        reading->result.noted.at("the history beside the file can't be read: it may list these "
                                 "pages"),
        1U);
    ASSERT_EQ(reading->log.entries.size(), 1U);
    EXPECT_NE(reading->log.entries[0].message.find(file("History").string()), std::string::npos);
}

TEST_F(ChromiumProfile, saysThatNoHistoryLiesBesideIt) {
    make("Top Sites",
         std::string(kTopSitesTable) + "INSERT INTO top_sites VALUES('http://a/',0,'A')");
    EXPECT_EQ(factOf(read(parseChromeTopSitesFile, "Top Sites").at(0), "rank"), "1 [0]");
    EXPECT_EQ(reading->result.noted.size(), 1U);
}

TEST_F(ChromiumProfile, countsWhatThePredictorHoldsOfHostsBesideTypedTexts) {
    make(
        "Network Action Predictor",
        std::string(kPredictorTable) +
            "INSERT INTO network_action_predictor VALUES('1','h','http://h/',1,0);"
            "CREATE TABLE resource_prefetch_predictor_origin(key,proto);"
            "INSERT INTO resource_prefetch_predictor_origin VALUES('h.example',x'0a');"
            "CREATE TABLE lcp_critical_path_predictor(host,last_hit_time,proto);"
            "INSERT INTO lcp_critical_path_predictor VALUES('h.example',1,x''),('i.example',2,x'');"
            "CREATE TABLE resource_prefetch_predictor_host_redirect(key,proto);"
            "CREATE TABLE resource_prefetch_predictor_metadata(key,value);"
            "INSERT INTO resource_prefetch_predictor_metadata VALUES('version',11)");
    EXPECT_EQ(read(parseChromePredictorFile, "Network Action Predictor").size(), 1U);
    EXPECT_EQ(reading->result.passedOver,
              (std::map<std::string, std::uint64_t>{
                  {"rows of table lcp_critical_path_predictor, which is not read", 2},
                  {"rows of table resource_prefetch_predictor_origin, which is not read", 1}}));
}

TEST_F(ChromiumProfile, readsValuesOfAnyTypeInAnyColumn) {
    std::string icons = kIconTables;
    std::string sites = "CREATE TABLE top_sites(url,url_rank,title,last_updated,redirects);";
    std::string shortcuts = kShortcutsTable;
    std::string guesses = kPredictorTable;
    const auto repeated = [](const std::string &value, int times) {
        std::string text = value;
        for (int i = 1; i < times; ++i)
            text += "," + value;
        return text;
    };
    int rows = 0;
    for (const std::string value : {"NULL", "'text'", "x'ff00'", "9223372036854775807",
                                    "-9223372036854775808", "1e300", "''"}) {
        ++rows;
        icons += "INSERT INTO icon_mapping(page_url,icon_id) VALUES(" + repeated(value, 2) + ");" +
                 "INSERT INTO favicons(url) VALUES(" + value + ");" +
                 "INSERT INTO favicon_bitmaps(icon_id,last_updated,last_requested) VALUES(1," +
                 repeated(value, 2) + ");";
        sites += "INSERT INTO top_sites VALUES(" + repeated(value, 5) + ");";
        shortcuts += "INSERT INTO omni_box_shortcuts VALUES('" + std::to_string(rows) + "'," +
                     repeated(value, 8) + ");";
        guesses += "INSERT INTO network_action_predictor VALUES('" + std::to_string(rows) + "'," +
                   repeated(value, 4) + ");";
    }
    make("Favicons", icons);
    make("Top Sites", sites);
    make("Shortcuts", shortcuts);
    make("Network Action Predictor", guesses);
    const std::pair<Reader, const char *> files[] = {
        {parseChromeFaviconsFile, "Favicons"},
        {parseChromeTopSitesFile, "Top Sites"},
        {parseChromeShortcutsFile, "Shortcuts"},
        {parseChromePredictorFile, "Network Action Predictor"}};
    for (const auto &[reader, name] : files) {
        EXPECT_EQ(read(reader, name).size(), static_cast<std::size_t>(rows)) << name;
        EXPECT_EQ(reading->result.state, ReadState::complete) << name;
        EXPECT_TRUE(reading->log.entries.empty()) << name;
    }
}

TEST_F(ChromiumProfile, stopsWhereverItIsCancelled) {
    makeHistoryOf("http://listed/");
    make("Favicons", std::string(kIconTables) +
                         "INSERT INTO icon_mapping VALUES(1,'http://a/',1),(2,'http://b/',1);"
                         "INSERT INTO favicons VALUES(1,'http://icon/',1)");
    for (int calls = 0; calls < 3; ++calls) {
        test::CancelAfter cancel(calls);
        reading.emplace();
        reading->read(parseChromeFaviconsFile, file("Favicons"), cancel);
        EXPECT_EQ(reading->result.state, ReadState::cancelled) << calls;
        EXPECT_TRUE(fs::is_empty(reading->scratch.path()));
    }
    EXPECT_EQ(reading->records().size(), 1U);
}

TEST_F(ChromiumProfile, failsWithoutItsTable) {
    make("Top Sites", "CREATE TABLE other(id)");
    read(parseChromeTopSitesFile, "Top Sites");
    EXPECT_EQ(reading->result.state, ReadState::failed);
    EXPECT_NE(reading->result.reason.find("\"top_sites\""), std::string::npos);
}

} // namespace
} // namespace nv
