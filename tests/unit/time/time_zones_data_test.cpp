// The rows of nvTZ.dat against the zones that ICU knows.

#include "support/Places.h"
#include "support/TestDoubles.h"
#include "time/DateFormat.h"
#include "time/ZoneDatabase.h"

#include <gtest/gtest.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>

namespace nv {
namespace {

const Date kWinter = Date::fromCivil({2009, 1, 15, 12});
const Date kSummer = Date::fromCivil({2009, 6, 15, 12});

class TimeZonesData : public testing::Test {
  protected:
    const ZoneRow &row(std::string_view name) const {
        const auto found = std::find_if(m_rows.begin(), m_rows.end(), [name](const ZoneRow &row) {
            return row.STD_Time_Zone == name;
        });
        if (found == m_rows.end())
            throw std::out_of_range(std::string(name));
        return *found;
    }

    TimeZoneClass zone(std::string_view name, Date now) const {
        TimeZoneClass zone(now);
        m_zones.SetNewTimeZone(zone, row(name).Time_Zone_ID, now, true);
        return zone;
    }

    test::MemoryLog m_log;
    ZoneDatabase m_zones{test::timeZonesFile(), m_log};
    std::vector<ZoneRow> m_rows = m_zones.listZones();
};

/// Minutes, west positive; nothing when ICU has no such zone.
std::optional<int> icuBias(const std::string &name) {
    icu::UnicodeString ianaName;
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone::getIDForWindowsID(icu::UnicodeString::fromUTF8(name), nullptr, ianaName, status);
    if (U_FAILURE(status) || ianaName.isEmpty())
        return std::nullopt;
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(ianaName));
    return -zone->getRawOffset() / 60'000;
}

TEST_F(TimeZonesData, holdsEveryZoneOnceWithEasternTimeInRow15) {
    EXPECT_EQ(m_rows.size(), 139u);
    std::set<std::int32_t> ids;
    std::set<std::string> names;
    for (const ZoneRow &row : m_rows) {
        EXPECT_TRUE(ids.insert(row.Time_Zone_ID).second) << row.Time_Zone_ID;
        EXPECT_TRUE(names.insert(row.STD_Time_Zone).second) << row.STD_Time_Zone;
        EXPECT_FALSE(row.Landmarks.empty() || row.DST_Time_Zone.empty() || row.STD_Code.empty());
    }
    const ZoneRow &eastern = row("Eastern Standard Time");
    EXPECT_EQ(eastern.Time_Zone_ID, 15);
    EXPECT_EQ(eastern.listText(), "(UTC-05:00) Eastern Time (US & Canada)");
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(TimeZonesData, isListedByTheTextOfTheOffset) {
    EXPECT_TRUE(std::is_sorted(m_rows.begin(), m_rows.end(), [](const auto &a, const auto &b) {
        return a.UTC_Offset < b.UTC_Offset;
    }));
}

TEST_F(TimeZonesData, hasTheBiasOfEveryZoneThatIcuKnows) {
    // The law or the town behind the name changed of late: what some ICU in use says instead.
    const std::map<std::string, int> elsewhere = {{"Greenland Standard Time", 180},
                                                  {"Paraguay Standard Time", 240},
                                                  {"Central Asia Standard Time", -300},
                                                  {"Mountain Standard Time (Mexico)", 360}};
    for (const ZoneRow &row : m_rows) {
        const auto bias = icuBias(row.STD_Time_Zone);
        ASSERT_TRUE(bias.has_value()) << row.STD_Time_Zone;
        const auto other = elsewhere.find(row.STD_Time_Zone);
        const bool excused = other != elsewhere.end() && *bias == other->second;
        EXPECT_TRUE(*bias == row.STD_Bias || excused) << row.STD_Time_Zone << " " << *bias;
    }
}

TEST_F(TimeZonesData, saysTheSameInTheOffsetAndTheBias) {
    for (const ZoneRow &row : m_rows) {
        std::string text =
            row.STD_Bias == 0 ? "+0000" : FormatBiasText(static_cast<std::int16_t>(-row.STD_Bias));
        EXPECT_EQ(row.UTC_Offset, text.insert(3, ":")) << row.STD_Time_Zone;
    }
}

TEST_F(TimeZonesData, hasDaylightTimeInAllColumnsOrInNone) {
    for (const ZoneRow &row : m_rows) {
        const int expected = row.STD_Time_Zone == "Lord Howe Standard Time" ? -30 : -60;
        EXPECT_EQ(row.UsesDST, row.DST_Bias.has_value()) << row.STD_Time_Zone;
        EXPECT_EQ(row.UsesDST, row.Latitude_Bias != 0) << row.STD_Time_Zone;
        EXPECT_EQ(row.UsesDST, !row.DST_Code.empty()) << row.STD_Time_Zone;
        EXPECT_EQ(row.DST_Bias.value_or(expected), expected) << row.STD_Time_Zone;
    }
}

TEST_F(TimeZonesData, everyZoneIsDetectedFromItsOwnNameAndBias) {
    for (const ZoneRow &row : m_rows) {
        const TimeZoneClass found = m_zones.GetSystemTimeZone(
            TimeZoneClass(kWinter), {row.STD_Bias, row.STD_Time_Zone}, kWinter);
        EXPECT_EQ(found.tzTimeZoneID, row.Time_Zone_ID) << row.STD_Time_Zone;
        EXPECT_EQ(found.tzBias, row.STD_Bias) << row.STD_Time_Zone;
    }
}

TEST_F(TimeZonesData, convertsAndShowsNorthernZonesAlike) {
    for (const ZoneRow &row : m_rows) {
        if (row.Latitude_Bias != 1)
            continue;
        for (const Date now : {kWinter, kSummer}) {
            const TimeZoneClass set = zone(row.STD_Time_Zone, now);
            EXPECT_EQ(ConvertDateToZone(now, set, true), now.plusMinutes(-set.tzActiveBias))
                << row.STD_Time_Zone;
        }
    }
    EXPECT_EQ(zone("Eastern Standard Time", kSummer).tzActiveBias, 240);
    EXPECT_EQ(zone("W. Europe Standard Time", kSummer).tzActiveBias, -120);
}

TEST_F(TimeZonesData, convertsSouthernZonesRightly) {
    const TimeZoneClass sydney = zone("AUS Eastern Standard Time", kWinter);
    EXPECT_EQ(isoUtc(ConvertDateToZone(kWinter, sydney, true)), "2009-01-15T23:00:00Z");
    EXPECT_EQ(isoUtc(ConvertDateToZone(kSummer, sydney, true)), "2009-06-15T22:00:00Z");
    // Only the offset shown for now has the hour on the other side.
    EXPECT_EQ(sydney.tzBiasAsText, "+0900");
}

} // namespace
} // namespace nv
