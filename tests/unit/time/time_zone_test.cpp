#include "time/DateFormat.h"
#include "time/TimeZone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace nv {
namespace {

const Date kSummer = Date::fromCivil({2009, 6, 15, 12});
const Date kWinter = Date::fromCivil({2009, 1, 15, 12});

TimeZone zoneOf(std::int16_t bias, std::int16_t daylightBias = 0, std::int16_t latitude = 0) {
    TimeZone zone(kWinter);
    zone.tzBias = bias;
    zone.tzDSTBias = daylightBias;
    zone.tzLatitudeBias = latitude;
    return zone;
}

TEST(TimeZone, isEasternTimeWhenNew) {
    const TimeZone zone(kWinter);
    EXPECT_EQ(zone.daylightCode, "EDT");
    EXPECT_EQ(zone.tzDaylightCode, "EDT");
    EXPECT_TRUE(zone.dstAdjustment);
    EXPECT_EQ(zone.tzBias, -300);
    EXPECT_EQ(zone.tzDaylightName, "Eastern Daylight Time");
    EXPECT_EQ(zone.tzLatitudeBias, 1);
    EXPECT_EQ(zone.tzLongitudeBias, -1);
    EXPECT_EQ(zone.tzName, "(UTC-05:00) Eastern Time (US & Canada)");
    EXPECT_EQ(zone.tzStandardCode, "EST");
    EXPECT_EQ(zone.tzStandardName, "Eastern Standard Time");
    EXPECT_EQ(zone.tzTimeZoneID, 15);
    EXPECT_EQ(zone.tzDSTBias, 0);
    EXPECT_FALSE(zone.tzDSTBegins.has_value());
    EXPECT_FALSE(zone.tzDSTEnds.has_value());
}

TEST(TimeZone, asksTheRuleForTheActiveBiasWhenNew) {
    const TimeZone winter(kWinter);
    EXPECT_FALSE(winter.dstInEffect);
    EXPECT_EQ(winter.tzActiveBias, 300);
    EXPECT_EQ(winter.tzBiasAsText, "-0500");
    const TimeZone summer(kSummer);
    EXPECT_TRUE(summer.dstInEffect);
    EXPECT_EQ(summer.tzActiveBias, 240);
    EXPECT_EQ(summer.tzBiasAsText, "-0400");
}

TEST(TimeZone, keepsTheDaylightBiasWhenMadeTheDefaultAgain) {
    TimeZone zone = zoneOf(480, -60);
    zone.setToDefault(kSummer);
    EXPECT_EQ(zone.tzBias, -300);
    EXPECT_EQ(zone.tzDSTBias, -60);
    EXPECT_EQ(zone.tzActiveBias, 240);
}

TEST(TimeZone, resetLeavesTheOtherMembersAlone) {
    TimeZone zone(kSummer);
    zone.reset();
    EXPECT_EQ(zone.tzName, "");
    EXPECT_EQ(zone.tzBiasAsText, "");
    EXPECT_EQ(zone.tzBias, 0);
    EXPECT_FALSE(zone.dstInEffect);
    EXPECT_FALSE(zone.dstAdjustment);
    EXPECT_EQ(zone.tzActiveBias, 240);
    EXPECT_EQ(zone.tzTimeZoneID, 15);
    EXPECT_EQ(zone.daylightCode, "EDT");
}

TEST(FormatBiasText, isSignHoursAndMinutesOrUtc) {
    EXPECT_EQ(formatBiasText(0), "UTC");
    EXPECT_EQ(formatBiasText(-300), "-0500");
    EXPECT_EQ(formatBiasText(330), "+0530");
    EXPECT_EQ(formatBiasText(-30), "-0030");
    EXPECT_EQ(formatBiasText(765), "+1245");
    EXPECT_EQ(formatBiasText(INT16_MIN), "-54608");
}

TEST(GetBiasAsTime, isTheOffsetFromUtc) {
    EXPECT_EQ(zoneOf(300).getBiasAsTime(0), "-0500");
    EXPECT_EQ(zoneOf(300).getBiasAsTime(-60), "-0400");
    EXPECT_EQ(zoneOf(-330).getBiasAsTime(0), "+0530");
    EXPECT_EQ(zoneOf(30).getBiasAsTime(0), "-0030");
    EXPECT_EQ(zoneOf(-210).getBiasAsTime(-60), "+0430");
}

TEST(GetBiasAsTime, hasNoSignWhenTheExtraMinutesMakeZero) {
    EXPECT_EQ(zoneOf(60).getBiasAsTime(-60), "0000");
}

TEST(GetBiasAsTime, staysPlusZeroWithoutABias) {
    EXPECT_EQ(zoneOf(0).getBiasAsTime(0), "+0000");
    EXPECT_EQ(zoneOf(0).getBiasAsTime(-60), "+0000");
}

TEST(ConvertDateToZone, appliesTheBiasAndTheDaylightBias) {
    const TimeZone eastern = zoneOf(300, -60, 1);
    EXPECT_EQ(isoUtc(convertDateToZone(kWinter, eastern, true)), "2009-01-15T07:00:00Z");
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, eastern, true)), "2009-06-15T08:00:00Z");
    const TimeZone india = zoneOf(-330);
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, india, true)), "2009-06-15T17:30:00Z");
}

TEST(ConvertDateToZone, appliesTheBiasOnlyWithDaylightChangesOff) {
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, zoneOf(300, -60, 1), false)),
              "2009-06-15T07:00:00Z");
}

TEST(ConvertDateToZone, asksTheRuleForTheUtcDate) {
    const TimeZone eastern = zoneOf(300, -60, 1);
    // Still the evening of the day before in the zone, but changed already.
    EXPECT_EQ(isoUtc(convertDateToZone(Date::fromCivil({2007, 3, 11, 0, 30}), eastern, true)),
              "2007-03-10T20:30:00Z");
    EXPECT_EQ(isoUtc(convertDateToZone(Date::fromCivil({2007, 3, 10, 23, 59, 59}), eastern, true)),
              "2007-03-10T18:59:59Z");
}

TEST(ConvertDateToZone, addsTheDaylightBiasInTheSouthWithoutTheHemisphere) {
    const TimeZone sydney = zoneOf(-600, -60, -1);
    EXPECT_EQ(isoUtc(convertDateToZone(kWinter, sydney, true)), "2009-01-15T23:00:00Z");
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, sydney, true)), "2009-06-15T22:00:00Z");
}

TEST(ConvertDateToZone, goesTheOtherWayInTheDefaultZone) {
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, TimeZone(kSummer), true)), "2009-06-15T17:00:00Z");
}

TEST(ConvertDateToZone, refusesASumOfBiasesOver16Bits) {
    EXPECT_THROW(convertDateToZone(kSummer, zoneOf(INT16_MAX, 1, 1), true), std::range_error);
    EXPECT_THROW(convertDateToZone(kSummer, zoneOf(INT16_MIN, -1, 1), true), std::range_error);
    // The sum isn't needed here.
    EXPECT_TRUE(convertDateToZone(kWinter, zoneOf(INT16_MAX, 1, 1), true).has());
    EXPECT_TRUE(convertDateToZone(kSummer, zoneOf(INT16_MIN, -1, 1), false).has());
}

TEST(ConvertDateToZone, isNoDateWithoutOneAndOutsideOfTheCalendar) {
    EXPECT_FALSE(convertDateToZone({}, zoneOf(300, -60, 1), true).has());
    EXPECT_FALSE(convertDateToZone(Date::fromCivil({100, 1, 1}), zoneOf(300), true).has());
    EXPECT_FALSE(convertDateToZone(Date::fromCivil({9999, 12, 31, 23}), zoneOf(-60), true).has());
}

} // namespace
} // namespace nv
