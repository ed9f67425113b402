#include "time/ShownDate.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace nv {
namespace {

const Date kSummer = Date::fromCivil({2009, 6, 15, 12});
const Date kWinter = Date::fromCivil({2009, 1, 15, 12});

TimeZone zoneOf(std::int16_t bias, std::int16_t daylightBias, std::int16_t latitude) {
    TimeZone zone(kWinter);
    zone.tzBias = bias;
    zone.tzDSTBias = daylightBias;
    zone.tzLatitudeBias = latitude;
    return zone;
}

const TimeZone kEastern = zoneOf(300, -60, 1);

DateSettings settingsOf(int currentYear, bool daylight = true) {
    DateSettings settings;
    settings.currentYear = currentYear;
    settings.enableDSTChanges = daylight;
    return settings;
}

TEST(ZoneCell, showsTheDateOfTheZoneWithItsMark) {
    EXPECT_EQ(zoneCell(kWinter, kEastern, settingsOf(2011)), "2009-01-15 07:00:00 STD");
    EXPECT_EQ(zoneCell(kSummer, kEastern, settingsOf(2011)), "2009-06-15 08:00:00 DST");
    EXPECT_EQ(zoneCell(kSummer, kEastern, settingsOf(2011, false)), "2009-06-15 07:00:00 STD");
}

TEST(ZoneCell, isEmptyForADateOfMoreThanTenYearsAgo) {
    EXPECT_NE(zoneCell(kSummer, kEastern, settingsOf(2019)), "");
    EXPECT_EQ(zoneCell(kSummer, kEastern, settingsOf(2020)), "");
    EXPECT_EQ(utcCell(kSummer, settingsOf(2020)), "2009-06-15 12:00:00");
    // The year is that of the zone's date.
    const Date newYear = Date::fromCivil({2010, 1, 1, 2});
    EXPECT_EQ(zoneCell(newYear, kEastern, settingsOf(2020)), "");
    EXPECT_EQ(zoneCell(newYear, zoneOf(0, 0, 0), settingsOf(2020)), "2010-01-01 02:00:00 STD");
}

TEST(ZoneCell, testsTheMarkOnTheConvertedDate) {
    // The UTC date has changed, the zone's date hasn't: moved by the hour, marked as standard.
    EXPECT_EQ(zoneCell(Date::fromCivil({2009, 3, 8, 0, 30}), kEastern, settingsOf(2011)),
              "2009-03-07 20:30:00 STD");
    // In the east it is the other way round.
    EXPECT_EQ(
        zoneCell(Date::fromCivil({2009, 3, 7, 23, 30}), zoneOf(-60, -60, 1), settingsOf(2011)),
        "2009-03-08 00:30:00 DST");
}

TEST(ZoneCell, isEmptyWhenItsTextIsShorterThanFiveCharacters) {
    DateSettings settings = settingsOf(2011);
    settings.dateFormat.clear();
    settings.timeFormat.clear();
    EXPECT_EQ(zoneCell(kSummer, kEastern, settings), "");
    settings.dateFormat = "d";
    EXPECT_EQ(zoneCell(kSummer, kEastern, settings), "15  DST");
}

TEST(ZoneProperty, tellsTheOffsetWithTheMark) {
    EXPECT_EQ(zoneProperty(kWinter, kEastern, settingsOf(2011)), "2009-01-15 07:00:00 [-0500 STD]");
    EXPECT_EQ(zoneProperty(kSummer, kEastern, settingsOf(2011)), "2009-06-15 08:00:00 [-0400 DST]");
    EXPECT_EQ(zoneProperty(kSummer, kEastern, settingsOf(2011, false)),
              "2009-06-15 07:00:00 [-0500 STD]");
    EXPECT_EQ(zoneProperty(kSummer, kEastern, settingsOf(2020)), "");
}

TEST(UtcProperty, hasItsMarkAbove1980) {
    EXPECT_EQ(utcProperty(kSummer, settingsOf(2011)), "2009-06-15 12:00:00 [UTC]");
    EXPECT_EQ(utcProperty(Date::fromCivil({1981, 1, 1}), settingsOf(2011)),
              "1981-01-01 00:00:00 [UTC]");
    EXPECT_EQ(utcProperty(Date::fromCivil({1980, 12, 31, 23, 59, 59}), settingsOf(2011)),
              "1980-12-31 23:59:59");
}

TEST(ShownDates, areEmptyWithoutADate) {
    EXPECT_EQ(zoneCell({}, kEastern, settingsOf(2011)), "");
    EXPECT_EQ(zoneProperty({}, kEastern, settingsOf(2011)), "");
    EXPECT_EQ(utcCell({}, settingsOf(2011)), "");
    EXPECT_EQ(utcProperty({}, settingsOf(2011)), "");
}

TEST(ZoneHeading, namesUtcForAnOffsetOnly) {
    EXPECT_EQ(zoneHeading(kEastern), "[UTC -0500]");
    EXPECT_EQ(zoneHeading(zoneOf(-330, 0, 0)), "[UTC +0530]");
    EXPECT_EQ(zoneHeading(zoneOf(0, -60, 1)), "[+0000]");
}

TEST(DateSettings, joinBothFormatsByOneBlank) {
    EXPECT_EQ(DateSettings().dateTimeFormat(), "yyyy-mm-dd Hh:Nn:Ss");
}

} // namespace
} // namespace nv
