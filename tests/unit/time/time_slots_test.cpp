#include "time/ExactZone.h"
#include "time/LocalSeconds.h"
#include "time/TimeSlots.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace nv {
namespace {

constexpr std::array kUnits = {TimeUnit::year, TimeUnit::month, TimeUnit::day, TimeUnit::hour,
                               TimeUnit::minute};

std::int64_t secondsOf(const CivilTime &civil) {
    return Date::fromCivil(civil).unixSeconds();
}

TEST(TimeSlots, beginWhereTheCalendarDoes) {
    const std::int64_t second = secondsOf({2011, 3, 27, 19, 10, 30});
    const std::array texts = {"2011", "2011-03", "2011-03-27", "2011-03-27 19:00",
                              "2011-03-27 19:10"};
    for (std::size_t at = 0; at < kUnits.size(); ++at)
        EXPECT_EQ(slotText(slotOf(second, kUnits[at]), kUnits[at]), texts[at]);
    EXPECT_EQ(startOf(slotOf(second, TimeUnit::month), TimeUnit::month),
              secondsOf({2011, 3, 1, 0, 0, 0}));
    EXPECT_EQ(hourOf(second), 19);
}

TEST(TimeSlots, followEachOtherFromTheFirstToTheLastYear) {
    for (const int year : {100, 1600, 1900, 1969, 1970, 2000, 2024, 9999})
        for (const TimeUnit unit : kUnits)
            for (const CivilTime &civil :
                 {CivilTime{year, 1, 1, 0, 0, 0}, CivilTime{year, 2, 28, 23, 59, 59},
                  CivilTime{year, 12, 31, 23, 59, 59}}) {
                const std::int64_t second = secondsOf(civil);
                const std::int64_t slot = slotOf(second, unit);
                EXPECT_LE(startOf(slot, unit), second);
                EXPECT_GT(startOf(slot + 1, unit), second);
                EXPECT_EQ(slotOf(startOf(slot, unit), unit), slot);
                EXPECT_EQ(slotOf(startOf(slot + 1, unit) - 1, unit), slot);
            }
    EXPECT_EQ(
        slotText(slotOf(secondsOf({1969, 12, 31, 23, 59, 0}), TimeUnit::minute), TimeUnit::minute),
        "1969-12-31 23:59");
}

struct LocalSecondsTest : testing::Test {
    void expectSameAsEachByItself(const TimeZone &zone, std::int64_t from, std::int64_t to,
                                  std::int64_t step) {
        LocalSeconds clock(zone, true);
        LocalSeconds ofDays(zone, true);
        constexpr std::array kMicroseconds = {0, 20, 999'000, 999'960, 999'999};
        for (std::int64_t second = from; second < to; second += step) {
            const Date utc = Date::fromUnixSeconds(second);
            ASSERT_EQ(clock.of(utc), convertDateToZone(utc, zone, true).unixSeconds()) << second;
            const double part = kMicroseconds.at(static_cast<std::size_t>(second) % 5) / 1e6;
            const double days = utc.days() + part / kSecondsPerDay;
            ASSERT_EQ(ofDays.ofDays(days), clock.of(Date::fromDays(days))) << second << " " << part;
        }
    }
    TimeZone exact(const char *name) {
        TimeZone zone{Date::fromUnixSeconds(0)};
        setExactZone(zone, zones.find(name), Date::fromUnixSeconds(0));
        return zone;
    }
    ExactZones zones{"/usr/share/zoneinfo"};
};

TEST_F(LocalSecondsTest, areThoseOfTheZoneAtEachMoment) {
    for (const char *name : {"Europe/Berlin", "America/St_Johns", "Australia/Lord_Howe"})
        expectSameAsEachByItself(exact(name), secondsOf({2011, 1, 1, 0, 0, 0}),
                                 secondsOf({2012, 1, 1, 0, 0, 0}), 599);
    // The clocks of local mean time changed at no round second.
    expectSameAsEachByItself(exact("Europe/Berlin"), -2422060000, -2422050000, 1);
    expectSameAsEachByItself(exact("Europe/Berlin"), secondsOf({2060, 3, 1, 0, 0, 0}),
                             secondsOf({2060, 4, 1, 0, 0, 0}), 599);
    TimeZone classic{Date::fromUnixSeconds(0)};
    expectSameAsEachByItself(classic, secondsOf({2011, 1, 1, 0, 0, 0}),
                             secondsOf({2012, 1, 1, 0, 0, 0}), 599);
}

TEST_F(LocalSecondsTest, areNoneWithoutADate) {
    const TimeZone zone = exact("Asia/Tokyo");
    LocalSeconds clock(zone, true);
    EXPECT_FALSE(clock.of(Date()));
    EXPECT_FALSE(clock.of(Date::fromCivil({9999, 12, 31, 23, 0, 0})));
    EXPECT_TRUE(clock.of(Date::fromCivil({9999, 12, 31, 1, 0, 0})));
    for (const double days : {-657434.1, 2958466.0, 1e300, std::nan("")})
        EXPECT_FALSE(clock.ofDays(days)) << days;
}

} // namespace
} // namespace nv
