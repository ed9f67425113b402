#include "time/Date.h"
#include "time/DateFormat.h"
#include "time/StoredDays.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace nv {
namespace {

TEST(Date, countsDaysFromTheEndOf1899) {
    EXPECT_EQ(Date::fromCivil({1899, 12, 30}).days(), 0);
    EXPECT_EQ(Date::fromCivil({1970, 1, 1}).days(), 25569);
    EXPECT_EQ(Date::fromCivil({1601, 1, 1}).days(), -109205);
    EXPECT_EQ(Date::fromCivil({2009, 2, 13, 12}).days(), 39857.5);
}

TEST(Date, countsStraightOnBelowZero) {
    const Date date = Date::fromDays(-1.25);
    EXPECT_EQ(isoUtc(date), "1899-12-28T18:00:00Z");
    EXPECT_EQ(isoUtc(date.plusSeconds(86400)), "1899-12-29T18:00:00Z");
    EXPECT_EQ(date.weekday(), 5); // a Thursday
}

TEST(Date, knowsLeapDays) {
    EXPECT_TRUE(Date::fromCivil({2008, 2, 29}).has());
    EXPECT_TRUE(Date::fromCivil({2000, 2, 29}).has());
    EXPECT_FALSE(Date::fromCivil({1900, 2, 29}).has());
    EXPECT_FALSE(Date::fromCivil({2009, 2, 29}).has());
    EXPECT_EQ(isoUtc(Date::fromCivil({2008, 2, 28}).plusSeconds(86400)), "2008-02-29T00:00:00Z");
    EXPECT_EQ(isoUtc(Date::fromCivil({1900, 2, 28}).plusSeconds(86400)), "1900-03-01T00:00:00Z");
}

TEST(Date, holdsTheYears100To9999) {
    EXPECT_TRUE(Date::fromCivil({100, 1, 1}).has());
    EXPECT_TRUE(Date::fromCivil({9999, 12, 31, 23, 59, 59}).has());
    EXPECT_FALSE(Date::fromCivil({99, 12, 31, 23, 59, 59}).has());
    EXPECT_FALSE(Date::fromCivil({10000, 1, 1}).has());
    EXPECT_FALSE(Date::fromCivil({9999, 12, 31, 23, 59, 59}).plusSeconds(1).has());
    EXPECT_FALSE(Date::fromCivil({100, 1, 1}).plusSeconds(-1).has());
}

/// Stored days of far years are worth less than a microsecond can tell.
TEST(Date, theLastMomentsOfAFarYearAreOfThatYear) {
    for (const int year : {2262, 2700, 5138, 9999}) {
        const std::int64_t last = Date::fromCivil({year, 12, 31, 23, 59, 59}).unixSeconds();
        for (const std::int64_t part : {0, 1, 500'000, 999'700, 999'949, 999'951, 999'999}) {
            const Date date = Date::fromUnixMicroseconds(last * 1'000'000 + part);
            ASSERT_TRUE(date.has()) << year << ", " << part;
            EXPECT_EQ(date.unixSeconds(), last) << year << ", " << part;
            EXPECT_EQ(date.civil().year, year);
        }
    }
    const Date end = Date::fromCivil({9999, 12, 31, 23, 59, 59});
    EXPECT_FALSE(Date::fromUnixMicroseconds((end.unixSeconds() + 1) * 1'000'000).has());
    EXPECT_FALSE(Date::fromDays(std::nextafter(2958466.0, 0.0)).has()) << "its second is the next";
}

TEST(Date, refusesWhatIsNoNumberOrFarOutside) {
    EXPECT_FALSE(Date::fromDays(std::nan("")).has());
    EXPECT_FALSE(Date::fromDays(std::numeric_limits<double>::infinity()).has());
    EXPECT_FALSE(Date::fromUnixSeconds(std::numeric_limits<std::int64_t>::max()).has());
    EXPECT_FALSE(Date::fromUnixSeconds(std::numeric_limits<std::int64_t>::min()).has());
    EXPECT_FALSE(Date::fromCivil({2009, 13, 1}).has());
    EXPECT_FALSE(Date::fromCivil({2009, 1, 1, 24}).has());
}

TEST(Date, keepsEverySecondOfADayApart) {
    const std::int64_t midnight = 1234569600; // 2009-02-14
    for (std::int64_t second = 0; second < 86400; ++second) {
        const Date date = Date::fromUnixSeconds(midnight + second);
        ASSERT_EQ(date.unixSeconds(), midnight + second);
        ASSERT_EQ(date.civil().second, second % 60);
    }
}

TEST(Date, isOfTheSecondInWhichItLies) {
    const std::int64_t second = 1234569600;
    for (const std::int64_t microseconds :
         {0, 1, 1000, 500'000, 999'000, 999'499, 999'500, 999'501, 999'999}) {
        const Date date = Date::fromUnixMicroseconds(second * 1'000'000 + microseconds);
        EXPECT_EQ(date.unixSeconds(), second) << microseconds;
        EXPECT_EQ(date.civil().second, 0) << microseconds;
    }
    EXPECT_LT(Date::fromUnixSeconds(second), Date::fromUnixMicroseconds(second * 1'000'000 + 1000));
    EXPECT_EQ(Date::fromUnixMicroseconds(-1).unixSeconds(), -1);
    EXPECT_EQ(Date::fromUnixMicroseconds(-500'000).unixSeconds(), -1);
    EXPECT_EQ(Date::fromUnixMicroseconds(-1'000'000).unixSeconds(), -1);
}

/// A visit in the last moment of a year is one of that year, by each way to ask.
TEST(Date, theLastMomentOfASecondIsntTheNext) {
    const Date midnight = Date::fromCivil({2024, 1, 1});
    const Date last = Date::fromUnixMicroseconds(midnight.unixSeconds() * 1'000'000 - 1);
    EXPECT_EQ(last.civil().year, 2023);
    EXPECT_EQ(last.civil().second, 59);
    EXPECT_EQ(last.weekday(), 1); // a Sunday
    EXPECT_LT(last.days(), firstDays(midnight));
    EXPECT_GE(midnight.days(), firstDays(midnight));
    EXPECT_GE(last.days(), firstDays(last));
    EXPECT_EQ(unixMilliseconds(last), midnight.unixSeconds() * 1000 - 1);
}

/// However the days were summed up: no whole second falls to the one before.
TEST(Date, holdsEachSecondOfDaysFrom1601To2100) {
    for (const int year : {1601, 1677, 1752, 1899, 1900, 1945, 1969, 1970, 1989, 2000, 2009, 2024,
                           2038, 2059, 2079, 2080, 2100}) {
        const std::int64_t midnight = Date::fromCivil({year, 12, 31}).unixSeconds();
        const double day = 25569 + static_cast<double>(midnight / 86400);
        ASSERT_EQ(midnight % 86400, 0);
        for (std::int64_t second = 0; second < 86400; ++second) {
            const std::int64_t expected = midnight + second;
            const double part = static_cast<double>(second) / 86400.0;
            const auto clock = static_cast<double>(second / 3600) / 24.0 +
                               static_cast<double>(second / 60 % 60) / 1440.0 +
                               static_cast<double>(second % 60) / 86400.0;
            const Date written[] = {
                Date::fromUnixSeconds(expected),
                Date::fromUnixMicroseconds(expected * 1'000'000),
                Date::fromDays(day + part),
                Date::fromDays(day + clock),
                Date::fromUnixSeconds(expected - 20'000).plusSeconds(20'000),
                Date::fromUnixSeconds(expected + 300 * 60).plusMinutes(-300),
            };
            for (const Date date : written) {
                ASSERT_EQ(date.unixSeconds(), expected) << year;
                ASSERT_GE(date.days(), firstDays(written[0])) << year;
                ASSERT_EQ(unixMilliseconds(date), expected * 1000) << year;
            }
            const Date late = Date::fromUnixMicroseconds(expected * 1'000'000 + 999'999);
            ASSERT_EQ(late.unixSeconds(), expected) << year;
            ASSERT_EQ(late.plusMinutes(60).plusMinutes(-60).unixSeconds(), expected) << year;
            ASSERT_LT(late.days(), firstDays(Date::fromUnixSeconds(expected + 1))) << year;
        }
    }
}

TEST(Date, keepsTheMilliseconds) {
    for (const std::int64_t second : {-11644473600LL, -1LL, 0LL, 1299006630LL, 3000000000LL})
        for (std::int64_t part = 0; part < 1000; ++part)
            ASSERT_EQ(
                unixMilliseconds(Date::fromUnixMicroseconds(second * 1'000'000 + part * 1000)),
                second * 1000 + part);
}

TEST(Date, noDateStaysNoDateAndIsNotZero) {
    EXPECT_FALSE(Date().plusSeconds(1).has());
    EXPECT_NE(Date(), Date::fromDays(0));
    EXPECT_EQ(Date(), Date());
}

} // namespace
} // namespace nv
