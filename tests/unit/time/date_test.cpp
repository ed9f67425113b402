#include "time/Date.h"
#include "time/DateFormat.h"

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
    for (const std::int64_t microseconds : {0, 1000, 500'000, 998'000, 999'000}) {
        const Date date = Date::fromUnixMicroseconds(second * 1'000'000 + microseconds);
        EXPECT_EQ(date.unixSeconds(), second) << microseconds;
        EXPECT_EQ(date.civil().second, 0) << microseconds;
    }
    EXPECT_LT(Date::fromUnixSeconds(second), Date::fromUnixMicroseconds(second * 1'000'000 + 1000));
    EXPECT_EQ(Date::fromUnixMicroseconds(-1).unixSeconds(), 0) << "a float holds no more";
    EXPECT_EQ(Date::fromUnixMicroseconds(-500'000).unixSeconds(), -1);
}

TEST(Date, noDateStaysNoDateAndIsNotZero) {
    EXPECT_FALSE(Date().plusSeconds(1).has());
    EXPECT_NE(Date(), Date::fromDays(0));
    EXPECT_EQ(Date(), Date());
}

} // namespace
} // namespace nv
