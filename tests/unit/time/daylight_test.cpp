#include "time/DateFormat.h"
#include "time/Daylight.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

Date day(int year, int month, int dayOfMonth, int hour = 0, int minute = 0, int second = 0) {
    return Date::fromCivil({year, month, dayOfMonth, hour, minute, second});
}

const Date kFailure = Date::fromDays(-1);

TEST(FirstWeekdayOfMonth, isAMidnightOfTheFirstSevenDays) {
    EXPECT_EQ(firstWeekdayOfMonth(1, day(2006, 4, 1)), day(2006, 4, 2));
    EXPECT_EQ(firstWeekdayOfMonth(7, day(2006, 4, 30, 13, 14, 15)), day(2006, 4, 1));
    EXPECT_EQ(firstWeekdayOfMonth(6, day(2006, 4, 2)), day(2006, 4, 7));
}

TEST(LastWeekdayOfMonth, isAMidnightOfTheLastSevenDays) {
    EXPECT_EQ(lastWeekdayOfMonth(1, day(2006, 10, 1)), day(2006, 10, 29));
    EXPECT_EQ(lastWeekdayOfMonth(3, day(2006, 10, 5, 23)), day(2006, 10, 31));
    EXPECT_EQ(lastWeekdayOfMonth(6, day(2008, 2, 1)), day(2008, 2, 29));
    EXPECT_EQ(lastWeekdayOfMonth(6, day(9999, 12, 1)), day(9999, 12, 31));
}

TEST(NthWeekdayOfMonth, countsFromOneAndFailsWhenTheMonthHasTooFew) {
    EXPECT_EQ(nthWeekdayOfMonth(1, 2, day(2007, 3, 20)), day(2007, 3, 11));
    EXPECT_EQ(nthWeekdayOfMonth(7, 5, day(2007, 3, 1)), day(2007, 3, 31));
    EXPECT_EQ(nthWeekdayOfMonth(1, 5, day(2007, 3, 1)), kFailure);
    EXPECT_EQ(nthWeekdayOfMonth(1, 6, day(2007, 4, 1)), kFailure);
    EXPECT_EQ(nthWeekdayOfMonth(1, 0, day(2007, 4, 1)), kFailure);
    EXPECT_EQ(nthWeekdayOfMonth(1, -1, day(2007, 4, 1)), kFailure);
}

TEST(WeekdaysOfMonth, giveMinusOneForABadWeekdayOrDate) {
    for (const int weekday : {-1, 0, 8, 100}) {
        EXPECT_EQ(firstWeekdayOfMonth(weekday, day(2007, 3, 1)), kFailure);
        EXPECT_EQ(lastWeekdayOfMonth(weekday, day(2007, 3, 1)), kFailure);
        EXPECT_EQ(nthWeekdayOfMonth(weekday, 1, day(2007, 3, 1)), kFailure);
    }
    for (const Date date : {Date(), Date::fromDays(0), Date::fromDays(-0.5), day(1601, 1, 1)}) {
        EXPECT_EQ(firstWeekdayOfMonth(1, date), kFailure);
        EXPECT_EQ(lastWeekdayOfMonth(1, date), kFailure);
        EXPECT_EQ(nthWeekdayOfMonth(1, 1, date), kFailure);
    }
    EXPECT_EQ(isoUtc(kFailure), "1899-12-29T00:00:00Z");
}

TEST(IsDSTInEffect, followsAprilAndOctoberBefore2007) {
    EXPECT_FALSE(isDSTInEffect(day(2006, 4, 1), 1));
    EXPECT_TRUE(isDSTInEffect(day(2006, 4, 2), 1));
    EXPECT_TRUE(isDSTInEffect(day(2006, 10, 28, 23, 59, 59), 1));
    EXPECT_FALSE(isDSTInEffect(day(2006, 10, 29), 1));
}

TEST(IsDSTInEffect, followsMarchAndNovemberFrom2007) {
    EXPECT_FALSE(isDSTInEffect(day(2007, 3, 10), 1));
    EXPECT_TRUE(isDSTInEffect(day(2007, 3, 11), 1));
    EXPECT_TRUE(isDSTInEffect(day(2009, 10, 31, 23, 59, 59), 1));
    EXPECT_FALSE(isDSTInEffect(day(2009, 11, 1), 1));
}

TEST(IsDSTInEffect, changesAtMidnight) {
    EXPECT_FALSE(isDSTInEffect(day(2007, 3, 10, 23, 59, 59), 1));
    EXPECT_TRUE(isDSTInEffect(day(2007, 3, 11, 0, 30), 1));
    EXPECT_FALSE(isDSTInEffect(day(2007, 11, 4, 0, 30), 1));
}

TEST(IsDSTInEffect, isReadBackwardsInTheSouth) {
    EXPECT_TRUE(isDSTInEffect(day(2009, 1, 15), -1));
    EXPECT_FALSE(isDSTInEffect(day(2009, 6, 15), -1));
    EXPECT_TRUE(isDSTInEffect(day(2009, 3, 7, 23, 59, 59), -1));
    EXPECT_FALSE(isDSTInEffect(day(2009, 3, 8), -1));
    EXPECT_TRUE(isDSTInEffect(day(2009, 11, 1), -1));
    EXPECT_TRUE(isDSTInEffect(day(2009, 12, 31), -1));
}

TEST(IsDSTInEffect, isFalseWithoutAHemisphere) {
    for (const int bias : {0, 2, -2, 60, -32768}) {
        EXPECT_FALSE(isDSTInEffect(day(2009, 1, 15), bias));
        EXPECT_FALSE(isDSTInEffect(day(2009, 6, 15), bias));
    }
}

TEST(IsDSTInEffect, isFalseForDatesNotAboveZero) {
    for (const int bias : {1, -1}) {
        EXPECT_FALSE(isDSTInEffect({}, bias));
        EXPECT_FALSE(isDSTInEffect(Date::fromDays(0), bias));
        EXPECT_FALSE(isDSTInEffect(Date::fromDays(-0.5), bias));
        EXPECT_FALSE(isDSTInEffect(day(1601, 6, 15), bias));
    }
    EXPECT_FALSE(isDSTInEffect(day(1899, 12, 31), 1));
    EXPECT_TRUE(isDSTInEffect(day(1899, 12, 31), -1));
    EXPECT_TRUE(isDSTInEffect(day(9999, 6, 15), 1));
    EXPECT_TRUE(isDSTInEffect(day(9999, 12, 31, 23, 59, 59), -1));
}

TEST(IsDSTInEffect, agreesWithTheWeekdaysOfMonthsInEveryYear) {
    for (int year = 1900; year <= 2100; ++year) {
        const Date first = year < 2007 ? firstWeekdayOfMonth(1, day(year, 4, 1))
                                       : nthWeekdayOfMonth(1, 2, day(year, 3, 1));
        const Date second = year < 2007 ? lastWeekdayOfMonth(1, day(year, 10, 1))
                                        : firstWeekdayOfMonth(1, day(year, 11, 1));
        for (const Date boundary : {first, second}) {
            const bool begins = boundary == first;
            ASSERT_EQ(isDSTInEffect(boundary, 1), begins) << year;
            ASSERT_EQ(isDSTInEffect(boundary.plusSeconds(-1), 1), !begins) << year;
            ASSERT_EQ(isDSTInEffect(boundary, -1), !begins) << year;
            ASSERT_EQ(isDSTInEffect(boundary.plusSeconds(-1), -1), begins) << year;
        }
    }
}

} // namespace
} // namespace nv
