#include "MadeProject.h"
#include "time/ExactZone.h"
#include "views/rows/CellText.h"
#include "views/rows/RowCells.h"
#include "views/rows/RowPager.h"

namespace nv {
namespace {

struct RowCellsTest : testing::Test, test::MadeProject {
    RowCellsTest() { cells.dates.currentYear = 2011; }
    UrlRow row(std::int64_t id) {
        std::vector<UrlColumn> all;
        for (const UrlColumnFacts &facts : kUrlColumns)
            all.push_back(facts.column);
        return RowReader(db(), all).read(UrlId{id});
    }
    std::string text(std::int64_t id, UrlColumn column) { return cells.text(row(id), column); }
    template <class Value>
    Value machine(std::int64_t id, UrlColumn column) {
        return std::get<Value>(cells.machine(row(id), column));
    }
    RowCells cells{log, zone};
};

TEST_F(RowCellsTest, anEmptyRowHasEmptyCells) {
    const auto id = add({});
    for (const UrlColumnFacts &facts : kUrlColumns) {
        const std::string shown = text(id, facts.column);
        if (facts.column == UrlColumn::Id)
            EXPECT_EQ(shown, std::to_string(id));
        else if (facts.column == UrlColumn::Rebuilt || facts.column == UrlColumn::FileExists)
            EXPECT_EQ(shown, "No");
        else if (facts.column == UrlColumn::GzipEncoded)
            EXPECT_EQ(shown, "False");
        else
            EXPECT_TRUE(shown.empty() || shown == "0") << facts.key << " shows " << shown;
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(RowCellsTest, aRowThatHasGoneShowsItsKeyOnly) {
    EXPECT_EQ(text(77, UrlColumn::Id), "77");
    EXPECT_EQ(text(77, UrlColumn::Rebuilt), "");
    EXPECT_EQ(machine<std::int64_t>(77, UrlColumn::Id), 77);
}

TEST_F(RowCellsTest, anyOfThreeColumnsMakesARowRebuilt) {
    EXPECT_EQ(text(add({{"CacheFileRebuilt", std::int64_t{1}}}), UrlColumn::Rebuilt), "Yes");
    EXPECT_EQ(text(add({{"IngredientIDs", "3|4"}}), UrlColumn::Rebuilt), "Yes");
    EXPECT_EQ(text(add({{"CacheFileRebuiltBLOB", "x"}}), UrlColumn::Rebuilt), "Yes");
    EXPECT_EQ(text(add({{"CacheFileRebuiltBLOB", ""}, {"IngredientIDs", ""}}), UrlColumn::Rebuilt),
              "No");
}

TEST_F(RowCellsTest, historyCountsItsParentsAndOthersTheirChildren) {
    const auto page = add({{"CacheType", "IE Cache"}});
    const auto visit = add({{"IsHistory", std::int64_t{1}}});
    insert("LinkAnalysis", {{"Parent_ID", page}, {"Child_ID", visit}});
    insert("LinkAnalysis", {{"Parent_ID", page}, {"Child_ID", visit}});
    insert("LinkAnalysis", {{"Parent_ID", page}, {"Child_ID", page}});
    EXPECT_EQ(text(page, UrlColumn::Linked), "3");
    EXPECT_EQ(text(visit, UrlColumn::Linked), "2");
    EXPECT_EQ(text(add({}), UrlColumn::Linked), "") << "only numbers above 0";
}

TEST_F(RowCellsTest, theTimeOfARebuildHasItsMonthAsAWord) {
    const auto shown = [this](const char *stored) {
        return text(add({{"RebuiltDateTime", stored}}), UrlColumn::TimeRebuilt);
    };
    EXPECT_EQ(shown("03-06-2011 09:05:00"), "03-Jun-2011 09:05:00");
    EXPECT_EQ(shown("29-02-2012 23:59:59"), "29-Feb-2012 23:59:59");
    // What isn't in the form that rebuilding writes stands as it was written.
    for (const char *other : {"29-02-2011 23:59:59", "15-06-2011", "2011-06-15 12:00:00", "soon",
                              "15-06-2011 12:00:00 PM", "15-06-2011 25:00:00", ""})
        EXPECT_EQ(shown(other), other);
}

TEST_F(RowCellsTest, nullDatesAreEmptyInWhateverForm) {
    const auto id = add({{"ExpiryDate", 0.0}, {"RebuiltDateTime", "12:00:00AM"}});
    EXPECT_EQ(text(id, UrlColumn::ExpiryDate), "");
    EXPECT_EQ(text(id, UrlColumn::TimeRebuilt), "");
    const auto set = add({{"ExpiryDate", 40000.5}, {"RebuiltDateTime", "2011-06-15 12:00:00"}});
    EXPECT_EQ(text(set, UrlColumn::ExpiryDate), "2009-07-06 12:00:00");
    EXPECT_EQ(text(set, UrlColumn::TimeRebuilt), "2011-06-15 12:00:00");
    EXPECT_EQ(text(add({{"ExpiryDate", 1e18}}), UrlColumn::ExpiryDate), "");
}

TEST_F(RowCellsTest, theZoneMarkIsOfTheConvertedDateAndTheShiftOfTheUtcDate) {
    // Three hours into the Sunday of the change in UTC is the evening before it in the zone.
    const auto id = add({{"ActionDateUTC", test::daysOf({2011, 3, 13, 3, 0, 0})}});
    EXPECT_EQ(text(id, UrlColumn::ActionDateLocal), "2011-03-12 23:00:00 STD");
    cells.dates.enableDSTChanges = false;
    EXPECT_EQ(text(id, UrlColumn::ActionDateLocal), "2011-03-12 22:00:00 STD");
    EXPECT_EQ(machine<std::string>(id, UrlColumn::ActionDateLocal), "2011-03-12T22:00:00-05:00");
}

TEST_F(RowCellsTest, theZoneCellComesFromTheUtcDateAndNotFromTheStoredOne) {
    const auto id = add({{"ActionDateUTC", test::daysOf({2011, 1, 1, 12, 0, 0})},
                         {"ActionDateLocal", test::daysOf({1999, 1, 1, 0, 0, 0})}});
    EXPECT_EQ(text(id, UrlColumn::ActionDateLocal), "2011-01-01 07:00:00 STD");
    zone.tzBias = -330;
    EXPECT_EQ(text(id, UrlColumn::ActionDateLocal), "2011-01-01 17:30:00 STD");
    EXPECT_EQ(machine<std::string>(id, UrlColumn::ActionDateLocal), "2011-01-01T17:30:00+05:30");
}

TEST_F(RowCellsTest, tenYearsCountByTheYearOfTheZone) {
    const auto old = add({{"ActionDateUTC", test::daysOf({2001, 1, 1, 4, 0, 0})}});
    const auto kept = add({{"ActionDateUTC", test::daysOf({2001, 1, 1, 5, 0, 0})}});
    EXPECT_EQ(text(old, UrlColumn::ActionDateLocal), "") << "still 2000 in the zone";
    EXPECT_EQ(text(kept, UrlColumn::ActionDateLocal), "2001-01-01 00:00:00 STD");
    EXPECT_EQ(text(old, UrlColumn::ActionDateUtc), "2001-01-01 04:00:00");
    EXPECT_EQ(machine<std::string>(old, UrlColumn::ActionDateLocal), "2000-12-31T23:00:00-05:00")
        << "programs get every date";
}

TEST_F(RowCellsTest, aZoneThatCantBeAddedIsLoggedAndShowsNoDate) {
    const auto id = add({{"ActionDateUTC", test::daysOf({2011, 6, 15, 12, 0, 0})}});
    zone.tzBias = 32767;
    zone.tzDSTBias = 32767;
    EXPECT_EQ(text(id, UrlColumn::ActionDateLocal), "");
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].procedure, "MainForm.LoadURLs()");
}

TEST_F(RowCellsTest, anExactZoneShowsDatesOfAnyAgeByTheirLaw) {
    setExactZone(zone, ExactZones("/usr/share/zoneinfo").find("Europe/Berlin"),
                 Date::fromCivil({2011, 6, 15}));
    const auto recent = add({{"ActionDateUTC", test::daysOf({2011, 3, 14, 0, 17, 30})}});
    const auto old = add({{"ActionDateUTC", test::daysOf({1893, 3, 31, 23, 6, 31})}});
    for (const UrlColumn column : {UrlColumn::ActionDateLocal, UrlColumn::LocalDate}) {
        EXPECT_EQ(text(recent, column), "2011-03-14 01:17:30 CET");
        EXPECT_EQ(text(old, column), "1893-03-31 23:59:59 LMT");
    }
    EXPECT_EQ(machine<std::string>(recent, UrlColumn::ActionDateLocal),
              "2011-03-14T01:17:30+01:00");
    EXPECT_EQ(machine<std::string>(old, UrlColumn::ActionDateLocal),
              "1893-03-31T23:59:59+00:53:28");
    EXPECT_EQ(headerText(UrlColumn::ActionDateLocal, zone), "Action Date Local\n[Europe/Berlin]");
}

TEST_F(RowCellsTest, numbersAndFlagsKeepTheirKind) {
    const auto id = add({{"DataBlockFileOffset", 4294967296.0},
                         {"MapFileOffset", 0.5},
                         {"Visits", std::int64_t{-1}},
                         {"Tagged", std::int64_t{1}},
                         {"GZipEncoded", std::int64_t{1}}});
    EXPECT_EQ(text(id, UrlColumn::DataBlockFileOffset), "4294967296");
    EXPECT_EQ(text(id, UrlColumn::MapFileOffset), "0.5");
    EXPECT_EQ(text(id, UrlColumn::Visits), "") << "the format has no counter";
    EXPECT_EQ(machine<std::int64_t>(id, UrlColumn::DataBlockFileOffset), 4294967296);
    EXPECT_TRUE(machine<bool>(id, UrlColumn::Tag));
    EXPECT_TRUE(machine<bool>(id, UrlColumn::GzipEncoded));
    EXPECT_TRUE(
        std::holds_alternative<std::monostate>(cells.machine(row(id), UrlColumn::ActionDateUtc)));
}

TEST_F(RowCellsTest, whatStandsAfterAZeroIsSeen) {
    const auto id = add({{"URL", std::string("visible\0hidden", 14)}});
    EXPECT_EQ(text(id, UrlColumn::Value), "visible\u2400hidden");
    EXPECT_EQ(machine<std::string>(id, UrlColumn::Value), std::string("visible\0hidden", 14));
}

TEST_F(RowCellsTest, iconsTakeTheCachedFilesExtensionWhenTheUrlHasNone) {
    EXPECT_EQ(RowCells::iconKeyOf(row(add({{"CacheFileExt", "PNG"}, {"URLFileExt", ""}}))), "png");
    EXPECT_EQ(RowCells::iconKeyOf(row(add({{"CacheFileExt", "png"}, {"URLFileExt", "js"}}))), "js");
}

TEST_F(RowCellsTest, iconsOfTodaysCachesTakeTheTypeOfTheAnswer) {
    EXPECT_EQ(
        RowCells::iconKeyOf(row(add(
            {{"CacheType", "CHROME CACHE"}, {"URLFileExt", "php"}, {"MIMEType", "image/png"}}))),
        "png");
}

struct RowPagerTest : RowCellsTest {
    RowPagerTest() {
        for (std::int32_t i = 1; i <= 5000; ++i)
            ids.push_back(i);
        db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) "
                  "INSERT INTO URLs(URL, Host) SELECT 'u' || i, 'h' || i FROM n");
        pager.setColumns(std::vector{UrlColumn::Value});
    }
    std::string url(std::size_t place) { return cells.text(*pager.row(place), UrlColumn::Value); }
    RowIds ids;
    RowPager pager{db(), log, ids};
};

TEST_F(RowPagerTest, readsAPageOnce) {
    for (std::size_t place = 0; place < RowPager::kPageRows; ++place)
        EXPECT_EQ(url(place), "u" + std::to_string(place + 1));
    EXPECT_EQ(pager.pagesRead(), 1u);
    EXPECT_EQ(url(4999), "u5000") << "the last page is shorter";
    EXPECT_EQ(pager.row(5000), nullptr);
    EXPECT_EQ(pager.pagesRead(), 2u);
}

TEST_F(RowPagerTest, letsTheLeastRecentlyUsedPageGo) {
    for (std::size_t page = 0; page <= RowPager::kPages; ++page) {
        url(0); // always the most wanted
        url(page * RowPager::kPageRows);
    }
    const std::size_t read = pager.pagesRead();
    url(0);
    EXPECT_EQ(pager.pagesRead(), read);
    EXPECT_EQ(pager.known(RowPager::kPageRows), nullptr);
    url(RowPager::kPageRows);
    EXPECT_EQ(pager.pagesRead(), read + 1);
}

TEST_F(RowPagerTest, aColumnThatNobodyShowedIsReadWhenAskedFor) {
    url(0);
    pager.setColumns(std::vector<UrlColumn>{});
    EXPECT_EQ(pager.pagesRead(), 1u);
    pager.need(UrlColumn::Host);
    EXPECT_EQ(cells.text(*pager.row(0), UrlColumn::Host), "h1");
    EXPECT_EQ(url(0), "u1");
    EXPECT_EQ(pager.pagesRead(), 2u);
}

TEST_F(RowPagerTest, aPageThatCantBeReadIsLoggedOnceAndHasItsKeys) {
    db().exec("ALTER TABLE URLs RENAME TO Elsewhere");
    EXPECT_EQ(url(0), "");
    EXPECT_EQ(cells.text(*pager.row(1), UrlColumn::Id), "2");
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
}

} // namespace
} // namespace nv
