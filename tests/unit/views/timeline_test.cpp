#include "platform/posix/ChartFile.h"
#include "time/ExactZone.h"
#include "unit/views/MadeProject.h"
#include "views/timeline/MidOfEvents.h"
#include "views/timeline/TimelineChart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::int64_t secondsOf(const CivilTime &civil) {
    return Date::fromCivil(civil).unixSeconds();
}

/// In UTC+1 and, in summer, UTC+2.
struct TimelineTest : testing::Test {
    TimelineTest() {
        setExactZone(project.zone, ExactZones("/usr/share/zoneinfo").find("Europe/Berlin"),
                     Date::fromCivil({2011, 6, 15, 12, 0, 0}));
    }
    void add(const CivilTime &utc, const char *type = "Chrome History",
             const char *browser = "Edge") {
        ids.push_back(
            static_cast<std::int32_t>(project.add({{"ActionDateUTC", Date::fromCivil(utc).days()},
                                                   {"CacheType", std::string(type)},
                                                   {"Browser", std::string(browser)}})));
    }
    TimedEvents events(TimeStack stack = TimeStack::none) {
        TimedEvents loaded;
        EXPECT_EQ(loadEvents(project.db(), ids, stack, project.zone, true, task, loaded),
                  Walk::Finished);
        return loaded;
    }
    static std::vector<std::string> textsOf(const std::vector<TimeSlot> &slots, TimeUnit unit) {
        std::vector<std::string> texts;
        for (const TimeSlot &slot : slots)
            texts.push_back(slotText(slot.slot, unit) + ": " + std::to_string(slot.total));
        return texts;
    }

    test::MadeProject project;
    test::MemoryTask task;
    RowIds ids;
};

TEST_F(TimelineTest, countsByTheZonesClock) {
    add({2011, 3, 26, 23, 30, 0}); // 00:30 on the next day
    add({2011, 3, 27, 0, 30, 0});  // 01:30
    add({2011, 3, 27, 1, 0, 0});   // 03:00, since 02:00 to 03:00 isn't there
    add({2011, 12, 31, 23, 0, 0}); // in the next year
    const TimedEvents loaded = events();
    const TimeSpan all = wholeSpan(loaded);
    EXPECT_THAT(textsOf(slotsOf(loaded, TimeUnit::hour, all), TimeUnit::hour),
                ElementsAre("2011-03-27 00:00: 1", "2011-03-27 01:00: 1", "2011-03-27 03:00: 1",
                            "2012-01-01 00:00: 1"));
    EXPECT_THAT(textsOf(slotsOf(loaded, TimeUnit::year, all), TimeUnit::year),
                ElementsAre("2011: 3", "2012: 1"));
    EXPECT_THAT(
        textsOf(slotsOf(loaded, TimeUnit::day, {secondsOf({2011, 3, 27, 1, 0, 0}), all.end - 1}),
                TimeUnit::day),
        ElementsAre("2011-03-27: 2"));
}

TEST_F(TimelineTest, anHourThatComesTwiceIsOne) {
    add({2011, 10, 30, 0, 30, 0});
    add({2011, 10, 30, 1, 30, 0});
    const TimedEvents loaded = events();
    EXPECT_THAT(textsOf(slotsOf(loaded, TimeUnit::hour, wholeSpan(loaded)), TimeUnit::hour),
                ElementsAre("2011-10-30 02:00: 2"));
}

TEST(EventSeconds, areWhatWasPutInWheneverThatWas) {
    const std::vector<std::int64_t> all = {0,
                                           -1,
                                           1262304000,
                                           4294967294,
                                           4294967295,
                                           4294967296,
                                           -11644473600,
                                           1262304001,
                                           9999999999,
                                           std::numeric_limits<std::int64_t>::max(),
                                           std::numeric_limits<std::int64_t>::min(),
                                           5};
    EventSeconds seconds;
    EXPECT_TRUE(seconds.empty());
    for (const std::int64_t second : all)
        seconds.push_back(second);
    ASSERT_EQ(seconds.size(), all.size());
    for (std::size_t at = 0; at < all.size(); ++at)
        EXPECT_EQ(seconds[at], all[at]) << at;
}

TEST_F(TimelineTest, rowsWithoutADateAreCountedApart) {
    add({2011, 3, 27, 0, 30, 0});
    for (const test::MadeProject::Value &value :
         {test::MadeProject::Value(nullptr), test::MadeProject::Value(std::string("soon")),
          test::MadeProject::Value(1e300)})
        ids.push_back(static_cast<std::int32_t>(project.add({{"ActionDateUTC", value}})));
    add({9999, 12, 31, 23, 30, 0}); // which the zone's clock doesn't reach
    ids.push_back(4000);            // no row
    const TimedEvents loaded = events();
    EXPECT_EQ(loaded.seconds.size(), 1U);
    EXPECT_EQ(loaded.undated, 4U);
    EXPECT_TRUE(loaded.unread.empty());
}

TEST_F(TimelineTest, dividesByKindAndBrowser) {
    add({2011, 3, 1, 12, 0, 0});
    add({2011, 3, 1, 12, 0, 0}, "Chrome Cache", "Edge");
    add({2011, 3, 2, 12, 0, 0}, "Chrome History", "");
    add({2011, 3, 2, 12, 0, 0}, "no such type", "");
    const TimedEvents kinds = events(TimeStack::kind);
    EXPECT_THAT(kinds.parts, ElementsAre("History", "Cache", "Other"));
    const auto slots = slotsOf(kinds, TimeUnit::day, wholeSpan(kinds));
    ASSERT_EQ(slots.size(), 2U);
    EXPECT_THAT(slots[0].counts, ElementsAre(1, 1, 0));
    EXPECT_THAT(slots[1].counts, ElementsAre(1, 0, 1));
    EXPECT_THAT(events(TimeStack::browser).parts, ElementsAre("Edge", "Chrome", "Unknown"));
}

/// Whoever made a case of it was no browser.
TEST_F(TimelineTest, aProgramThatRecoveredRowsIsNoBrowser) {
    add({2011, 3, 1, 12, 0, 0}, "NetAnalysis", "");
    EXPECT_THAT(events(TimeStack::browser).parts, ElementsAre("Unknown"));
}

TEST_F(TimelineTest, partsWithMostEventsStandFirst) {
    add({2011, 3, 1, 12, 0, 0}, "Opera Cookies", "b");
    for (int day = 1; day <= 3; ++day)
        add({2011, 3, day, 12, 0, 0}, "Chrome Cache", "c");
    add({2011, 3, 5, 12, 0, 0}, "Chrome History", "a");
    const TimedEvents loaded = events(TimeStack::kind);
    EXPECT_THAT(loaded.parts, ElementsAre("Cache", "Cookies", "History"));
    const auto slots = slotsOf(loaded, TimeUnit::day, wholeSpan(loaded));
    ASSERT_EQ(slots.size(), 4U);
    EXPECT_THAT(slots[0].counts, ElementsAre(1, 1, 0));
    EXPECT_THAT(slots[3].counts, ElementsAre(0, 0, 1));
    EXPECT_THAT(events(TimeStack::browser).parts, ElementsAre("c", "a", "b"));
}

/// What events side by side have in common isn't worked out for each of them.
TEST_F(TimelineTest, barsHoldWhatLiesInThem) {
    for (const CivilTime &time :
         {CivilTime{1969, 12, 31, 22, 59, 59}, CivilTime{1969, 12, 31, 23, 0, 0},
          CivilTime{1969, 12, 31, 23, 59, 59}, CivilTime{1970, 1, 1, 0, 0, 0},
          CivilTime{2011, 3, 27, 0, 59, 59}, CivilTime{2011, 3, 27, 1, 0, 0},
          CivilTime{2011, 10, 30, 0, 59, 59}, CivilTime{2011, 10, 30, 1, 0, 0},
          CivilTime{2011, 10, 30, 0, 0, 0}, CivilTime{1969, 12, 31, 22, 59, 58}})
        add(time);
    const TimedEvents loaded = events();
    const TimeSpan whole = wholeSpan(loaded);
    for (const TimeUnit unit :
         {TimeUnit::year, TimeUnit::month, TimeUnit::day, TimeUnit::hour, TimeUnit::minute}) {
        const TimeBars bars = barsOf(loaded, unit, whole, 1'000'000);
        std::vector<std::uint32_t> wanted(bars.count);
        std::vector<DayHours> hours(unit <= TimeUnit::day ? bars.count : 0);
        for (std::size_t at = 0; at < loaded.seconds.size(); ++at) {
            const auto bar = static_cast<std::size_t>(
                (slotOf(loaded.seconds[at], unit) - bars.first) / bars.step);
            ++wanted.at(bar);
            if (!hours.empty())
                ++hours[bar].at(static_cast<std::size_t>(hourOf(loaded.seconds[at])));
        }
        EXPECT_EQ(bars.counts, wanted) << static_cast<int>(unit);
        EXPECT_EQ(bars.hours, hours) << static_cast<int>(unit);
    }
}

TEST_F(TimelineTest, manyBrowsersShareTheLastPart) {
    for (int number = 0; number < 200; ++number)
        add({2011, 3, 1, 12, 0, 0}, "Chrome History", ("b" + std::to_string(number)).c_str());
    const TimedEvents loaded = events(TimeStack::browser);
    EXPECT_EQ(loaded.parts.size(), 64U);
    EXPECT_EQ(loaded.parts.back(), "Other");
    EXPECT_EQ(slotsOf(loaded, TimeUnit::day, wholeSpan(loaded))[0].counts.back(), 137U);
}

TEST_F(TimelineTest, aProjectOfAnEarlierBuildHasNoBrowsers) {
    project.db().exec("PRAGMA legacy_alter_table = ON; ALTER TABLE URLs DROP COLUMN Browser");
    ids.push_back(static_cast<std::int32_t>(
        project.add({{"ActionDateUTC", 40000.0}, {"CacheType", std::string("Opera Cache")}})));
    EXPECT_THAT(events(TimeStack::browser).parts, ElementsAre("Opera"));
}

TEST_F(TimelineTest, marksDaysWithoutEvents) {
    add({2011, 3, 1, 12, 0, 0});
    add({2011, 3, 2, 12, 0, 0});
    add({2011, 3, 4, 12, 0, 0});
    add({2011, 3, 8, 12, 0, 0});
    const TimedEvents loaded = events();
    const std::int64_t first = slotOf(loaded.seconds[0], TimeUnit::day);
    EXPECT_THAT(gapsOf(loaded, wholeSpan(loaded), 1),
                ElementsAre(DayGap{first + 2, first + 2}, DayGap{first + 4, first + 6}));
    EXPECT_THAT(gapsOf(loaded, wholeSpan(loaded), 2), ElementsAre(DayGap{first + 4, first + 6}));
    const auto seen = [&](std::int64_t from, std::int64_t to) {
        return TimeSpan{startOf(first + from, TimeUnit::day), startOf(first + to, TimeUnit::day)};
    };
    EXPECT_THAT(gapsOf(loaded, seen(4, 6), 1), ElementsAre(DayGap{first + 4, first + 5}))
        << "also where nothing else is in sight";
    EXPECT_THAT(gapsOf(loaded, seen(2, 6), 1),
                ElementsAre(DayGap{first + 2, first + 2}, DayGap{first + 4, first + 5}));
    const std::int64_t afternoon = startOf(first + 3, TimeUnit::day) + 13 * 3600;
    EXPECT_THAT(gapsOf(loaded, {afternoon, startOf(first + 5, TimeUnit::day)}, 1),
                ElementsAre(DayGap{first + 4, first + 4}))
        << "the day's event lies before";
    EXPECT_THAT(gapsOf(loaded, seen(-5, -2), 1), IsEmpty());
    EXPECT_THAT(gapsOf(loaded, seen(20, 30), 1), IsEmpty());
    const TimeBars days = barsOf(loaded, TimeUnit::day, wholeSpan(loaded), 100);
    EXPECT_THAT(chartOf(loaded, days, 10).gaps,
                ElementsAre(TimeChart::Gap{2, 2}, TimeChart::Gap{4, 6}));
    const TimeBars hours = barsOf(loaded, TimeUnit::hour, wholeSpan(loaded), 1000);
    EXPECT_EQ(chartOf(loaded, hours, 10).gaps[0], (TimeChart::Gap{35, 58}));
    const TimeBars pairs = barsOf(loaded, TimeUnit::day, wholeSpan(loaded), 4);
    EXPECT_THAT(chartOf(loaded, pairs, 10).gaps, ElementsAre(TimeChart::Gap{2, 2}));
    const TimeSpan withinGap{startOf(first + 4, TimeUnit::day) + 6 * 3600,
                             startOf(first + 6, TimeUnit::day) + 11 * 3600};
    for (const std::size_t most : {1000U, 20U}) { // of an hour, and of three
        const TimeBars empty = barsOf(loaded, TimeUnit::hour, withinGap, most);
        EXPECT_THAT(chartOf(loaded, empty, 10).gaps,
                    ElementsAre(TimeChart::Gap{0, empty.count - 1}));
    }
}

TEST_F(TimelineTest, theMidOfASpanIsWhereItsEventsAre) {
    add({2011, 3, 1, 12, 0, 0});
    for (int event = 0; event < 5; ++event)
        add({2011, 3, 30, 20, 0, event});
    const TimedEvents loaded = events();
    const TimeSpan march{startOf(slotOf(loaded.seconds[0], TimeUnit::month), TimeUnit::month),
                         startOf(slotOf(loaded.seconds[0], TimeUnit::month) + 1, TimeUnit::month)};
    EXPECT_EQ(slotText(slotOf(midOf(loaded, march), TimeUnit::day), TimeUnit::day), "2011-03-30");
    EXPECT_EQ(midOf(loaded, {100, 200}), 150);
}

TEST_F(TimelineTest, barsAreNoMoreThanThereIsRoomFor) {
    for (int day = 1; day <= 31; ++day)
        add({2011, 3, day, 12, 0, 0});
    const TimedEvents loaded = events();
    const TimeSpan all = wholeSpan(loaded);
    const TimeBars days = barsOf(loaded, TimeUnit::day, all, 1000);
    EXPECT_EQ(days.count, 31U);
    EXPECT_EQ(days.hours[0][13], 1U); // of the zone's clock
    EXPECT_EQ(days.spanOf(1, 3),
              (TimeSpan{secondsOf({2011, 3, 2, 0, 0, 0}), secondsOf({2011, 3, 4, 0, 0, 0})}));
    const TimeBars few = barsOf(loaded, TimeUnit::day, all, 10);
    EXPECT_EQ(few.step, 4);
    EXPECT_EQ(few.count, 8U);
    EXPECT_EQ(few.totalOf(0), 4U);
    EXPECT_EQ(few.totalOf(7), 3U);
    EXPECT_EQ(few.highest(), 4U);
    EXPECT_EQ(barText(few), "one bar is 4 days");
    EXPECT_EQ(barsOf(loaded, TimeUnit::day, {}, 10).count, 0U);
    EXPECT_EQ(chartOf(loaded, barsOf(loaded, TimeUnit::day, {}, 10), 10).bars, 0U);
    EXPECT_EQ(barsOf(loaded, TimeUnit::minute, all, 10).count, 10U);
}

TEST_F(TimelineTest, aSpanOfAllYearsIsDrawn) {
    add({100, 1, 2, 0, 0, 0});
    add({9998, 1, 1, 0, 0, 0});
    const TimedEvents loaded = events();
    for (const TimeUnit unit :
         {TimeUnit::year, TimeUnit::month, TimeUnit::day, TimeUnit::hour, TimeUnit::minute}) {
        const TimeBars bars = barsOf(loaded, unit, wholeSpan(loaded), 500);
        EXPECT_LE(bars.count, 500U);
        EXPECT_EQ(bars.totalOf(0), 1U);
        EXPECT_EQ(bars.totalOf(bars.count - 1), 1U);
        EXPECT_LE(chartOf(loaded, bars, 10).labels.size(), 10U);
    }
}

TEST_F(TimelineTest, unitsFitTheirSpan) {
    const auto unitOf = [](std::int64_t seconds) { return unitFor({0, seconds}, 24); };
    EXPECT_EQ(unitOf(60), TimeUnit::minute);
    EXPECT_EQ(unitOf(86400), TimeUnit::hour);
    EXPECT_EQ(unitOf(86400 * 30), TimeUnit::day);
    EXPECT_EQ(unitOf(std::int64_t{86400} * 366 * 3), TimeUnit::month);
    EXPECT_EQ(unitOf(std::int64_t{86400} * 366 * 30), TimeUnit::year);
    EXPECT_EQ(unitFor({}, 24), TimeUnit::minute);
}

TEST_F(TimelineTest, chartsBeginWithTheLargestPartAndHaveRoundLabels) {
    add({2011, 3, 1, 12, 0, 0}, "Chrome Cache");
    for (int day = 1; day <= 3; ++day)
        add({2011, 3, day, 20, 0, 0});
    const TimedEvents loaded = events(TimeStack::kind);
    TimeChart chart = chartOf(loaded, barsOf(loaded, TimeUnit::day, wholeSpan(loaded), 100), 10);
    EXPECT_THAT(chart.parts, ElementsAre("History", "Cache"));
    EXPECT_THAT(chart.counts, ElementsAre(1, 1, 1, 0, 1, 0));
    EXPECT_THAT(chart.labels,
                ElementsAre(TimeChart::Label{0, "2011-03-01"}, TimeChart::Label{1, "2011-03-02"},
                            TimeChart::Label{2, "2011-03-03"}));
    chart = chartOf(loaded, barsOf(loaded, TimeUnit::hour, wholeSpan(loaded), 100), 10);
    EXPECT_THAT(chart.labels[0].text, "2011-03-01 13:00");
    EXPECT_THAT(chart.labels[1].text, "18:00");
    EXPECT_THAT(chart.hours, IsEmpty());
}

TEST_F(TimelineTest, aPartHasOneColourWhateverElseIsShown) {
    const auto colorOf = [this](std::string_view part) {
        const TimedEvents loaded = events(TimeStack::kind);
        const TimeChart chart =
            chartOf(loaded, barsOf(loaded, TimeUnit::day, wholeSpan(loaded), 100), 10);
        const auto found = std::ranges::find(chart.parts, part);
        return chart.colorOf(static_cast<std::size_t>(found - chart.parts.begin()));
    };
    add({2011, 3, 1, 12, 0, 0}, "Chrome Cache");
    const std::size_t cache = colorOf("Cache");
    add({2011, 3, 1, 12, 0, 0}, "Chrome History");
    add({2011, 3, 2, 12, 0, 0}, "Chrome History");
    EXPECT_EQ(colorOf("Cache"), cache);
    EXPECT_NE(colorOf("History"), cache);
    EXPECT_EQ(colorPlaceOf("Google Chrome"), colorPlaceOf("Chrome"));
    EXPECT_NE(colorPlaceOf("Edge"), colorPlaceOf("Chrome"));
    EXPECT_EQ(colorPlaceOf("Unknown"), colorPlaceOf("Other"));
    EXPECT_LT(colorPlaceOf("\xFF no such browser"), 8U);
}

TEST_F(TimelineTest, cancelledKeepsWhatWasRead) {
    for (int day = 1; day <= 9; ++day)
        add({2011, 3, day, 12, 0, 0});
    test::CancelAfter cancel(3);
    TimedEvents loaded;
    EXPECT_EQ(loadEvents(project.db(), ids, TimeStack::none, project.zone, true, cancel, loaded),
              Walk::Cancelled);
    EXPECT_EQ(loaded.seconds.size(), 3U);
}

TEST(ChartFile, bringsAChartAcross) {
    const TimeChart chart{"T",      {"one \xC3\xA4"}, {"a", "b"}, 2, {1, 2, 3, 4}, {{1, "label"}},
                          {{0, 1}}, {{1}, {2}},       {3, 1}};
    const auto read = chartOf(textOf(chart));
    ASSERT_TRUE(read);
    EXPECT_EQ(textOf(*read), textOf(chart));
    EXPECT_THAT(read->counts, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(read->colors, ElementsAre(3, 1));
}

TEST(ChartFile, refusesWhatDoesNotFit) {
    for (const char *text :
         {"", "[]", "{}", R"({"bars":1})", R"({"bars":1,"parts":["a"],"counts":[]})",
          R"({"bars":1,"parts":["a"],"counts":[1],"labels":[[1,"x"]]})",
          R"({"bars":1,"parts":["a"],"counts":[1],"gaps":[[0,1]]})",
          R"({"bars":1,"parts":["a"],"counts":[1],"colors":[0,1]})",
          R"({"bars":1,"parts":["a"],"counts":[1],"hours":[[],[]]})",
          R"({"bars":4294967295,"parts":[],"counts":[]})",
          R"({"bars":-1,"parts":["a"],"counts":[1]})",
          R"({"bars":"x","parts":["a"],"counts":[1]})"})
        EXPECT_FALSE(chartOf(text)) << text;
    EXPECT_TRUE(chartOf(R"({"bars":1,"parts":["a"],"counts":[7],"title":3,"lines":[1]})"));
}

} // namespace
} // namespace nv
