#include "MadeProject.h"
#include "db/records/RecordFacts.h"
#include "time/ExactZone.h"
#include "views/record/RecordCard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using test::daysOf;

struct RecordCardTest : testing::Test, test::MadeProject {
    RecordCard load(std::int64_t id) {
        const auto card = loadCard(UrlId{id}, {db(), zone, dates, log});
        EXPECT_TRUE(card);
        return card.value_or(RecordCard());
    }
    void inBerlin() {
        setExactZone(zone, ExactZones("/usr/share/zoneinfo").find("Europe/Berlin"),
                     Date::fromCivil({2011, 6, 15, 12, 0, 0}));
    }
    DateSettings dates;
};

TEST_F(RecordCardTest, saysWhatIsAskedFirst) {
    inBerlin();
    const std::int64_t file =
        insert("SourceFiles", {{"FilePath", "/e/History"}, {"MD5Hash", "0123"}});
    const std::int64_t id = add({{"URL", "http://www.harbour.example/tide0.html"},
                                 {"WebPageTitle", "Tide tables"},
                                 {"ActionDateUTC", daysOf({2011, 3, 1, 19, 10, 30})},
                                 {"Browser", "Edge"},
                                 {"Profile", "Default"},
                                 {"Person", "ada"},
                                 {"User", "ada"},
                                 {"CacheType", "Chrome History"},
                                 {"Action", "Visited"},
                                 {"Visits", std::int64_t{3}},
                                 {"HistoryFilePath", "/e/History"},
                                 {"SourceFile_ID", file}});
    FactList facts;
    facts.add("source_table", "visits");
    facts.add("source_rowid", 17);
    facts.add("transition", "typed", 33554433);
    facts.add("content_md5", "aa");
    facts.add("content_sha256", "bb");
    RecordFacts(db()).store(UrlId{id}, facts);

    const RecordCard card = load(id);
    EXPECT_EQ(card.title, "Tide tables");
    EXPECT_EQ(card.address, "http://www.harbour.example/tide0.html");
    const std::vector<CardLine> lines = {
        {"Date", "2011-03-01 19:10:30 UTC"},
        {"Local date", "2011-03-01 20:10:30 Europe/Berlin (+0100 CET)"},
        {"Browser", "Edge"},
        {"Profile", "Default"},
        {"Person", "ada"},
        {"Kind", "Visit, Visited, typed (CHROME HISTORY)"},
        {"Visits", "3"},
        {"Source", "/e/History, row 17 of table visits"},
        {"SHA-256 of the content", "bb"},
        {"MD5 of the source", "0123"}};
    EXPECT_EQ(card.lines, lines);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(RecordCardTest, ofCachedContentItsFile) {
    const RecordCard card = load(add({{"URL", "http://h.example/a.png"},
                                      {"URLFileName", "a.png"},
                                      {"CacheType", "IE Cache"},
                                      {"Status", "LEAK"},
                                      {"Category", "Pictures"},
                                      {"CacheFileExists", std::int64_t{1}},
                                      {"PictureWidth", std::int64_t{64}},
                                      {"PictureHeight", std::int64_t{48}},
                                      {"CacheFileSize", std::int64_t{1}},
                                      {"MapFileOffset", 24832.0},
                                      {"HistoryFilePath", "/e/index.dat"}}));
    EXPECT_EQ(card.title, "a.png");
    EXPECT_EQ(card.line("Content"), "Pictures, 64 x 48 pixels, 1 byte");
    EXPECT_EQ(card.line("Status"), "LEAK: given up, but its file could not be deleted then");
    EXPECT_EQ(card.line("Source"), "/e/index.dat, offset 24832");
    EXPECT_EQ(card.line("Date"), "The record has none");
    EXPECT_EQ(card.line("Local date"), "");
}

/// A cache is named by its index, and its entries lie in the files beside that.
TEST_F(RecordCardTest, theFileOfAnEntryIsTheOneThatHoldsIt) {
    const auto sourceOf = [this](const std::string &version, const std::string &path,
                                 const std::string &file, std::int64_t offset) {
        const std::int64_t id = add({{"CacheType", "Chrome Cache"},
                                     {"HistoryVersion", version},
                                     {"MapFileOffset", static_cast<double>(offset)},
                                     {"HistoryFilePath", path}});
        FactList facts;
        facts.add("source_file", file);
        facts.add("source_offset", offset);
        RecordFacts(db()).store(UrlId{id}, facts);
        return load(id).line("Source");
    };
    const std::string block = "data_1[12032], or the block file that continues data_1";
    // The file that is noted is the one of the body.
    for (const char *body : {"data_1", "data_3", "f_000001", ""})
        EXPECT_EQ(sourceOf("Block files 3.0", "/e/Cache/index", body, 12032),
                  "/e/Cache/index, " + block)
            << body;
    EXPECT_EQ(sourceOf("1.0", "/e/Cache/index", "", 12032), "/e/Cache/index, " + block);
    EXPECT_EQ(sourceOf("Simple 9", "/e/Cache", "0a1b_0", 0), "/e/Cache, 0a1b_0[0]");
    EXPECT_EQ(sourceOf("Simple 9", "/e/Cache/0a1b_0", "0a1b_0", 0), "/e/Cache/0a1b_0, offset 0");
}

/// What the table has in its column, and nothing that the kind of the record would suggest.
TEST_F(RecordCardTest, theBrowserIsTheOneOfTheTable) {
    EXPECT_EQ(load(add({{"CacheType", "IE Cache"}})).line("Browser"), "");
    EXPECT_EQ(load(add({{"CacheType", "IE Cache"}, {"Browser", "Edge"}})).line("Browser"), "Edge");
    const RecordCard card =
        load(add({{"CacheType", "NetAnalysis"}, {"HistoryFilePath", "/e/a.net"}, {"Browser", ""}}));
    EXPECT_EQ(card.line("Browser"), "");
    EXPECT_EQ(card.line("Source"), "/e/a.net");
    EXPECT_EQ(card.line("Recovered by"), "NetAnalysis");
    EXPECT_EQ(load(add({{"CacheType", "Chrome History"}, {"HistoryFilePath", "/e/History"}}))
                  .line("Recovered by"),
              "");
}

TEST_F(RecordCardTest, aStatusThatSaysNothingIsNone) {
    EXPECT_EQ(load(add({{"CacheType", "Chrome History"}, {"Status", "URL"}})).line("Status"), "");
    EXPECT_EQ(load(add({{"CacheType", "Chrome Cookie"}, {"Status", "Expired"}})).line("Status"),
              "Expired");
    EXPECT_EQ(load(add({{"CacheType", "IE Cache"}, {"Status", "URL "}})).line("Status"),
              "URL: an entry that is in use");
}

TEST_F(RecordCardTest, datesOfAnyAgeStandInTheZone) {
    const RecordCard card = load(add({{"ActionDateUTC", daysOf({1996, 1, 2, 3, 4, 5})},
                                      {"OtherDate", daysOf({1997, 1, 1, 0, 0, 0})},
                                      {"OtherDateMeaning", "Last modified"}}));
    EXPECT_EQ(card.line("Date"), "1996-01-02 03:04:05 UTC");
    EXPECT_NE(card.line("Local date").find("1996-01-01 22:04:05"), std::string::npos);
    EXPECT_NE(card.line("Local date").find("-0500 STD"), std::string::npos);
    EXPECT_EQ(card.line("Last modified"), "1997-01-01 00:00:00 UTC");
}

TEST_F(RecordCardTest, anotherDateStandsWithWhatItMeansOnly) {
    const auto load = [this](const char *type, const char *meaning) {
        return RecordCardTest::load(add({{"CacheType", type},
                                         {"OtherDate", daysOf({2011, 2, 1, 20, 0, 0})},
                                         {"OtherDateMeaning", meaning}}));
    };
    EXPECT_EQ(load("NetAnalysis", "Other").line("Secondary date"), "2011-02-01 20:00:00 UTC");
    for (const char *meaning : {"", "Other"})
        EXPECT_THAT(load("IE Cache", meaning).lines,
                    testing::Not(testing::Contains(
                        testing::Field(&CardLine::text, testing::HasSubstr("2011-02-01")))));
}

TEST_F(RecordCardTest, whatWasSearchedForIsTold) {
    const auto card =
        load(add({{"URL", "http://www.google.com/search?q=C+++AT&T+bomb"},
                  {"URLRawValue", "http://www.google.com/search?q=C%2B%2B+AT%26T+bomb"}}));
    EXPECT_EQ(card.line("Searched for"), "C++ AT&T bomb");
}

TEST_F(RecordCardTest, theAddressOfTheArtefactIsToldWhereItSaysMore) {
    const auto rawOf = [this](const std::string &url, const std::string &raw,
                              const char *kind = "Chrome History") {
        return load(add({{"URL", url}, {"URLRawValue", raw}, {"CacheType", kind}}))
            .line("Raw address");
    };
    EXPECT_EQ(rawOf("ann.example", "mailto:ann@ann.example"), "mailto:ann@ann.example");
    EXPECT_EQ(rawOf("http://a/", "view-source:http://a/"), "view-source:http://a/");
    EXPECT_EQ(rawOf("http://a/b", "1/0/_dk_http://a http://a http://a/b", "Chrome Cache"), "");
    EXPECT_EQ(rawOf("http://a/", "view-source:http://a/", "IE Cache"), "view-source:http://a/");
    EXPECT_EQ(rawOf("http://a/b c", "http://a/b%20c"), "") << "only its escapes are undone";
    EXPECT_EQ(rawOf("http://a/", "http://a/"), "");
    EXPECT_EQ(rawOf("http://a/", ""), "");
}

TEST_F(RecordCardTest, anEmptyRowHasAKindAndNoDate) {
    const RecordCard card = load(add({}));
    EXPECT_EQ(card.title, "Record");
    const std::vector<CardLine> lines = {{"Date", "The record has none"}, {"Kind", "Record"}};
    EXPECT_EQ(card.lines, lines);
    EXPECT_FALSE(loadCard(UrlId{999}, {db(), zone, dates, log}));
}

TEST_F(RecordCardTest, aProjectOfAnEarlierBuildHasACard) {
    const std::int64_t id = add({{"URL", "http://h.example/"}, {"CacheType", "IE Cache"}});
    for (const char *column : {"Browser", "Profile", "Person"})
        db().exec(std::string("ALTER TABLE URLs DROP COLUMN ") + column);
    db().exec("DROP TABLE RecordFacts");
    EXPECT_EQ(load(id).address, "http://h.example/");
    EXPECT_EQ(load(id).line("Browser"), "");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(RecordCardTest, valuesOfAnyFormAreTaken) {
    const RecordCard card = load(add({{"URL", std::int64_t{7}},
                                      {"ActionDateUTC", std::string("soon")},
                                      {"OtherDate", 1e300},
                                      {"Visits", std::string("many")},
                                      {"WebPageTitle", std::string("a\nb\xE2\x80\xAE")}}));
    EXPECT_EQ(card.address, "7");
    EXPECT_EQ(card.title, "a\nb\xE2\x80\xAE");
    EXPECT_EQ(card.line("Date"), "The record has none");
}

} // namespace
} // namespace nv
