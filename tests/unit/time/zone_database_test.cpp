#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "time/DateFormat.h"
#include "time/ZoneDatabase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace nv {
namespace {

const Date kSummer = Date::fromCivil({2009, 6, 15, 12});
const Date kWinter = Date::fromCivil({2009, 1, 15, 12});
constexpr auto kNoRecord = "unable to open database file";

/// A database of few rows, some of which no real zone has.
class ZoneDatabaseTest : public testing::Test {
  protected:
    ZoneDatabaseTest() {
        SQLite::Database database(m_file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        database.exec("CREATE TABLE Time_Zones (Time_Zone_ID INTEGER PRIMARY KEY, UTC_Offset TEXT, "
                      "Landmarks TEXT, STD_Time_Zone TEXT, DST_Time_Zone TEXT, STD_Code TEXT, "
                      "DST_Code TEXT, STD_Bias INTEGER, DST_Bias INTEGER, Latitude_Bias INTEGER, "
                      "UsesDST INTEGER)");
        database.exec(
            "INSERT INTO Time_Zones VALUES"
            "(7, '-07:00', 'La Paz', 'Mountain Standard Time (Mexico)', 'x', 'MST', '', 420, NULL,"
            " 0, 0),"
            "(9, '-07:00', 'Mountain Time (US & Canada)', 'Mountain Standard Time',"
            " 'Mountain Daylight Time', 'MST', 'MDT', 420, -60, 1, 1),"
            "(15, '-05:00', 'Eastern Time (US & Canada)', 'Eastern Standard Time  ',"
            " ' Eastern Daylight Time ', ' EST ', ' EDT ', 300, -60, 1, 1),"
            "(20, '+10:00', 'Sydney', 'AUS Eastern Standard Time', 'AUS Eastern Daylight Time',"
            " 'AEST', 'AEDT', -600, -60, -1, 1),"
            "(30, '+00:00', 'London', 'GMT Standard Time', 'GMT Daylight Time', 'GMT', 'BST', 0,"
            " -60, 1, 1),"
            "(40, '+01:00', 'O''Brien', 'O''Brien Time', 'x', 'OBT', '', -60, NULL, 1, 0),"
            "(50, '+09:00', 'Nowhere', 'Nowhere', 'x', '', '', 32767, 1, 1, 1),"
            "(60, '+09:00', 'Too far', 'Too far', 'x', '', '', 40000, NULL, 0, 0)");
    }

    TimeZone detected(int bias, const std::string &name, Date now = kWinter) {
        return m_zones.getSystemTimeZone(TimeZone(kWinter), {bias, name}, now);
    }

    test::TempFolder m_folder;
    std::filesystem::path m_file = m_folder.path() / "nv\u00e4TZ.dat";
    test::MemoryLog m_log;
    ZoneDatabase m_zones{m_file, m_log};
};

TEST_F(ZoneDatabaseTest, setsTheZoneOfTheRow) {
    TimeZone zone(kWinter);
    const ZoneChange change = m_zones.setNewTimeZone(zone, 9, kSummer, true);
    EXPECT_TRUE(change.found);
    EXPECT_EQ(change.errorNumber, 0);
    EXPECT_EQ(zone.tzTimeZoneID, 9);
    EXPECT_EQ(zone.tzBias, 420);
    EXPECT_EQ(zone.tzDSTBias, -60);
    EXPECT_EQ(zone.tzLatitudeBias, 1);
    EXPECT_TRUE(zone.dstAdjustment);
    EXPECT_TRUE(zone.dstInEffect);
    EXPECT_EQ(zone.daylightCode, "DST");
    EXPECT_EQ(zone.tzActiveBias, 360);
    EXPECT_EQ(zone.tzBiasAsText, "-0600");
    EXPECT_EQ(zone.tzName, "Mountain Standard Time");
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(ZoneDatabaseTest, setsStandardTimeInWinterAndWithDaylightChangesOff) {
    for (const auto &[now, enabled] : {std::pair(kWinter, true), std::pair(kSummer, false)}) {
        TimeZone zone(kSummer);
        m_zones.setNewTimeZone(zone, 15, now, enabled);
        EXPECT_FALSE(zone.dstAdjustment);
        EXPECT_FALSE(zone.dstInEffect);
        EXPECT_EQ(zone.daylightCode, "STD");
        EXPECT_EQ(zone.tzActiveBias, 300);
        EXPECT_EQ(zone.tzBiasAsText, "-0500");
        EXPECT_EQ(zone.tzName, "Eastern Standard Time");
        EXPECT_EQ(zone.tzDaylightName, "Eastern Daylight Time"); // not touched
    }
}

TEST_F(ZoneDatabaseTest, convertsTheOtherWayThanTheDefaultZone) {
    TimeZone zone(kWinter);
    EXPECT_EQ(isoUtc(convertDateToZone(kWinter, zone, true)), "2009-01-15T17:00:00Z");
    m_zones.setNewTimeZone(zone, 15, kWinter, true);
    EXPECT_EQ(isoUtc(convertDateToZone(kWinter, zone, true)), "2009-01-15T07:00:00Z");
}

TEST_F(ZoneDatabaseTest, turnsTheDaylightBiasOfTheActiveBiasInTheSouth) {
    TimeZone zone(kWinter);
    m_zones.setNewTimeZone(zone, 20, kWinter, true);
    EXPECT_TRUE(zone.dstInEffect);
    EXPECT_EQ(zone.tzActiveBias, -540);
    EXPECT_EQ(zone.tzBiasAsText, "+0900");
    EXPECT_EQ(isoUtc(convertDateToZone(kWinter, zone, true)), "2009-01-15T23:00:00Z");
}

TEST_F(ZoneDatabaseTest, takesAnEmptyDaylightBiasForZero) {
    TimeZone zone(kWinter);
    m_zones.setNewTimeZone(zone, 15, kWinter, true);
    m_zones.setNewTimeZone(zone, 7, kSummer, true);
    EXPECT_EQ(zone.tzDSTBias, 0);
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(ZoneDatabaseTest, marksDaylightTimeByTheHemisphereEvenWhereTheZoneUsesNone) {
    TimeZone zone(kWinter);
    m_zones.setNewTimeZone(zone, 40, kSummer, true);
    EXPECT_EQ(zone.daylightCode, "DST");
    EXPECT_EQ(zone.tzActiveBias, -60);
}

TEST_F(ZoneDatabaseTest, changesNothingWithoutSuchARow) {
    TimeZone zone(kSummer);
    const ZoneChange change = m_zones.setNewTimeZone(zone, 99, kWinter, true);
    EXPECT_FALSE(change.found);
    EXPECT_EQ(change.errorNumber, 0);
    EXPECT_EQ(zone.tzTimeZoneID, 15);
    EXPECT_TRUE(zone.dstInEffect);
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(ZoneDatabaseTest, logsAnOverflowAndLeavesTheZoneHalfSet) {
    TimeZone zone(kWinter);
    const ZoneChange change = m_zones.setNewTimeZone(zone, 50, kSummer, true);
    EXPECT_TRUE(change.found);
    EXPECT_EQ(change.errorNumber, 6);
    EXPECT_EQ(zone.tzBias, 32767);
    EXPECT_EQ(zone.tzActiveBias, 300); // as it was
    EXPECT_EQ(zone.tzName, "Nowhere");
    ASSERT_EQ(m_log.entries.size(), 1u);
    EXPECT_EQ(m_log.entries[0].procedure, "OptionsForm.SetNewTimeZone()");
    EXPECT_EQ(m_log.entries[0].severity, Severity::Warning);
}

TEST_F(ZoneDatabaseTest, changesNothingForARowThatCannotBeRead) {
    TimeZone zone(kWinter);
    const ZoneChange change = m_zones.setNewTimeZone(zone, 60, kSummer, true);
    EXPECT_FALSE(change.found);
    EXPECT_EQ(change.errorNumber, 1);
    EXPECT_EQ(zone.tzTimeZoneID, 15);
    ASSERT_EQ(m_log.entries.size(), 1u);
    EXPECT_EQ(m_log.entries[0].message, "STD_Bias doesn't fit 16 bits: 40000");
}

TEST_F(ZoneDatabaseTest, detectsTheZoneOfTheMachine) {
    const TimeZone zone = detected(300, "Eastern Standard Time", kSummer);
    EXPECT_EQ(zone.tzBias, 300);
    EXPECT_EQ(zone.daylightCode, "EDT");
    EXPECT_TRUE(zone.dstAdjustment);
    EXPECT_TRUE(zone.dstInEffect);
    EXPECT_EQ(zone.tzActiveBias, 240);
    EXPECT_EQ(zone.tzBiasAsText, "-0400");
    EXPECT_EQ(zone.tzDaylightCode, "EDT");
    EXPECT_EQ(zone.tzDaylightName, "Eastern Daylight Time");
    EXPECT_EQ(zone.tzLatitudeBias, 1);
    EXPECT_EQ(zone.tzLongitudeBias, 1);
    EXPECT_EQ(zone.tzName, "(UTC-05:00) Eastern Standard Time");
    EXPECT_EQ(zone.tzStandardCode, "EST");
    EXPECT_EQ(zone.tzStandardName, "Eastern Standard Time");
    EXPECT_EQ(zone.tzTimeZoneID, 15);
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(ZoneDatabaseTest, leavesTheDaylightBiasOutOfADetectedZone) {
    const TimeZone zone = detected(300, "Eastern Standard Time", kSummer);
    EXPECT_EQ(zone.tzDSTBias, 0);
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, zone, true)), "2009-06-15T07:00:00Z");
}

TEST_F(ZoneDatabaseTest, detectsStandardTimeAndTheSignOfTheLongitude) {
    const TimeZone eastern = detected(300, "Eastern Standard Time");
    EXPECT_FALSE(eastern.dstInEffect);
    EXPECT_EQ(eastern.tzActiveBias, 300);
    EXPECT_EQ(detected(0, "GMT Standard Time").tzLongitudeBias, 0);
    EXPECT_EQ(detected(0, "GMT Standard Time").tzBiasAsText, "UTC");
    EXPECT_EQ(detected(-600, "AUS Eastern Standard Time").tzLongitudeBias, -1);
    EXPECT_EQ(detected(-600, "AUS Eastern Standard Time").tzActiveBias, -540);
}

TEST_F(ZoneDatabaseTest, takesTheExactNameBeforeALongerOne) {
    EXPECT_EQ(detected(420, "Mountain Standard Time").tzTimeZoneID, 9);
    EXPECT_EQ(detected(420, "mountain standard time").tzTimeZoneID, 9);
    EXPECT_EQ(detected(420, "Mountain Standard Time (Mexico)").tzTimeZoneID, 7);
    EXPECT_EQ(detected(420, "Mountain").tzTimeZoneID, 7);
    EXPECT_EQ(detected(420, "").tzTimeZoneID, 7);
    EXPECT_EQ(detected(420, "Mount_in%(").tzTimeZoneID, 7);
}

TEST_F(ZoneDatabaseTest, countsTheFirst32CharactersOfTheMachinesName) {
    const std::string name = "Mountain Standard Time (Mexico)"; // 31 characters
    EXPECT_EQ(detected(420, name + "%and more").tzTimeZoneID, 7);
    EXPECT_EQ(detected(420, name + "?%").tzStandardName, "Eastern Standard Time");
}

TEST_F(ZoneDatabaseTest, bindsTheNameWhateverItHolds) {
    const TimeZone zone = detected(-60, "O'Brien Time", kSummer);
    EXPECT_EQ(zone.tzTimeZoneID, 40);
    EXPECT_FALSE(zone.dstAdjustment);
    EXPECT_EQ(zone.tzActiveBias, -60);
    EXPECT_EQ(detected(300, "' OR 1=1 --").tzBias, -300);
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(ZoneDatabaseTest, fallsBackToTheDefaultZone) {
    for (const auto &[bias, name] : {std::pair(300, "No Such Time"), std::pair(301, "Eastern"),
                                     std::pair(70000, "Eastern"), std::pair(-300, "Eastern")}) {
        TimeZone before(kWinter);
        before.tzBias = 1;
        before.tzDSTBias = -60;
        const TimeZone zone = m_zones.getSystemTimeZone(before, {bias, name}, kSummer);
        EXPECT_EQ(zone.tzTimeZoneID, 15);
        EXPECT_EQ(zone.tzBias, -300);
        EXPECT_EQ(zone.tzActiveBias, 240);
        EXPECT_EQ(zone.tzDSTBias, -60);
        EXPECT_EQ(zone.tzName, "(UTC-05:00) Eastern Time (US & Canada)");
    }
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(ZoneDatabaseTest, fallsBackToTheDefaultZoneWhenTheActiveBiasOverflows) {
    const TimeZone zone = detected(32767, "Nowhere", kSummer);
    EXPECT_EQ(zone.tzBias, -300);
    EXPECT_EQ(zone.tzStandardName, "Eastern Standard Time");
    ASSERT_EQ(m_log.entries.size(), 1u);
}

TEST_F(ZoneDatabaseTest, logsThatTheFileIsMissingAndGoesOn) {
    const ZoneDatabase missing(m_folder.path() / "none.dat", m_log);
    TimeZone zone(kWinter);
    const ZoneChange change = missing.setNewTimeZone(zone, 15, kSummer, true);
    EXPECT_FALSE(change.found);
    EXPECT_EQ(change.errorNumber, 14);
    EXPECT_EQ(missing.getSystemTimeZone(zone, {300, "Eastern"}, kSummer).tzBias, -300);
    EXPECT_TRUE(missing.listZones().empty());
    ASSERT_EQ(m_log.entries.size(), 3u);
    EXPECT_EQ(m_log.entries[0].procedure, "OptionsForm.SetNewTimeZone()");
    EXPECT_EQ(m_log.entries[1].procedure, "TimeFunctions_Revised.GetSystemTimeZone()");
    EXPECT_EQ(m_log.entries[2].procedure, "OptionsForm.InitTimeZone()");
    for (const Failure &entry : m_log.entries) {
        EXPECT_EQ(entry.severity, Severity::Warning);
        EXPECT_EQ(entry.message, kNoRecord);
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder.path() / "none.dat"));
}

TEST_F(ZoneDatabaseTest, logsThatTheFileIsNoDatabase) {
    const ZoneDatabase broken(m_folder.write("broken.dat", std::string(4096, 'x')), m_log);
    TimeZone zone(kWinter);
    EXPECT_EQ(broken.setNewTimeZone(zone, 15, kSummer, true).errorNumber, 1);
    const ZoneDatabase empty(m_folder.write("empty.dat", ""), m_log);
    EXPECT_EQ(empty.setNewTimeZone(zone, 15, kSummer, true).errorNumber, 1);
    EXPECT_EQ(zone.tzBias, -300);
    EXPECT_EQ(m_log.entries.size(), 2u);
}

TEST_F(ZoneDatabaseTest, leavesTheFileAsItIs) {
    const auto before = std::filesystem::last_write_time(m_file);
    TimeZone zone(kWinter);
    m_zones.setNewTimeZone(zone, 15, kSummer, true);
    EXPECT_EQ(std::filesystem::last_write_time(m_file), before);
    const auto entries = std::filesystem::directory_iterator(m_folder.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

ZoneRow listRow(std::int32_t id, const char *landmarks, std::int16_t bias) {
    ZoneRow row;
    row.timeZoneID = id;
    row.landmarks = landmarks;
    row.stdBias = bias;
    return row;
}

TEST(PlaceInList, isTheRowOfTheIdOtherwiseOneOfTheBias) {
    const std::vector<ZoneRow> rows = {listRow(1, "Bogota", 300),
                                       listRow(2, "Eastern Time (US & Canada)", 300),
                                       listRow(3, "Havana", 300), listRow(4, "London", 0)};
    TimeZone zone(kWinter);
    zone.tzBias = 300;
    zone.tzTimeZoneID = 3;
    EXPECT_EQ(placeInList(rows, zone), 2u);
    zone.tzTimeZoneID = 99;
    EXPECT_EQ(placeInList(rows, zone), 1u);
    zone.tzBias = 0;
    EXPECT_EQ(placeInList(rows, zone), 3u);
    zone.tzBias = 7;
    EXPECT_EQ(placeInList(rows, zone), std::nullopt);
    EXPECT_EQ(placeInList({}, zone), std::nullopt);
}

} // namespace
} // namespace nv
