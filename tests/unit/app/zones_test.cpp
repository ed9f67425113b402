#include "ProjectCommandsFixture.h"
#include "app/Zones.h"
#include "app/jobs/ImportJob.h"
#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "support/builders/IndexDat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// Of 2009-06-15 12:00:00.
constexpr double kSummer = 39979.5;

struct Cancelled final : TaskMonitor {
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return false; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
};

struct ZonesTest : ProjectCommandsTest {
    TimeZone &zone() { return program->thisClass.gmtZone; }
    /// A row of that summer's day, as an import in the zone in force stores it.
    void addRow() {
        RecordStore store(db().connection(), {zone(), true}, clock, log);
        UrlRecord record;
        record.URL = "http://a.example/";
        record.ActionDateUTC = Date::fromDays(kSummer);
        store.saveRecord(record, {});
    }
    /// Hours from UTC, as the row has them.
    std::vector<double> storedOffsets() {
        std::vector<double> hours;
        SQLite::Statement query(db().connection(),
                                "SELECT round((ActionDateLocal - ActionDateUTC) * 24, 6) FROM URLs "
                                "WHERE ActionDateUTC IS NOT NULL ORDER BY URL_ID");
        while (query.executeStep())
            hours.push_back(query.getColumn(0).getDouble());
        return hours;
    }
    std::vector<std::string> trail(std::string_view action) {
        std::vector<std::string> details;
        for (const TrailEntry &entry : CaseTrail(db().connection()).entries())
            if (entry.action == action)
                details.push_back(entry.detail);
        return details;
    }
    bool change(std::string_view key) {
        Unwatched nobody;
        return changeZone(*program, key, nobody);
    }

    MemoryLog log;
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

TEST_F(ZonesTest, storedLocalDatesFollowAnExactZone) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow(); // in Eastern Time
    db().connection().exec("INSERT INTO URLs (URL) VALUES ('without a date')");
    EXPECT_THAT(storedOffsets(), ElementsAre(-4));
    EXPECT_TRUE(change("20")) << "a classic zone leaves them, as it always has";
    EXPECT_THAT(storedOffsets(), ElementsAre(-4));
    EXPECT_TRUE(change("Asia/Kolkata"));
    EXPECT_THAT(storedOffsets(), ElementsAre(5.5));
    addRow();
    EXPECT_TRUE(change("Europe/Berlin"));
    EXPECT_THAT(storedOffsets(), ElementsAre(2, 2));
    EXPECT_TRUE(change("15")) << "from an exact one they follow too";
    EXPECT_THAT(storedOffsets(), ElementsAre(-4, -4));
    EXPECT_EQ(db().connection().execAndGet("SELECT count(ActionDateLocal) FROM URLs").getInt(), 2);
}

TEST_F(ZonesTest, theTrailHasTheZoneAndItsVersion) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow();
    const std::string version = exactZones(*program).version();
    EXPECT_TRUE(change("Europe/Berlin"));
    EXPECT_TRUE(change("Europe/Berlin")) << "nothing changes, nothing is noted";
    EXPECT_THAT(trail("Time Zone"),
                ElementsAre("15 (Eastern Standard Time) -> Europe/Berlin, zoneinfo " + version +
                            "; local dates stored anew"));
    noteImport(*program, {});
    EXPECT_THAT(trail("Time Zone"),
                Contains("Local dates of the import: Europe/Berlin, zoneinfo " + version));
}

TEST_F(ZonesTest, aCancelledChangeChangesNothing) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow();
    Cancelled task;
    EXPECT_FALSE(changeZone(*program, "Asia/Kolkata", task));
    EXPECT_THAT(storedOffsets(), ElementsAre(-4));
    EXPECT_EQ(zoneKey(zone()), "15");
    EXPECT_TRUE(trail("Time Zone").empty());
}

TEST_F(ZonesTest, aProjectThatCantStoreThemIsShownInTheNewZone) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow();
    db().connection().exec("ALTER TABLE URLs RENAME COLUMN ActionDateLocal TO Gone");
    examiner.expect("local-dates-not-stored");
    EXPECT_TRUE(change("Asia/Kolkata"));
    EXPECT_EQ(zoneKey(zone()), "Asia/Kolkata");
    EXPECT_THAT(trail("Time Zone").at(0), HasSubstr("stay as they were stored"));
    db().connection().exec("ALTER TABLE URLs RENAME COLUMN Gone TO ActionDateLocal");
    EXPECT_THAT(storedOffsets(), ElementsAre(-4));
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
