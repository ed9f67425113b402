#include "base/Files.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromiumHistoryFixture.h"

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;

using test::ChromeHistory;
using test::chromeTime;
using test::factOf;
using test::kStamp;

class ChromiumHistory : public test::ChromiumHistoryFixture {};

TEST_F(ChromiumHistory, tellsEachVisitOnce) {
    page(1, chromeTime(kStamp + 20));
    visit(1, 1, chromeTime(kStamp));
    visit(2, 1, chromeTime(kStamp + 20));
    visit(3, 1, chromeTime(kStamp + 10));
    read();
    EXPECT_EQ(reading->result.state, ReadState::complete);
    EXPECT_TRUE(reading->result.passedOver.empty());
    EXPECT_EQ(factOf(only("Chrome History"), "visit_id"), "2");
    const auto visits = ofKind("Chrome Visit");
    ASSERT_EQ(visits.size(), 2U);
    EXPECT_EQ(factOf(*visits[0], "visit_id"), "1");
    EXPECT_EQ(factOf(*visits[1], "visit_id"), "3");
    EXPECT_EQ(isoUtc(visits[1]->ActionDateUTC), "2026-01-01T09:00:10Z");
    for (const UrlRecord *each : visits) {
        EXPECT_EQ(each->URL, "http://page/1");
        EXPECT_EQ(each->WebpageTitle, "Page 1");
        EXPECT_EQ(each->Action, "Visited");
        EXPECT_EQ(each->Visits, kVisitsUnknown) << "totals add that column up";
        EXPECT_TRUE(each->IsHistory);
    }
}

TEST_F(ChromiumHistory, eventsOfOneSecondStandInTheirOrder) {
    page(1, chromeTime(kStamp) + 900'000);
    visit(1, 1, chromeTime(kStamp) + 300'000);
    visit(2, 1, chromeTime(kStamp) + 900'000);
    page(2, chromeTime(kStamp) + 600'000);
    visit(3, 2, chromeTime(kStamp) + 600'000);
    read();
    const Date hop = only("Chrome Visit").ActionDateUTC;
    const auto pages = ofKind("Chrome History");
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_LT(hop, pages[1]->ActionDateUTC);
    EXPECT_LT(pages[1]->ActionDateUTC, pages[0]->ActionDateUTC);
    for (const Date date : {hop, pages[0]->ActionDateUTC, pages[1]->ActionDateUTC})
        EXPECT_EQ(isoUtc(date), "2026-01-01T09:00:00Z") << "as the classic rules show it";
}

TEST_F(ChromiumHistory, aPageStandsForTheLaterOfTwoVisitsAtATime) {
    page(1, chromeTime(kStamp));
    visit(1, 1, chromeTime(kStamp));
    visit(2, 1, chromeTime(kStamp));
    read();
    EXPECT_EQ(factOf(only("Chrome History"), "visit_id"), "2");
    EXPECT_EQ(factOf(only("Chrome Visit"), "visit_id"), "1");
}

// Imports of another browser's history leave dates of pages that are none of their last visit's.
TEST_F(ChromiumHistory, aPageWithAnotherDateStandsForTheVisitOfThatDateOrForNone) {
    page(1, chromeTime(kStamp));
    visit(1, 1, chromeTime(kStamp));
    visit(2, 1, chromeTime(kStamp + 50));
    page(2, chromeTime(kStamp + 7));
    visit(3, 2, chromeTime(kStamp + 90));
    page(3, 0);
    visit(4, 3, chromeTime(kStamp + 91));
    read();
    const auto pages = ofKind("Chrome History");
    ASSERT_EQ(pages.size(), 3U);
    EXPECT_EQ(factOf(*pages[0], "visit_id"), "1");
    EXPECT_EQ(factOf(*pages[1], "visit_id"), "-");
    EXPECT_EQ(factOf(*pages[2], "visit_id"), "-");
    const auto visits = ofKind("Chrome Visit");
    ASSERT_EQ(visits.size(), 3U);
    EXPECT_EQ(factOf(*visits[0], "visit_id"), "2");
}

TEST_F(ChromiumHistory, tellsAllFactsOfAVisit) {
    page(1, 0);
    page(2, 0);
    visit(1, 1, chromeTime(kStamp));
    visit(2, 2, chromeTime(kStamp + 5),
          ",from_visit,opener_visit,transition,segment_id,visit_duration,external_referrer_url,"
          "originator_cache_guid,originator_visit_id",
          ",1,1,-2013265919,4,1500000,'app://mail','device one',41");
    history().run("INSERT INTO visit_source VALUES(2,0);"
                  "INSERT INTO segments VALUES(4,'http://group/',2);"
                  "INSERT INTO content_annotations VALUES(2,'','tide tables','de');"
                  "INSERT INTO context_annotations VALUES(2,250000,404);"
                  "INSERT INTO clusters_and_visits VALUES(9,2,'http://page/2')");
    read();
    const auto visits = ofKind("Chrome Visit");
    ASSERT_EQ(visits.size(), 2U);
    const UrlRecord &record = *visits[1];
    EXPECT_EQ(record.Reference_ID, 2);
    EXPECT_EQ(record.Referrer, "http://page/1");
    EXPECT_EQ(record.Status, "typed, server redirect");
    EXPECT_TRUE(record.Typed);
    EXPECT_EQ(factOf(record, "source_table"), "visits");
    EXPECT_EQ(factOf(record, "source_rowid"), "2");
    EXPECT_EQ(factOf(record, "from_visit_id"), "1");
    EXPECT_EQ(factOf(record, "opener_visit_id"), "1");
    EXPECT_EQ(factOf(record, "transition"),
              "typed, from another program, server redirect [-2013265919]");
    EXPECT_EQ(factOf(record, "visit_duration"), "1.5 [1500000]");
    EXPECT_EQ(factOf(record, "visit_source"), "synced [0]");
    EXPECT_EQ(factOf(record, "external_referrer"), "app://mail");
    EXPECT_EQ(factOf(record, "device"), "device one");
    EXPECT_EQ(factOf(record, "device_visit_id"), "41");
    EXPECT_EQ(factOf(record, "segment"), "http://group/ [4]");
    EXPECT_EQ(factOf(record, "cluster"), "9");
    EXPECT_EQ(factOf(record, "page_language"), "de");
    EXPECT_EQ(factOf(record, "response_code"), "404");
    EXPECT_EQ(factOf(record, "foreground_duration"), "0.25 [250000]");
    EXPECT_EQ(factOf(record, "search_term"), "tide tables");
    EXPECT_EQ(factOf(*visits[0], "visit_source"), "browsed") << "a visit without a row there";
    EXPECT_EQ(factOf(*visits[0], "from_visit_id"), "-") << "0 is none";
    EXPECT_EQ(factOf(*visits[0], "visit_duration"), "-") << "0 is not measured";
}

TEST_F(ChromiumHistory, aPageHasTheFactsOfItsVisitAndItsColumnsStay) {
    page(1, 0);
    page(2, chromeTime(kStamp + 5));
    visit(1, 1, chromeTime(kStamp));
    visit(2, 2, chromeTime(kStamp + 5), ",from_visit,transition", ",1,1");
    history().run("UPDATE urls SET typed_count = 3 WHERE id = 2");
    read();
    const auto pages = ofKind("Chrome History");
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_EQ(pages[1]->Status, "URL");
    EXPECT_EQ(pages[1]->Referrer, "");
    EXPECT_FALSE(pages[1]->Typed);
    EXPECT_EQ(factOf(*pages[1], "from_url"), "http://page/1");
    EXPECT_EQ(factOf(*pages[1], "transition"), "typed [1]");
    EXPECT_EQ(factOf(*pages[1], "typed_count"), "3");
    EXPECT_EQ(factOf(*pages[1], "source_table"), "urls");
}

TEST_F(ChromiumHistory, classicRowsAreTheSameAmongTheOthers) {
    page(1, chromeTime(kStamp + 20));
    visit(1, 1, chromeTime(kStamp));
    visit(2, 1, chromeTime(kStamp + 20));
    const std::vector<UrlRecord> whole = read();
    reading.emplace();
    reading->classicOnly = true;
    reading->read(parseChromeHistoryFile, file());
    ASSERT_EQ(reading->records().size(), 1U);
    UrlRecord first = whole.at(0);
    EXPECT_FALSE(first.facts.empty());
    EXPECT_TRUE(reading->records()[0].facts.empty());
    const UrlRecord &classic = reading->records()[0];
    EXPECT_EQ(first.URL + first.Status + first.Action + first.cacheType + first.Referrer,
              classic.URL + classic.Status + classic.Action + classic.cacheType + classic.Referrer);
    EXPECT_EQ(first.ActionDateUTC, classic.ActionDateUTC);
    EXPECT_EQ(first.Visits, classic.Visits);
    EXPECT_EQ(reading->result.passedOver.size(), 1U);
}

TEST_F(ChromiumHistory, keepsVisitsOfPagesThatAreGone) {
    visit(1, 77, chromeTime(kStamp));
    visit(2, 78, chromeTime(kStamp + 1));
    history().run("INSERT INTO visits(id,url,visit_time) VALUES(3,'x',3)");
    history().run("INSERT INTO clusters_and_visits VALUES(1,1,'http://gone/');"
                  "INSERT INTO visited_links VALUES(1,78,'http://top/','http://top/',1);"
                  "INSERT INTO segments VALUES(2,'http://group/',78)");
    read();
    const auto visits = ofKind("Chrome Visit");
    ASSERT_EQ(visits.size(), 3U);
    EXPECT_EQ(visits[0]->URL, "http://gone/");
    EXPECT_EQ(factOf(*visits[0], "url_from"), "clusters_and_visits");
    EXPECT_EQ(factOf(*visits[0], "page_id"), "77");
    EXPECT_EQ(visits[1]->URL, "");
    EXPECT_EQ(factOf(*visits[1], "segment"), "http://group/ [2]");
    EXPECT_EQ(factOf(*visits[1], "linked_from"), "http://top/");
    EXPECT_EQ(factOf(*visits[2], "page_id"), "-");
    EXPECT_EQ(reading->result.noted.at("visits of pages that are no longer listed"), 3U);
}

TEST_F(ChromiumHistory, datesThatAreNoneAreNoted) {
    constexpr std::int64_t kYear10000 = 265046774400000000;
    page(1, kYear10000);
    page(2, 0);
    page(3, chromeTime(kStamp));
    visit(1, 1, kYear10000);
    visit(2, 3, INT64_MAX);
    visit(3, 3, 0);
    visit(4, 3, kYear10000 - 1);
    read();
    std::uint64_t noted = 0;
    for (const auto &[reason, count] : reading->result.noted)
        noted += reason.find("whose stored date is none") == std::string::npos ? 0 : count;
    EXPECT_EQ(noted, 3U) << "page 1, its visit, and visit 2";
    EXPECT_EQ(reading->result.state, ReadState::complete);
}

TEST_F(ChromiumHistory, countsLinksThatNoRowTellsOf) {
    page(1, chromeTime(kStamp));
    visit(2, 78, chromeTime(kStamp + 1));
    history().run("INSERT INTO visited_links VALUES(1,78,'http://top/','http://top/',1),"
                  "(2,1,'http://top/','http://top/',1),(3,90,'http://top/','http://top/',1),"
                  "(4,91,'http://top/','http://top/',1)");
    read();
    EXPECT_EQ(reading->result.passedOver,
              (std::map<std::string, std::uint64_t>{
                  {"rows of table visited_links: where a link to a page stood", 1},
                  {"rows of table visited_links: links to pages that are no longer listed and have "
                   "no visit",
                   2}}));
}

TEST_F(ChromiumHistory, anOddTableCostsItsOwnRowsAlone) {
    page(1, chromeTime(kStamp));
    history().run("DROP TABLE visits; CREATE TABLE visits(id INTEGER PRIMARY KEY,url,visit_time)"
                  "WITHOUT ROWID; INSERT INTO visits VALUES(1,1,5);"
                  "INSERT INTO keyword_search_terms VALUES(2,1,'a','a')");
    read();
    EXPECT_EQ(reading->result.state, ReadState::cutShort);
    EXPECT_NE(reading->result.reason.find("\"visits\""), std::string::npos);
    EXPECT_EQ(ofKind("Chrome History").size(), 1U);
    EXPECT_EQ(ofKind("Chrome Search Term").size(), 1U);
}

TEST_F(ChromiumHistory, stopsWhereverItIsCancelled) {
    page(1, chromeTime(kStamp + 5));
    visit(1, 1, chromeTime(kStamp));
    visit(2, 1, chromeTime(kStamp + 5));
    history().run("INSERT INTO keyword_search_terms VALUES(2,1,'a','a');"
                  "INSERT INTO downloads(id) VALUES(1);"
                  "INSERT INTO clusters_and_visits VALUES(1,1,'')");
    read();
    const std::size_t all = reading->records().size();
    EXPECT_EQ(all, 4U);
    std::size_t before = 0;
    for (int calls = 0;; ++calls) {
        test::CancelAfter cancel(calls);
        reading.emplace();
        reading->read(parseChromeHistoryFile, file(), cancel);
        EXPECT_GE(reading->records().size(), before);
        before = reading->records().size();
        EXPECT_TRUE(fs::is_empty(reading->scratch.path()));
        EXPECT_TRUE(reading->log.entries.empty());
        if (reading->result.state == ReadState::complete)
            break;
        ASSERT_EQ(reading->result.state, ReadState::cancelled);
        ASSERT_LT(calls, 100);
    }
    EXPECT_EQ(before, all);
}

TEST_F(ChromiumHistory, goesOnForwardInItsTask) {
    for (int i = 1; i <= 20; ++i) {
        page(i, chromeTime(kStamp + i));
        visit(i, i, chromeTime(kStamp - i));
    }
    read();
    EXPECT_TRUE(std::ranges::is_sorted(reading->task.fractions));
    EXPECT_LE(reading->task.fractions.back(), 1.0);
    ASSERT_EQ(reading->task.headings.size(), 1U);
}

TEST_F(ChromiumHistory, tellsOfVisitsThatDamageTook) {
    ChromeHistory made(file(), ChromeHistory::Version::schema70, 512);
    for (std::int64_t id = 1; id <= 30; ++id)
        made.add({.id = id,
                  .url = "http://page/" + std::to_string(id),
                  .lastVisitTime = chromeTime(kStamp + id),
                  .visitTimes = {chromeTime(kStamp - id), chromeTime(kStamp + id)}});
    made.close();
    const std::string sound = test::contentsOf(file().parent_path()).at(file().string());
    read();
    ASSERT_EQ(reading->records().size(), 60U);
    for (std::size_t page = 512; page < sound.size(); page += 512) {
        std::string damaged = sound;
        damaged.replace(page, 512, std::string(512, '\xFF'));
        writeWhole(file(), damaged);
        read();
        EXPECT_TRUE(reading->records().size() >= 60U || !reading->log.entries.empty()) << page;
        EXPECT_TRUE(reading->records().size() == 60U ||
                    reading->result.state != ReadState::complete)
            << page;
        EXPECT_LE(reading->records().size(), 60U) << page;
    }
}

TEST_F(ChromiumHistory, isNamedByItsSchemaWhereTheBrowsersVersionIsUnknown) {
    page(1, 0);
    history().close();
    const Evidence evidence("");
    ContentProbe content;
    HistoryFile described;
    described.fullPath = file();
    ReadContext context{
        described,     evidence,     content,      reading->clock, reading->scratch.path(),
        reading->sink, reading->log, reading->task};
    EXPECT_EQ(parseChromeHistoryFile(context).state, ReadState::complete);
    EXPECT_EQ(described.origin.browserVersion, "History 70");
    described.origin.browserVersion = "156.0";
    EXPECT_EQ(parseChromeHistoryFile(context).state, ReadState::complete);
    EXPECT_EQ(described.origin.browserVersion, "156.0");
}

} // namespace
} // namespace nv
