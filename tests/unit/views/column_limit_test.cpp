#include "support/TestProject.h"
#include "views/limits/ColumnLimit.h"
#include "views/limits/GatheredTexts.h"
#include "views/limits/ValueCounts.h"
#include "views/table/UrlTable.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

namespace nv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

struct ColumnLimitTest : testing::Test {
    ColumnLimitTest() {
        project.connection().exec(
            "INSERT INTO URLs (URL_ID, Host, Visits, WebPageTitle, CacheFileExists) VALUES "
            "(1, 'a.example', 3, 'Tide tables', 1), (2, 'b.example', 10, '\xC3\x9C"
            "berblick', 0), "
            "(3, 'a.example', NULL, NULL, 1), (4, '', 7, 'low tide', 0)");
    }
    RowIds kept(const ColumnLimit &limit) {
        RowIds ids{4, 3, 2, 1};
        EXPECT_EQ(keepByColumn(project.connection(), limit, task, ids), Walk::Finished);
        return ids;
    }
    test::TestProject project;
    Unwatched task;
};

TEST_F(ColumnLimitTest, keepsWholeValues) {
    EXPECT_THAT(kept({.column = UrlColumn::Host, .oneOf = {{"a.example"}}}), ElementsAre(3, 1));
    EXPECT_THAT(kept({.column = UrlColumn::Host, .oneOf = {{"b.example", ""}}}), ElementsAre(4, 2));
    EXPECT_THAT(kept({.column = UrlColumn::Host, .oneOf = {{"a"}}}), IsEmpty());
    EXPECT_THAT(kept({.column = UrlColumn::Host, .oneOf = std::vector<std::string>()}), IsEmpty());
    EXPECT_THAT(kept({.column = UrlColumn::FileExists, .oneOf = {{"Yes"}}}), ElementsAre(3, 1));
}

TEST_F(ColumnLimitTest, keepsPartsInEitherCaseOfAllAlphabets) {
    EXPECT_THAT(kept({.column = UrlColumn::WebpageTitle, .part = "TIDE"}), ElementsAre(4, 1));
    EXPECT_THAT(kept({.column = UrlColumn::WebpageTitle,
                      .part = "\xC3\xBC"
                              "ber"}),
                ElementsAre(2));
    EXPECT_THAT(kept({.column = UrlColumn::WebpageTitle, .part = "%"}), IsEmpty());
}

TEST_F(ColumnLimitTest, keepsTypesByTheWordsOfTheTable) {
    project.connection().exec(
        "UPDATE URLs SET CacheType = CASE URL_ID WHEN 1 THEN 'Chrome Cache' WHEN 2 THEN "
        "'chrome cache' WHEN 3 THEN 'Chrome History' END");
    ASSERT_EQ(valuesOf(UrlColumn::Type), ColumnValues::texts);
    CountedValues counted;
    EXPECT_EQ(countValues(project.connection(), {1, 2, 3}, UrlColumn::Type, 10, task, counted),
              Walk::Finished);
    EXPECT_THAT(counted.values, ElementsAre(Pair("CHROME CACHE", 2), Pair("CHROME HISTORY", 1)));
    EXPECT_THAT(kept({.column = UrlColumn::Type, .oneOf = {{"CHROME CACHE"}}}), ElementsAre(2, 1));
    EXPECT_THAT(kept({.column = UrlColumn::Type, .part = "history"}), ElementsAre(3));
    EXPECT_THAT(kept({.column = UrlColumn::Type, .oneOf = {{""}}}), ElementsAre(4));
}

TEST_F(ColumnLimitTest, keepsRowsThatAreRebuiltOrHaveANote) {
    project.connection().exec("UPDATE URLs SET CacheFileRebuilt = (URL_ID = 2), Notes = CASE "
                              "URL_ID WHEN 1 THEN 'seen' WHEN 3 THEN '' END");
    EXPECT_THAT(kept({.column = UrlColumn::Note, .oneOf = {{"Yes"}}}), ElementsAre(1));
    ASSERT_EQ(valuesOf(UrlColumn::Rebuilt), ColumnValues::texts);
    EXPECT_THAT(kept({.column = UrlColumn::Rebuilt, .oneOf = {{"No"}}}), ElementsAre(4, 3, 1));
}

TEST_F(ColumnLimitTest, keepsRangesOfNumbers) {
    EXPECT_THAT(kept({.column = UrlColumn::Visits, .from = 3, .to = 7}), ElementsAre(4, 1));
    EXPECT_THAT(kept({.column = UrlColumn::Visits, .from = 8}), ElementsAre(2));
    EXPECT_THAT(kept({.column = UrlColumn::Visits, .to = 9}), ElementsAre(4, 1))
        << "what isn't there is in no range";
}

TEST_F(ColumnLimitTest, keepsRangesOfDatesByTheZonesClock) {
    // The zone is five hours behind UTC: 00:00 of 2 March there is 05:00 UTC.
    project.connection().exec(
        "UPDATE URLs SET ActionDateUTC = 40604 + (5.0 - URL_ID) / 24 - 1.0 / 86400 * (URL_ID = 2), "
        "ExpiryDate = CASE URL_ID WHEN 1 THEN 0 WHEN 2 THEN 40604.5 WHEN 3 THEN 'soon' END");
    const auto range = [this](std::string_view from, std::string_view to) {
        const TimeSpan span{from.empty() ? kAllTime.begin : *secondTyped(from),
                            to.empty() ? kAllTime.end : *endTyped(to)};
        return dateRange(span, project.zone, true);
    };
    const auto rows = [&](UrlColumn column, const DateRange &dates) {
        ColumnLimit limit{.column = column};
        limit.dates = dates;
        return kept(limit);
    };
    EXPECT_EQ(valuesOf(UrlColumn::ActionDateUtc), ColumnValues::dates);
    EXPECT_EQ(valuesOf(UrlColumn::TimeRebuilt), ColumnValues::none);
    for (const UrlColumn column : {UrlColumn::ActionDateUtc, UrlColumn::LocalDate}) {
        EXPECT_THAT(rows(column, range("2011-03-02", "")), IsEmpty());
        EXPECT_THAT(rows(column, range("2011-03-01", "2011-03-01")), ElementsAre(4, 3, 2, 1));
        EXPECT_THAT(rows(column, range("2011-03-01 21:00", "2011-03-01 22:00")), ElementsAre(3, 2));
        EXPECT_THAT(rows(column, range("", "2011-03-01 20:59")), ElementsAre(4))
            << "a second before 22:00 isn't in it";
    }
    EXPECT_THAT(rows(UrlColumn::ExpiryDate, range("", "2099-12-31")), ElementsAre(2))
        << "0 is no date, nor is a text";
}

TEST_F(ColumnLimitTest, namesTypedDatesAsTheyWereTyped) {
    const TimeSpan span{*secondTyped("2011-03-01 19:30"), *endTyped("2011-03-02")};
    EXPECT_EQ(beginText(span), "2011-03-01 19:30");
    EXPECT_EQ(endText(span), "2011-03-02");
    EXPECT_EQ(endText({0, *endTyped("2011-03-02 05:09")}), "2011-03-02 05:09");
    EXPECT_EQ(beginText(kAllTime), "");
    EXPECT_EQ(endText(kAllTime), "");
    EXPECT_FALSE(secondTyped("yesterday"));
    EXPECT_FALSE(endTyped("2011-02-30"));
}

TEST_F(ColumnLimitTest, countsWhatStandsThere) {
    CountedValues counted;
    EXPECT_EQ(countValues(project.connection(), {4, 2, 3, 1}, UrlColumn::Host, 10, task, counted),
              Walk::Finished);
    EXPECT_THAT(counted.values,
                ElementsAre(Pair("a.example", 2), Pair("", 1), Pair("b.example", 1)));
    EXPECT_FALSE(counted.isCut);
    counted = {};
    EXPECT_EQ(countValues(project.connection(), {2, 1}, UrlColumn::Host, 1, task, counted),
              Walk::Finished);
    EXPECT_THAT(counted.values, ElementsAre(Pair("a.example", 1)));
    EXPECT_TRUE(counted.isCut);
}

TEST_F(ColumnLimitTest, tellsWhatTheFirstRowsCameTo) {
    project.connection().exec(
        "DELETE FROM URLs; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i "
        "< 45000) INSERT INTO URLs (URL_ID, WebPageTitle) SELECT i, CASE WHEN i <= 15000 THEN "
        "'early' ELSE 'late' END FROM n");
    RowIds ids;
    EXPECT_EQ(collectIds(project.connection(), {"SELECT URL_ID FROM URLs ORDER BY URL_ID DESC", ""},
                         task, ids),
              Walk::Finished);
    std::vector<std::size_t> rows;
    std::vector<CountedValues> told;
    CountedValues counted;
    EXPECT_EQ(countValues(project.connection(), ids, UrlColumn::WebpageTitle, 10, task, counted,
                          [&](const CountedValues &first, std::size_t number) {
                              told.push_back(first);
                              rows.push_back(number);
                          }),
              Walk::Finished);
    EXPECT_THAT(rows, ElementsAre(10'000U, 20'000U, 40'000U));
    ASSERT_EQ(told.size(), 3U);
    EXPECT_THAT(told[0].values, ElementsAre(Pair("early", 10'000)));
    EXPECT_THAT(told[1].values, ElementsAre(Pair("early", 15'000), Pair("late", 5'000)));
    EXPECT_THAT(told[2].values, ElementsAre(Pair("late", 25'000), Pair("early", 15'000)));
    EXPECT_THAT(counted.values, ElementsAre(Pair("late", 30'000), Pair("early", 15'000)));
}

/// The columns of the table that have values of their own in each row.
std::vector<UrlColumn> storedColumns() {
    std::vector<UrlColumn> columns;
    for (const UrlColumnFacts &facts : kUrlColumns)
        if (valuesOf(facts.column) != ColumnValues::none && !isGathered(facts.column))
            columns.push_back(facts.column);
    return columns;
}

/// Most rows are told by one statement, few are looked up one by one.
TEST_F(ColumnLimitTest, manyRowsAndFewTellTheSame) {
    constexpr std::int32_t kRows = 200;
    constexpr std::int32_t kFew = 20;
    std::mt19937 random(5);
    project.connection().exec("DELETE FROM URLs");
    SQLite::Statement columns(project.connection(), "SELECT name FROM pragma_table_info('URLs') "
                                                    "WHERE pk = 0 AND name NOT LIKE '%ID'");
    std::vector<std::string> names;
    while (columns.executeStep())
        names.push_back(columns.getColumn(0).getString());
    const char *const values[] = {"NULL", "'a'", "'A'",    "''",        "'1'",
                                  "0",    "7",   "-2.125", "40123.625", "X'C3A900'"};
    for (std::int32_t id = 1; id <= kRows; ++id) {
        project.connection().exec(fmt::format("INSERT INTO URLs (URL_ID) VALUES ({})", id));
        for (const std::string &name : names)
            project.connection().exec(fmt::format("UPDATE OR IGNORE URLs SET [{}] = {} WHERE "
                                                  "URL_ID = {}",
                                                  name, values[random() % std::size(values)], id));
    }
    RowIds all(kRows);
    std::ranges::generate(all, [id = 0]() mutable { return ++id; });
    for (const UrlColumn column : storedColumns()) {
        const ColumnLimit limit{.column = column, .part = "a"};
        CountedValues many;
        EXPECT_EQ(countValues(project.connection(), all, column, kRows, task, many),
                  Walk::Finished);
        RowIds ofMany = all;
        EXPECT_EQ(keepByColumn(project.connection(), limit, task, ofMany), Walk::Finished);
        std::map<std::string, std::int64_t> few;
        RowIds ofFew;
        for (auto first = all.begin(); first != all.end(); first += kFew) {
            RowIds some(first, first + kFew);
            CountedValues counted;
            EXPECT_EQ(countValues(project.connection(), some, column, kRows, task, counted),
                      Walk::Finished);
            for (const auto &[value, rows] : counted.values)
                few[value] += rows;
            EXPECT_EQ(keepByColumn(project.connection(), limit, task, some), Walk::Finished);
            ofFew.insert(ofFew.end(), some.begin(), some.end());
        }
        EXPECT_THAT(many.values, ::testing::UnorderedElementsAreArray(few)) << factsOf(column).key;
        EXPECT_EQ(ofMany, ofFew) << factsOf(column).key;
    }
}

TEST(ValueCounts, countsAsManyValuesAsItHolds) {
    constexpr std::int64_t kMost = 200'000;
    ValueCounts counts;
    for (std::int64_t round = 0; round < 3; ++round)
        for (std::int64_t value = 0; value < kMost; ++value)
            if (value % 3 <= round)
                counts.add(fmt::format("value {}", value));
    EXPECT_FALSE(counts.isCut());
    const CountedValues all = counts.most(kMost);
    ASSERT_EQ(all.values.size(), std::size_t{kMost});
    EXPECT_FALSE(all.isCut);
    EXPECT_THAT(all.values.front(), Pair("value 0", 3));
    EXPECT_THAT(all.values.back(), Pair("value 99998", 1));
    for (const auto &[value, rows] : all.values)
        ASSERT_EQ(rows, 3 - std::stol(value.substr(6)) % 3) << value;
    counts.add("one more");
    counts.add("value 1");
    EXPECT_TRUE(counts.isCut());
    const CountedValues some = counts.most(2);
    EXPECT_THAT(some.values, ElementsAre(Pair("value 0", 3), Pair("value 1", 3)));
    EXPECT_TRUE(some.isCut);
}

TEST_F(ColumnLimitTest, columnsThatAreMadeOfSeveralHaveNone) {
    EXPECT_EQ(valuesOf(UrlColumn::Icon), ColumnValues::none);
    EXPECT_EQ(valuesOf(UrlColumn::TimeRebuilt), ColumnValues::none);
    EXPECT_EQ(valuesOf(UrlColumn::Visits), ColumnValues::numbers);
    EXPECT_EQ(valuesOf(UrlColumn::Host), ColumnValues::texts);
}

TEST_F(ColumnLimitTest, aTableHidesTheOthers) {
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(project.connection(), project.log, zone);
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    table.byColumn = {{.column = UrlColumn::Host, .oneOf = {{"a.example"}}}};
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 2U);
    EXPECT_EQ(table.hiddenCount(), 2U);
    table.ofSearch = std::make_shared<const FoundIds>(FoundIds{1, 2});
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(1));
    table.byColumn.push_back({.column = UrlColumn::Visits, .from = 5});
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 0U);
    table.byColumn.erase(table.byColumn.begin());
    table.ofSearch = std::make_shared<const FoundIds>(FoundIds{1, 2, 4});
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), UnorderedElementsAre(2, 4)) << "without the first of two limits";
    table.ofSearch = std::make_shared<const FoundIds>(FoundIds{1, 2});
    table.byColumn.clear();
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 2U);
    table.byColumn = {{.column = UrlColumn::Visits, .from = 5}};
    table.ofSearch.reset();
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 2U);
}

} // namespace
} // namespace nv
