#include "readers/firefox/profile/Places.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/Places.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::firefoxTime;
using test::Places;

constexpr std::int64_t kStamp = 1305849600; // 2011-05-20

/// The classic rules; what is read beyond them stands in firefox_places_rows_test.cpp.
class FirefoxPlaces : public testing::Test {
  protected:
    FirefoxPlaces() { reading.classicOnly = true; }
    Places &places() {
        if (!m_places)
            m_places.emplace(file());
        return *m_places;
    }
    std::filesystem::path file() const { return folder.path() / "profile" / "places.sqlite"; }
    test::SqliteHistoryReading &read() {
        m_places.reset();
        return reading.read(parseFirefox3HistoryFile, file());
    }
    const UrlRecord &only() {
        read();
        EXPECT_EQ(reading.records().size(), 1U);
        EXPECT_TRUE(reading.log.entries.empty());
        return reading.records().at(0);
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;

  private:
    std::optional<Places> m_places;
};

TEST_F(FirefoxPlaces, fillsEveryFieldOfARecord) {
    places().add({.id = 4,
                  .url = "https://www.example.com/a/b.php?x=1&y=2",
                  .title = "not stored by this reader",
                  .visitCount = 5,
                  .hidden = true,
                  .visitDates = {firefoxTime(kStamp, 999'999)}});
    const UrlRecord &record = only();
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.Reference_ID, 4);
    EXPECT_EQ(record.URL, "https://www.example.com/a/b.php?x=1&y=2");
    EXPECT_EQ(record.URLRawValue, record.URL);
    EXPECT_EQ(record.URLParameters, "x=1&y=2");
    EXPECT_EQ(record.URLProtocol, "https");
    EXPECT_EQ(record.host, "www.example.com");
    EXPECT_EQ(record.RecordSize, 39U);
    EXPECT_EQ(record.cacheType, "Firefox3 History");
    EXPECT_EQ(record.RootPath, file().parent_path().string() + "/");
    EXPECT_EQ(record.HistoryFilePath, file().string());
    EXPECT_EQ(record.HistoryVersion, "1.0");
    EXPECT_TRUE(record.CacheFileCreatedGMTDOS.has());
    EXPECT_EQ(record.ActionDateUTC, Date::fromUnixSeconds(kStamp)); // the fraction is dropped
    EXPECT_EQ(record.Visits, 5);
    EXPECT_EQ(record.Status, "URL");
    EXPECT_TRUE(record.Hidden && record.IsHistory);
    EXPECT_FALSE(record.IsWebPage || record.CacheFileExists);
    EXPECT_EQ(record.WebpageTitle, "");
}

TEST_F(FirefoxPlaces, showsWhatItReads) {
    test::addExamplePlaces(places());
    read();
    ASSERT_EQ(reading.task.headings.size(), 1U);
    EXPECT_EQ(reading.task.headings[0].title, "PARSING FIREFOX3 HISTORY FILE");
    EXPECT_EQ(reading.task.headings[0].subject, "Firefox");
    EXPECT_EQ(reading.task.headings[0].detail, file().string());
    EXPECT_EQ(reading.task.headings[0].icon, "firefox-32.png");
    EXPECT_EQ(reading.task.fractions.size(), 3U);
}

TEST_F(FirefoxPlaces, tellsPlacesThatNobodyVisited) {
    places().add({.url = "place:sort=8", .visitCount = 0});
    const UrlRecord &record = only();
    EXPECT_EQ(record.Status, "(autogen)");
    EXPECT_EQ(record.Action, "");
    EXPECT_EQ(record.URLProtocol, "place");
    EXPECT_FALSE(record.ActionDateUTC.has());
}

TEST_F(FirefoxPlaces, notesPagesWhoseVisitsFirefoxDoesNotCount) {
    places()
        .add({.id = 1,
              .url = "http://a/file.zip",
              .visitCount = 0,
              .visitDates = {firefoxTime(kStamp)}})
        .add({.id = 2, .url = "http://b/", .visitCount = 0})
        .add({.id = 3, .url = "http://c/", .visitCount = 1, .visitDates = {firefoxTime(kStamp)}});
    places().run("UPDATE moz_historyvisits SET visit_type = 7 WHERE place_id = 1");
    read();
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[0].Status, "(autogen)");
    EXPECT_EQ(reading.records()[0].ActionDateUTC, Date::fromUnixSeconds(kStamp));
    EXPECT_EQ(reading.result.noted,
              (std::map<std::string, std::uint64_t>{
                  {"page with visits that Firefox doesn't count (a download, a frame, a reload), "
                   "so \"(autogen)\"",
                   1}}));
}

TEST_F(FirefoxPlaces, letsNeverVisitedWinOverDeleted) {
    places().add({.id = 1, .url = "http://a/"}).add({.id = 2, .url = "http://b/", .visitCount = 0});
    reading.deleted = true;
    read();
    ASSERT_EQ(reading.records().size(), 2U);
    EXPECT_EQ(reading.records()[0].Status, "Deleted");
    EXPECT_EQ(reading.records()[1].Status, "(autogen)");
    EXPECT_EQ(reading.records()[1].Action, "");
}

TEST_F(FirefoxPlaces, takesTheFirstStoredVisitNotTheEarliest) {
    places().add(
        {.url = "http://a/",
         .visitCount = 3,
         .visitDates = {firefoxTime(kStamp + 60), firefoxTime(kStamp), firefoxTime(kStamp + 120)}});
    EXPECT_EQ(only().ActionDateUTC, Date::fromUnixSeconds(kStamp + 60));
    EXPECT_EQ(reading.result.passedOver,
              (std::map<std::string, std::uint64_t>{
                  {"later visits of a page, only the first is stored", 2}}));
}

TEST_F(FirefoxPlaces, countsVisitsOfRemovedPlaces) {
    test::addExamplePlaces(places());
    places().run("DELETE FROM moz_places WHERE id = 1");
    read();
    EXPECT_EQ(reading.result.passedOver, (std::map<std::string, std::uint64_t>{
                                             {"visits of pages that are no longer listed", 2}}));
}

TEST_F(FirefoxPlaces, hasNoDateWhereNoneIsStored) {
    places()
        .add({.id = 1, .url = "http://a/"})
        .add({.id = 2, .url = "http://b/", .visitDates = {0}})
        .run("INSERT INTO moz_places(id,url,visit_count) VALUES(3,'http://c/',1)")
        .run("INSERT INTO moz_historyvisits(place_id,visit_date) VALUES(3,NULL)")
        .run("INSERT INTO moz_places(id,url,visit_count) VALUES(4,'http://d/',1)")
        .run("INSERT INTO moz_historyvisits(place_id,visit_date) VALUES(4,'soon')");
    read();
    ASSERT_EQ(reading.records().size(), 4U);
    for (const UrlRecord &record : reading.records())
        EXPECT_FALSE(record.ActionDateUTC.has()) << record.URL;
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(FirefoxPlaces, readsDatesOfTheWrongType) {
    places().run("INSERT INTO moz_places(id,url,visit_count) VALUES(1,'a',1),(2,'b',1),(3,'c',1);"
                 "DROP TABLE moz_historyvisits;"
                 "CREATE TABLE moz_historyvisits(place_id, visit_date);"
                 "INSERT INTO moz_historyvisits VALUES('1','1305849600000000'),(2.0,1.3058496e15),"
                 "(3,-1000000)");
    read();
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[0].ActionDateUTC, Date::fromUnixSeconds(kStamp));
    EXPECT_EQ(reading.records()[1].ActionDateUTC, Date::fromUnixSeconds(kStamp));
    EXPECT_EQ(reading.records()[2].ActionDateUTC, Date::fromUnixSeconds(-1));
}

TEST_F(FirefoxPlaces, readsEveryVersionOfTheTables) {
    for (const auto version :
         {Places::Version::firefox3, Places::Version::firefox41, Places::Version::firefox115}) {
        Places made(file(), version);
        test::addExamplePlaces(made);
        made.close();
        test::SqliteHistoryReading each;
        each.classicOnly = true;
        each.read(parseFirefox3HistoryFile, file());
        EXPECT_EQ(each.records().size(), 3U);
        EXPECT_TRUE(each.log.entries.empty());
        EXPECT_EQ(each.result.state, ReadState::complete);
    }
}

TEST_F(FirefoxPlaces, keepsPlacesWhoseVisitsAreMissing) {
    test::addExamplePlaces(places());
    places().run("DROP TABLE moz_historyvisits");
    read();
    EXPECT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 0U);
    ASSERT_EQ(reading.log.entries.size(), 2U);
    EXPECT_EQ(reading.log.entries[0].procedure, "ADO.GetDB3Field()");
    EXPECT_EQ(reading.log.entries[0].severity, Severity::Warning);
    EXPECT_EQ(reading.log.entries[1].procedure, "ParserClass.ParseFirefox3HistoryFile()");
    EXPECT_EQ(reading.log.entries[1].severity, Severity::Serious);
    EXPECT_EQ(reading.log.entries[1].message, reading.result.reason);
    EXPECT_NE(reading.result.reason.find("places may lack their dates"), std::string::npos);
}

TEST_F(FirefoxPlaces, saysThatATableIsMissing) {
    places().run("DROP TABLE moz_places");
    read();
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_NE(reading.result.reason.find("\"moz_places\""), std::string::npos);
    ASSERT_EQ(reading.log.entries.size(), 1U);
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseFirefox3HistoryFile()");
}

TEST_F(FirefoxPlaces, stopsWhenCancelled) {
    test::addExamplePlaces(places());
    places().close();
    test::CancelAfter cancel(1);
    reading.read(parseFirefox3HistoryFile, file(), cancel);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_EQ(reading.records().size(), 1U);
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(FirefoxPlaces, stopsAmidTheVisitsWhenCancelled) {
    places().run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<3000) "
                 "INSERT INTO moz_historyvisits(place_id,visit_date) SELECT i,i FROM n");
    places().add({.url = "http://a/"}).close();
    test::CancelAfter cancel(1);
    reading.read(parseFirefox3HistoryFile, file(), cancel);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_TRUE(reading.records().empty());
}

} // namespace
} // namespace nv
