#include "time/Daylight.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

Date day(int year, int month, int dayOfMonth, int hour = 0, int minute = 0, int second = 0) {
    return Date::fromCivil({year, month, dayOfMonth, hour, minute, second});
}

/// Sundays of a month; the first one is 1.
Date sunday(int count, int year, int month) {
    int dayOfMonth = 1;
    while (day(year, month, dayOfMonth).weekday() != 1)
        ++dayOfMonth;
    return day(year, month, dayOfMonth + 7 * (count - 1));
}

Date lastSunday(int year, int month) {
    const Date fifth = sunday(5, year, month);
    return fifth.has() ? fifth : sunday(4, year, month);
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

TEST(IsDSTInEffect, agreesWithTheSundaysOfTheCalendarInEveryYear) {
    for (int year = 1900; year <= 2100; ++year) {
        const Date first = year < 2007 ? sunday(1, year, 4) : sunday(2, year, 3);
        const Date second = year < 2007 ? lastSunday(year, 10) : sunday(1, year, 11);
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
