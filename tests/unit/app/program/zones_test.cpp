#include "app/program/ZoneMeaning.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "unit/app/ProjectCommandsFixture.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::HasSubstr;

struct ZonesTest : ProjectCommandsTest {
    TimeZone &zone() { return program->state.gmtZone; }
};

TEST_F(ZonesTest, aProjectKeepsItsExactZone) {
    commands.openFile(path, OpenMode::newAtPath);
    EXPECT_TRUE(setZone(*program, "europe/berlin"));
    EXPECT_EQ(zone().tzName, "Europe/Berlin");
    commands.closeFile();
    EXPECT_TRUE(setZone(*program, 20));
    EXPECT_EQ(zone().exact, nullptr);
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("LastTimeZoneID"), "Europe/Berlin");
    ASSERT_NE(zone().exact, nullptr);
    EXPECT_EQ(zoneKey(zone()), "Europe/Berlin");
}

TEST_F(ZonesTest, aProjectOfAClassicZoneOpensAsBefore) {
    commands.openFile(path, OpenMode::newAtPath);
    EXPECT_TRUE(setZone(*program, "20"));
    commands.closeFile();
    EXPECT_TRUE(setZone(*program, "Europe/Berlin"));
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("LastTimeZoneID"), "20");
    EXPECT_EQ(zone().exact, nullptr);
    EXPECT_EQ(zone().tzTimeZoneID, 20);
}

TEST_F(ZonesTest, aZoneSaysWhatItsClockShows) {
    EXPECT_THAT(zoneMeaning(*program, "Europe/Berlin"),
                HasSubstr("12:00 UTC is 13:00 (CET) there in January and 14:00 (CEST) in July 20"));
    EXPECT_THAT(zoneMeaning(*program, "Asia/Kathmandu"),
                HasSubstr("12:00 UTC is 17:45 (+0545) there all through 20"));
    EXPECT_THAT(zoneMeaning(*program, "Pacific/Kiritimati"), HasSubstr("02:00 (+14)"));
    EXPECT_THAT(zoneMeaning(*program, "America/New_York"), HasSubstr("07:00 (EST)"));
    EXPECT_THAT(zoneMeaning(*program, "15"), HasSubstr("A classic zone"));
    EXPECT_THAT(zoneMeaning(*program, "No/Where"), HasSubstr("no time zone"));
}

TEST_F(ZonesTest, anUnknownZoneIsRefusedWithTheNearest) {
    EXPECT_THAT(checkedZone(*program, "Europe/Berln").refusal, HasSubstr("Europe/Berlin"));
    EXPECT_THAT(checkedZone(*program, "berlin").refusal, HasSubstr("Europe/Berlin"));
    EXPECT_EQ(checkedZone(*program, "ASIA/kolkata").key, "Asia/Kolkata");
    EXPECT_EQ(checkedZone(*program, "15").refusal, "");
    EXPECT_THAT(checkedZone(*program, "9999").refusal, HasSubstr("no zone"));
    for (const std::string &name :
         {std::string("../../etc/passwd"), std::string("/etc/localtime"),
          std::string("M\xC3\xBCnchen"), std::string("\xFF"), std::string(100000, 'x'),
          std::string("15 "), std::string("-1"), std::string("99999999999999999999")})
        EXPECT_NE(checkedZone(*program, name).refusal, "") << name.substr(0, 30);
    EXPECT_LT(checkedZone(*program, std::string(100000, 'x')).refusal.size(), 500U);
    const std::string before = zoneKey(zone());
    examiner.expect("exact-zone-not-set");
    EXPECT_FALSE(setZone(*program, "No/Where"));
    EXPECT_EQ(zoneKey(zone()), before);
}

TEST_F(ZonesTest, aSystemWithoutZoneinfoIsToldAndTheProjectKeepsItsZone) {
    commands.openFile(path, OpenMode::newAtPath);
    EXPECT_TRUE(setZone(*program, "Europe/Berlin"));
    commands.closeFile();
    EXPECT_TRUE(setZone(*program, 20));
    program->paths.zoneinfo = folder.path() / "none";
    EXPECT_THAT(checkedZone(*program, "Europe/Berlin").refusal, HasSubstr("tzdata"));
    examiner.expect("exact-zone-not-set");
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(zone().tzTimeZoneID, 20);
    EXPECT_THROW(requireZones(*program), StorageFailure);
    commands.closeFile();
    program->paths.zoneinfo = "/usr/share/zoneinfo";
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(setting("LastTimeZoneID"), "Europe/Berlin");
    EXPECT_NO_THROW(requireZones(*program));
}

TEST_F(ZonesTest, aNewProjectHasTheExactZoneInForce) {
    EXPECT_TRUE(setZone(*program, "Pacific/Apia"));
    commands.openFile(path, OpenMode::newAtPath);
    commands.closeFile();
    EXPECT_TRUE(setZone(*program, 15));
    commands.openFile(path, OpenMode::existing);
    EXPECT_EQ(zoneKey(zone()), "Pacific/Apia");
}

TEST_F(ZonesTest, theZoneInForceHasAPlaceInTheList) {
    EXPECT_TRUE(setZone(*program, 20));
    EXPECT_EQ(keyInList(*program), "20");
    zone().tzTimeZoneID = 9999;
    EXPECT_NE(keyInList(*program), "9999");
    EXPECT_TRUE(setZone(*program, "UTC"));
    EXPECT_EQ(keyInList(*program), "UTC");
}

TEST_F(ZonesTest, hintsOfUnknownZonesAreLeftOut) {
    folder.write("seized/etc/timezone", "Mars/Olympus");
    EXPECT_TRUE(knownZoneHints(*program, folder.path() / "seized", {}).empty());
    folder.write("seized/etc/timezone", "Asia/Kolkata");
    EXPECT_EQ(knownZoneHints(*program, folder.path() / "seized", {}).size(), 1U);
}

} // namespace
} // namespace nv::test
