#include "platform/posix/PosixSystemTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <time.h>

namespace nv {
namespace {

/// Sets the zone of the process and brings the former one back.
class ProcessZone {
  public:
    explicit ProcessZone(const char *name) {
        if (const char *before = std::getenv("TZ"))
            m_before = before;
        setenv("TZ", name, 1);
        tzset();
    }
    ~ProcessZone() {
        if (m_before)
            setenv("TZ", m_before->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    ProcessZone(const ProcessZone &) = delete;
    ProcessZone &operator=(const ProcessZone &) = delete;

  private:
    std::optional<std::string> m_before;
};

MachineZone zoneOf(const char *ianaName) {
    return PosixSystemTime(ianaName).zone();
}

TEST(PosixSystemTime, namesTheZoneAsZoneListsDoWithWestPositive) {
    EXPECT_EQ(zoneOf("America/New_York").standardName, "Eastern Standard Time");
    EXPECT_EQ(zoneOf("America/New_York").biasMinutes, 300);
    EXPECT_EQ(zoneOf("Europe/Berlin").standardName, "W. Europe Standard Time");
    EXPECT_EQ(zoneOf("Europe/Berlin").biasMinutes, -60);
    EXPECT_EQ(zoneOf("Asia/Kolkata").standardName, "India Standard Time");
    EXPECT_EQ(zoneOf("Asia/Kolkata").biasMinutes, -330);
    EXPECT_EQ(zoneOf("Australia/Sydney").biasMinutes, -600);
    EXPECT_EQ(zoneOf("America/St_Johns").biasMinutes, 210);
}

TEST(PosixSystemTime, knowsUtcUnderItsOwnName) {
    EXPECT_EQ(zoneOf("Etc/UTC").standardName, "UTC");
    EXPECT_EQ(zoneOf("Etc/UTC").biasMinutes, 0);
}

TEST(PosixSystemTime, givesTheStandardBiasOfZonesWithOddDaylightTime) {
    EXPECT_EQ(zoneOf("Europe/Dublin").biasMinutes, 0);
    EXPECT_EQ(zoneOf("Europe/Dublin").standardName, "GMT Standard Time");
}

TEST(PosixSystemTime, hasNoNameForAZoneThatListsDoNotHave) {
    EXPECT_EQ(zoneOf("No/Such_Zone").standardName, "");
    EXPECT_EQ(zoneOf("No/Such_Zone").biasMinutes, 0);
    EXPECT_EQ(zoneOf("\xFF\xFE").standardName, "");
}

TEST(PosixSystemTime, asksTheMachineWithoutAName) {
    const ProcessZone zone("America/Chicago");
    EXPECT_EQ(PosixSystemTime().zone().standardName, "Central Standard Time");
    EXPECT_EQ(PosixSystemTime().zone().biasMinutes, 360);
}

TEST(SystemClock, tellsTheOffsetOfTheMachineEastPositive) {
    {
        const ProcessZone zone("Asia/Kolkata");
        EXPECT_EQ(SystemClock().localOffset(), std::chrono::minutes(330));
    }
    {
        const ProcessZone zone("America/Phoenix");
        EXPECT_EQ(SystemClock().localOffset(), std::chrono::minutes(-420));
    }
}

TEST(SystemClock, tellsTheTimeOfTheMachine) {
    const auto before = std::chrono::system_clock::now();
    const auto now = SystemClock().now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, std::chrono::system_clock::now());
}

} // namespace
} // namespace nv
