#include "readers/firefox/profile/Places.h"
#include "support/Samples.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/FirefoxProfile.h"
#include "support/builders/Places.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::CurrentPlaces;
using test::firefoxTime;
using test::PlacesBookmark;
using test::PlacesPage;
using test::PlacesVisit;

constexpr std::int64_t kStamp = 1784016000; // 2026-07-14 08:00

/// What the reader gives beyond the classic rows, and what it gives them.
class FirefoxPlacesRows : public testing::Test {
  protected:
    CurrentPlaces &places() {
        if (!m_places)
            m_places.emplace(file());
        return *m_places;
    }
    fs::path file() const { return folder.path() / "profile" / "places.sqlite"; }
    test::SqliteHistoryReading &read() {
        m_places.reset();
        return reading.read(parseFirefox3HistoryFile, file());
    }
    std::vector<UrlRecord> ofKind(std::string_view word) const {
        std::vector<UrlRecord> records;
        for (const UrlRecord &record : reading.records())
            if (record.cacheType == word)
                records.push_back(record);
        return records;
    }
    static FactValue fact(const UrlRecord &record, std::string_view name) {
        for (const RecordFact &each : record.facts)
            if (each.name == name)
                return each.value;
        return {};
    }
    /// Two pages with three visits each; the second page's come from the first one's.
    void addVisits() {
        places().add(PlacesPage{1, "http://a.example/", "A", 3});
        places().add(PlacesPage{2, "http://b.example/", "B", 3});
        for (std::int64_t i = 0; i < 3; ++i) {
            places().add(PlacesVisit{10 + 2 * i, 1, firefoxTime(kStamp + i), 2});
            places().add(PlacesVisit{11 + 2 * i, 2, firefoxTime(kStamp + 60 + i), 1, 10 + 2 * i});
        }
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;

  private:
    std::optional<CurrentPlaces> m_places;
};

using Text = std::string;

TEST_F(FirefoxPlacesRows, eachVisitIsOneRowAndThePagesOwnStandsForItsFirst) {
    addVisits();
    read();
    ASSERT_EQ(ofKind("Firefox3 History").size(), 2U);
    ASSERT_EQ(ofKind("Firefox Visit").size(), 4U);
    std::map<std::int64_t, int> visits;
    for (const UrlRecord &record : reading.records())
        ++visits[std::get<std::int64_t>(fact(record, "visit_id"))];
    EXPECT_EQ(visits,
              (std::map<std::int64_t, int>{{10, 1}, {11, 1}, {12, 1}, {13, 1}, {14, 1}, {15, 1}}));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.result.passedOver.empty());
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(FirefoxPlacesRows, aVisitFillsItsFields) {
    addVisits();
    read();
    const UrlRecord visit = ofKind("Firefox Visit").at(1); // 13, the second page's second
    EXPECT_EQ(visit.URL, "http://b.example/");
    EXPECT_EQ(visit.Referrer, "http://a.example/");
    EXPECT_EQ(visit.WebpageTitle, "B");
    EXPECT_EQ(visit.Action, "Visited");
    EXPECT_EQ(visit.Status, "URL");
    EXPECT_EQ(visit.Visits, -1);
    EXPECT_EQ(visit.Reference_ID, 13);
    EXPECT_EQ(isoUtc(visit.ActionDateUTC), "2026-07-14T08:01:01Z");
    EXPECT_TRUE(visit.IsHistory);
    EXPECT_FALSE(visit.Typed || visit.IsBookmark);
    EXPECT_TRUE(ofKind("Firefox Visit").at(0).Typed);
    EXPECT_EQ(fact(visit, "source_table"), FactValue(Text("moz_historyvisits")));
    EXPECT_EQ(fact(visit, "from_visit_id"), FactValue(std::int64_t{12}));
    EXPECT_EQ(fact(visit, "transition"), FactValue(Text("link")));
    EXPECT_EQ(fact(visit, "visit_source"), FactValue(Text("browsed")));
}

TEST_F(FirefoxPlacesRows, aPagesRowIsTheClassicOneWithFacts) {
    addVisits();
    read();
    test::SqliteHistoryReading classic;
    classic.classicOnly = true;
    classic.read(parseFirefox3HistoryFile, file());
    ASSERT_EQ(classic.records().size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        const UrlRecord &plain = classic.records()[i];
        const UrlRecord &full = reading.records()[i];
        EXPECT_TRUE(plain.facts.empty());
        EXPECT_EQ(full.ActionDateUTC, plain.ActionDateUTC);
        EXPECT_EQ(full.URL + full.Status + full.Action + full.WebpageTitle + full.Referrer,
                  plain.URL + plain.Status + plain.Action + plain.WebpageTitle + plain.Referrer);
        EXPECT_EQ(full.Visits, plain.Visits);
        EXPECT_EQ(full.Typed, plain.Typed);
    }
    EXPECT_EQ(fact(reading.records()[1], "from_url"), FactValue(Text("http://a.example/")));
    EXPECT_EQ(fact(reading.records()[1], "title"), FactValue(Text("B")));
    EXPECT_EQ(classic.result.passedOver.size(), 1U);
}

TEST_F(FirefoxPlacesRows, aVisitWhosePageIsGoneIsARowWithoutAnAddress) {
    addVisits();
    places().run("DELETE FROM moz_places WHERE id = 1");
    read();
    const auto visits = ofKind("Firefox Visit");
    ASSERT_EQ(visits.size(), 5U);
    EXPECT_EQ(std::ranges::count(visits, "", &UrlRecord::URL), 3);
    EXPECT_EQ(reading.result.noted.size(), 1U);
    EXPECT_EQ(reading.result.noted.begin()->second, 3U);
}

TEST_F(FirefoxPlacesRows, aStampBeyondTenDigitsIsNoted) {
    places().add(PlacesPage{1, "http://sound.example/"});
    places().add(PlacesVisit{1, 1, firefoxTime(9'999'999'999)});
    const std::int64_t stamps[] = {-11'644'473'600'000'000, 1'000'000'000'000'000'000,
                                   firefoxTime(10'000'000'000), firefoxTime(-1'000'000'000)};
    std::int64_t id = 1;
    for (const std::int64_t stamp : stamps) {
        places().add(PlacesPage{++id, "http://damaged.example/"});
        places().add(PlacesVisit{id, id, stamp});
    }
    read();
    ASSERT_EQ(reading.result.noted.size(), 1U);
    const auto &[reason, pages] = *reading.result.noted.begin();
    EXPECT_NE(reason.find("more than ten digits"), std::string::npos) << reason;
    EXPECT_EQ(pages, 4U);
    EXPECT_EQ(isoUtc(ofKind("Firefox3 History").at(1).ActionDateUTC), "1966-04-24T06:14:24Z");
}

TEST_F(FirefoxPlacesRows, sitesWithoutAPageAreCounted) {
    places().run("CREATE TABLE moz_origins(id INTEGER PRIMARY KEY,prefix,host);"
                 "ALTER TABLE moz_places ADD COLUMN origin_id INTEGER");
    for (int id = 1; id <= 5; ++id)
        places().run("INSERT INTO moz_origins(prefix,host) VALUES('https://','h.example')");
    places().add(PlacesPage{1, "http://a.example/"});
    places().run("UPDATE moz_places SET origin_id = 2");
    read();
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.result.passedOver.at("site of table moz_origins of which no page is listed"),
              4U);
}

TEST_F(FirefoxPlacesRows, aDownloadAndItsVisitNameEachOther) {
    places().add(PlacesPage{1, "http://f.example/tool.bin", "tool.bin", 0});
    places().add(PlacesVisit{3, 1, firefoxTime(kStamp), 7});
    places().add(PlacesVisit{4, 1, firefoxTime(kStamp + 50), 7});
    places().annotate(1, "downloads/destinationFileURI", "file:///C:/My%20files/tool.bin",
                      firefoxTime(kStamp + 51));
    places().annotate(1, "downloads/metaData", R"({"state":3,"endTime":1784016055500})",
                      firefoxTime(kStamp + 55));
    read();
    const auto downloads = ofKind("Firefox Download");
    ASSERT_EQ(downloads.size(), 1U);
    const UrlRecord &download = downloads[0];
    EXPECT_EQ(download.URL, "http://f.example/tool.bin");
    EXPECT_EQ(download.Action, "Downloaded");
    EXPECT_EQ(download.Status, "cancelled");
    EXPECT_EQ(isoUtc(download.ActionDateUTC), "2026-07-14T08:00:50Z");
    EXPECT_EQ(isoUtc(download.OtherDate), "2026-07-14T08:00:55Z");
    EXPECT_EQ(fact(download, "target_path"), FactValue(Text("C:/My files/tool.bin")));
    EXPECT_EQ(fact(download, "end_time"), FactValue(Text("2026-07-14 08:00:55.500")));
    EXPECT_EQ(fact(download, "visit_id"), FactValue(std::int64_t{4}));
    const UrlRecord visit = ofKind("Firefox Visit").at(0);
    EXPECT_EQ(visit.Status, "download");
    EXPECT_EQ(fact(visit, "download_id"), fact(download, "download_id"));
    EXPECT_EQ(fact(reading.records()[0], "download_id"), FactValue()) << "of the one before";
}

TEST_F(FirefoxPlacesRows, aBookmarkKnowsItsFolders) {
    places().add(PlacesPage{1, "http://a.example/", "A", 0});
    places().add(PlacesBookmark{1, 2, 0, 0, ""});
    places().add(PlacesBookmark{2, 2, 0, 1, "menu"});
    places().add(PlacesBookmark{3, 2, 0, 2, "Boats"});
    places().add(PlacesBookmark{4, 1, 1, 3, "Mine", "guid", firefoxTime(kStamp)});
    read();
    const UrlRecord mark = ofKind("Firefox Bookmark").at(0);
    EXPECT_EQ(mark.URL, "http://a.example/");
    EXPECT_EQ(mark.WebpageTitle, "Mine");
    EXPECT_EQ(mark.Action, "Bookmarked");
    EXPECT_EQ(isoUtc(mark.ActionDateUTC), "2026-07-14T08:00:00Z");
    EXPECT_TRUE(mark.IsBookmark);
    EXPECT_FALSE(mark.IsHistory);
    EXPECT_EQ(fact(mark, "folder"), FactValue(Text("menu/Boats")));
    EXPECT_EQ(fact(mark, "guid"), FactValue(Text("guid")));
    EXPECT_EQ(ofKind("Firefox3 History").at(0).Status, "(autogen)");
}

TEST_F(FirefoxPlacesRows, cancellingAtAnyRowKeepsWhatIsStored) {
    addVisits();
    places().add(PlacesBookmark{1, 1, 1, 0, "x"});
    places().close();
    std::size_t most = 0;
    for (int calls = 0;; ++calls) {
        test::CancelAfter cancel(calls);
        test::SqliteHistoryReading each;
        each.read(parseFirefox3HistoryFile, file(), cancel);
        EXPECT_GE(each.records().size(), most);
        most = each.records().size();
        EXPECT_TRUE(fs::is_empty(each.scratch.path()));
        if (each.result.state == ReadState::complete)
            break;
        EXPECT_EQ(each.result.state, ReadState::cancelled);
        ASSERT_LT(calls, 100);
    }
    EXPECT_EQ(most, 7U);
}

TEST_F(FirefoxPlacesRows, damageLosesNoVisitInSilence) {
    CurrentPlaces small(file(), 512);
    for (std::int64_t id = 1; id <= 12; ++id) {
        small.add(PlacesPage{id, "http://page.example/" + std::to_string(id), "title", 2});
        small.add(PlacesVisit{2 * id, id, firefoxTime(kStamp + id)});
        small.add(PlacesVisit{2 * id + 1, id, firefoxTime(kStamp + 60 + id), 2, 2 * id});
        small.add(PlacesBookmark{id, 1, id, 0, "mark"});
    }
    small.close();
    const std::string sound = test::contentsOf(folder.path()).at(file().string());
    for (std::size_t at = 100; at < sound.size(); at += 41) {
        std::string damaged = sound;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xFF);
        writeWhole(file(), damaged);
        test::SqliteHistoryReading each;
        each.read(parseFirefox3HistoryFile, file());
        const bool isSound = each.result.state == ReadState::complete;
        EXPECT_EQ(isSound, each.result.reason.empty()) << at;
        EXPECT_TRUE(isSound || !each.log.entries.empty()) << at;
        EXPECT_TRUE(each.result.state != ReadState::failed || each.records().empty()) << at;
        EXPECT_LE(each.records().size(), 48U) << at;
        EXPECT_TRUE(fs::is_empty(each.scratch.path()));
    }
}

/// Real histories: every visit is there once, whatever the classic rules make of the pages.
class FirefoxPlacesSample : public testing::TestWithParam<std::string> {};

TEST_P(FirefoxPlacesSample, hasARowForEachVisitAndForEachPage) {
    const auto samples = test::samplesFolder();
    if (!samples)
        GTEST_SKIP() << "the folder of real samples is not here";
    fs::path file;
    for (const auto &entry : fs::recursive_directory_iterator(*samples / GetParam() / "evidence"))
        if (entry.path().filename() == "places.sqlite")
            file = entry.path();
    test::SqliteHistoryReading reading;
    reading.read(parseFirefox3HistoryFile, file);
    test::SqliteHistoryReading classic;
    classic.classicOnly = true;
    classic.read(parseFirefox3HistoryFile, file);
    std::uint64_t passedOver = 0;
    for (const auto &[reason, count] : classic.result.passedOver)
        passedOver += count;
    const auto visits =
        std::ranges::count(reading.records(), "Firefox Visit", &UrlRecord::cacheType);
    EXPECT_EQ(static_cast<std::uint64_t>(visits), passedOver);
    const auto pages =
        std::ranges::count(reading.records(), "Firefox3 History", &UrlRecord::cacheType);
    EXPECT_EQ(static_cast<std::size_t>(pages), classic.records().size());
    EXPECT_GT(std::ranges::count(reading.records(), true, &UrlRecord::IsBookmark), 0);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
}

INSTANTIATE_TEST_SUITE_P(Real, FirefoxPlacesSample,
                         testing::Values("ff3_places_plaso", "ff41_places_portable"),
                         [](const auto &sample) { return sample.param; });

} // namespace
} // namespace nv
