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
            return row.stdTimeZone == name;
        });
        if (found == m_rows.end())
            throw std::out_of_range(std::string(name));
        return *found;
    }

    TimeZone zone(std::string_view name, Date now) const {
        TimeZone zone(now);
        m_zones.setNewTimeZone(zone, row(name).timeZoneID, now, true);
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
        EXPECT_TRUE(ids.insert(row.timeZoneID).second) << row.timeZoneID;
        EXPECT_TRUE(names.insert(row.stdTimeZone).second) << row.stdTimeZone;
        EXPECT_FALSE(row.landmarks.empty() || row.dstTimeZone.empty() || row.stdCode.empty());
    }
    const ZoneRow &eastern = row("Eastern Standard Time");
    EXPECT_EQ(eastern.timeZoneID, 15);
    EXPECT_EQ(eastern.listText(), "(UTC-05:00) Eastern Time (US & Canada)");
    EXPECT_TRUE(m_log.entries.empty());
}

TEST_F(TimeZonesData, isListedByTheTextOfTheOffset) {
    EXPECT_TRUE(std::is_sorted(m_rows.begin(), m_rows.end(), [](const auto &a, const auto &b) {
        return a.utcOffset < b.utcOffset;
    }));
}

TEST_F(TimeZonesData, hasTheBiasOfEveryZoneThatIcuKnows) {
    // The law or the town behind the name changed of late: what some ICU in use says instead.
    const std::map<std::string, int> elsewhere = {{"Greenland Standard Time", 180},
                                                  {"Paraguay Standard Time", 240},
                                                  {"Central Asia Standard Time", -300},
                                                  {"Mountain Standard Time (Mexico)", 360}};
    for (const ZoneRow &row : m_rows) {
        const auto bias = icuBias(row.stdTimeZone);
        ASSERT_TRUE(bias.has_value()) << row.stdTimeZone;
        const auto other = elsewhere.find(row.stdTimeZone);
        const bool excused = other != elsewhere.end() && *bias == other->second;
        EXPECT_TRUE(*bias == row.stdBias || excused) << row.stdTimeZone << " " << *bias;
    }
}

TEST_F(TimeZonesData, saysTheSameInTheOffsetAndTheBias) {
    for (const ZoneRow &row : m_rows) {
        std::string text =
            row.stdBias == 0 ? "+0000" : formatBiasText(static_cast<std::int16_t>(-row.stdBias));
        EXPECT_EQ(row.utcOffset, text.insert(3, ":")) << row.stdTimeZone;
    }
}

TEST_F(TimeZonesData, hasDaylightTimeInAllColumnsOrInNone) {
    for (const ZoneRow &row : m_rows) {
        const int expected = row.stdTimeZone == "Lord Howe Standard Time" ? -30 : -60;
        EXPECT_EQ(row.usesDST, row.dstBias.has_value()) << row.stdTimeZone;
        EXPECT_EQ(row.usesDST, row.latitudeBias != 0) << row.stdTimeZone;
        EXPECT_EQ(row.usesDST, !row.dstCode.empty()) << row.stdTimeZone;
        EXPECT_EQ(row.dstBias.value_or(expected), expected) << row.stdTimeZone;
    }
}

TEST_F(TimeZonesData, everyZoneIsDetectedFromItsOwnNameAndBias) {
    for (const ZoneRow &row : m_rows) {
        const TimeZone found =
            m_zones.getSystemTimeZone(TimeZone(kWinter), {row.stdBias, row.stdTimeZone}, kWinter);
        EXPECT_EQ(found.tzTimeZoneID, row.timeZoneID) << row.stdTimeZone;
        EXPECT_EQ(found.tzBias, row.stdBias) << row.stdTimeZone;
    }
}

TEST_F(TimeZonesData, convertsAndShowsNorthernZonesAlike) {
    for (const ZoneRow &row : m_rows) {
        if (row.latitudeBias != 1)
            continue;
        for (const Date now : {kWinter, kSummer}) {
            const TimeZone set = zone(row.stdTimeZone, now);
            EXPECT_EQ(convertDateToZone(now, set, true), now.plusMinutes(-set.tzActiveBias))
                << row.stdTimeZone;
        }
    }
    EXPECT_EQ(zone("Eastern Standard Time", kSummer).tzActiveBias, 240);
    EXPECT_EQ(zone("W. Europe Standard Time", kSummer).tzActiveBias, -120);
}

TEST_F(TimeZonesData, convertsSouthernZonesRightly) {
    const TimeZone sydney = zone("AUS Eastern Standard Time", kWinter);
    EXPECT_EQ(isoUtc(convertDateToZone(kWinter, sydney, true)), "2009-01-15T23:00:00Z");
    EXPECT_EQ(isoUtc(convertDateToZone(kSummer, sydney, true)), "2009-06-15T22:00:00Z");
    // Only the offset shown for now has the hour on the other side.
    EXPECT_EQ(sydney.tzBiasAsText, "+0900");
}

} // namespace
} // namespace nv
