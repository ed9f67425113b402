#include "app/jobs/Trail.h"
#include "app/jobs/ZoneJob.h"
#include "app/program/Zones.h"
#include "unit/app/ProjectCommandsFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// Of 2009-06-15 12:00:00.
constexpr double kSummer = 39979.5;

struct Cancelled final : TaskMonitor {
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return false; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
};

struct ZoneJobTest : ProjectCommandsTest {
    TimeZone &zone() { return program->state.gmtZone; }
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

TEST_F(ZoneJobTest, storedLocalDatesFollowAnExactZone) {
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

TEST_F(ZoneJobTest, theTrailHasTheZoneAndItsVersion) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow();
    const std::string version = exactZones(*program).version();
    EXPECT_TRUE(change("Europe/Berlin"));
    EXPECT_TRUE(change("Europe/Berlin")) << "nothing changes, nothing is noted";
    EXPECT_EQ(ProjectFields(db().connection(), log).getDefault("LastTimeZoneID"), "Europe/Berlin")
        << "while the project is open";
    EXPECT_THAT(trail("Time Zone"),
                ElementsAre("15 (Eastern Standard Time) -> Europe/Berlin, zoneinfo " + version +
                            "; local dates stored anew"));
    noteImport(*program, {});
    EXPECT_THAT(trail("Time Zone"),
                Contains("Local dates of the import: Europe/Berlin, zoneinfo " + version));
}

TEST_F(ZoneJobTest, aCancelledChangeChangesNothing) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow();
    Cancelled task;
    EXPECT_FALSE(changeZone(*program, "Asia/Kolkata", task));
    EXPECT_THAT(storedOffsets(), ElementsAre(-4));
    EXPECT_EQ(zoneKey(zone()), "15");
    EXPECT_TRUE(trail("Time Zone").empty());
}

TEST_F(ZoneJobTest, aProjectThatCantStoreThemIsShownInTheNewZone) {
    commands.openFile(path, OpenMode::newAtPath);
    addRow();
    // Rows of one moment: the first is written, the second refused.
    db().connection().exec("INSERT INTO URLs (ActionDateUTC, ActionDateLocal) "
                           "SELECT ActionDateUTC, ActionDateUTC + 1 FROM URLs");
    db().connection().exec("CREATE UNIQUE INDEX NoTwo ON URLs(ActionDateLocal)");
    examiner.expect("local-dates-not-stored");
    EXPECT_TRUE(change("Asia/Kolkata"));
    EXPECT_EQ(zoneKey(zone()), "Asia/Kolkata");
    EXPECT_THAT(trail("Time Zone").at(0), HasSubstr("stay as they were stored"));
    EXPECT_THAT(storedOffsets(), ElementsAre(-4, 24)) << "all of them, or none";
}

} // namespace
} // namespace nv::test
