#include "time/ExactZone.h"
#include "time/LocalSeconds.h"
#include "unit/views/MadeProject.h"
#include "views/table/UrlTable.h"
#include "views/timeline/TimeLimit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::ElementsAre;

std::int64_t secondsOf(const CivilTime &civil) {
    return Date::fromCivil(civil).unixSeconds();
}

struct TimeLimitTest : testing::Test {
    TimeLimitTest() {
        setExactZone(project.zone, ExactZones("/usr/share/zoneinfo").find("Europe/Berlin"),
                     Date::fromCivil({2011, 6, 15, 12, 0, 0}));
    }
    /// The limit's first moments, in UTC.
    std::string textOf(const CivilTime &from, const CivilTime &to) {
        const TimeLimit limit = limitOf({secondsOf(from), secondsOf(to)}, project.zone, true);
        return isoUtc(limit.from) + " " + isoUtc(limit.to);
    }
    std::int32_t add(const CivilTime &utc) {
        return static_cast<std::int32_t>(
            project.add({{"ActionDateUTC", Date::fromCivil(utc).days()}}));
    }

    test::MadeProject project;
    test::MemoryTask task;
};

TEST_F(TimeLimitTest, beginsWhenTheZonesClockShowsIt) {
    EXPECT_EQ(textOf({2011, 1, 1, 0, 0, 0}, {2011, 7, 1, 0, 0, 0}),
              "2010-12-31T23:00:00Z 2011-06-30T22:00:00Z");
    // From 02:00 to 03:00 there is nothing on that day.
    EXPECT_EQ(textOf({2011, 3, 27, 2, 0, 0}, {2011, 3, 27, 3, 0, 0}),
              "2011-03-27T01:00:00Z 2011-03-27T01:00:00Z");
    // The hour that comes twice is taken whole.
    EXPECT_EQ(textOf({2011, 10, 30, 2, 0, 0}, {2011, 10, 30, 3, 0, 0}),
              "2011-10-30T00:00:00Z 2011-10-30T02:00:00Z");
}

TEST_F(TimeLimitTest, leavesTheRowsOfItsTime) {
    const std::int32_t before = add({2011, 2, 28, 22, 59, 59});
    const std::int32_t first = add({2011, 2, 28, 23, 0, 0});
    const std::int32_t last = add({2011, 3, 1, 22, 59, 59});
    const std::int32_t after = add({2011, 3, 1, 23, 0, 0});
    const auto undated = static_cast<std::int32_t>(project.add({{"ActionDateUTC", nullptr}}));
    const auto text =
        static_cast<std::int32_t>(project.add({{"ActionDateUTC", std::string("2011")}}));
    RowIds ids{text, after, last, undated, first, before};
    const TimeLimit limit = limitOf(
        {secondsOf({2011, 3, 1, 0, 0, 0}), secondsOf({2011, 3, 2, 0, 0, 0})}, project.zone, true);
    EXPECT_EQ(keepWithin(project.db(), limit, task, ids), Walk::Finished);
    EXPECT_THAT(ids, ElementsAre(last, first));
    const TimeLimit everything = limitOf(
        {secondsOf({100, 1, 1, 0, 0, 0}) - 86400, secondsOf({9999, 12, 31, 23, 59, 59}) + 86400},
        project.zone, true);
    ids = {before, undated};
    EXPECT_EQ(keepWithin(project.db(), everything, task, ids), Walk::Finished);
    EXPECT_THAT(ids, ElementsAre(before));
}

/// As the table shows it; whole seconds may be stored a microsecond early.
TEST_F(TimeLimitTest, aMomentIsOfTheSecondInWhichItLies) {
    const std::int64_t midnight = secondsOf({2023, 12, 31, 23, 0, 0}); // in UTC
    const auto put = [this](Date date) {
        return static_cast<std::int32_t>(project.add({{"ActionDateUTC", date.days()}}));
    };
    const std::int32_t half = put(Date::fromUnixMicroseconds(midnight * 1'000'000 - 400'000));
    const std::int32_t last = put(Date::fromUnixMicroseconds(midnight * 1'000'000 - 1));
    const std::int32_t early = put(Date::fromDays(Date::fromUnixSeconds(midnight).days() - 1e-11));
    RowIds ids{half, last, early};
    const TimeLimit year = limitOf(
        {secondsOf({2024, 1, 1, 0, 0, 0}), secondsOf({2025, 1, 1, 0, 0, 0})}, project.zone, true);
    EXPECT_EQ(keepWithin(project.db(), year, task, ids), Walk::Finished);
    EXPECT_THAT(ids, ElementsAre(early));
    EXPECT_FALSE(holds(year, Date::fromUnixMicroseconds(midnight * 1'000'000 - 1).days()));
}

TEST_F(TimeLimitTest, aTableHidesTheOthersAndKnowsThem) {
    add({2011, 2, 1, 12, 0, 0});
    const std::int32_t within = add({2011, 3, 1, 12, 0, 0});
    test::MemoryLog log;
    UrlTable table(project.db(), log, project.zone);
    table.time = limitOf({secondsOf({2011, 3, 1, 0, 0, 0}), secondsOf({2011, 3, 2, 0, 0, 0})},
                         project.zone, true);
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(within));
    EXPECT_EQ(table.hiddenCount(), 1U);
    EXPECT_EQ(table.idsOfAllTimes().size(), 2U);
    EXPECT_EQ(table.sortBy(UrlColumn::Id, SortDirection::Descending, task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(within));
    table.time.reset();
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.ids().size(), 2U);
    EXPECT_EQ(table.idsOfAllTimes().size(), 2U);
}

TEST_F(TimeLimitTest, aSearchNarrowsWithoutTheQuery) {
    const std::int32_t early = add({2011, 2, 1, 12, 0, 0});
    const std::int32_t within = add({2011, 3, 1, 12, 0, 0});
    const std::int32_t other = add({2011, 3, 1, 13, 0, 0});
    test::MemoryLog log;
    UrlTable table(project.db(), log, project.zone);
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.ids().size(), 3U);
    table.ofSearch = std::make_shared<const FoundIds>(FoundIds{early, within});
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(early, within));
    EXPECT_EQ(table.hiddenCount(), 1U);
    table.time = limitOf({secondsOf({2011, 3, 1, 0, 0, 0}), secondsOf({2011, 3, 2, 0, 0, 0})},
                         project.zone, true);
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(within));
    EXPECT_EQ(table.hiddenCount(), 2U);
    EXPECT_THAT(table.idsOfAllTimes(), ElementsAre(early, within));
    table.ofSearch.reset();
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(within, other));
    table.time.reset();
    EXPECT_EQ(table.narrow(task), LoadResult::Loaded);
    EXPECT_EQ(table.ids().size(), 3U);
    EXPECT_EQ(table.hiddenCount(), 0U);
    table.ofSearch = std::make_shared<const FoundIds>();
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.emptyState(), EmptyState::AllHidden);
    EXPECT_EQ(table.hiddenCount(), 3U);
}

} // namespace
} // namespace nv
