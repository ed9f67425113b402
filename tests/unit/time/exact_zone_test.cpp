#include "base/Files.h"
#include "support/TempFolder.h"
#include "time/ExactZone.h"
#include "time/ShownDate.h"
#include "time/TimeZone.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const fs::path kSystem = "/usr/share/zoneinfo";

struct Truth {
    const char *zone;
    std::int64_t unixSeconds;
    int offset; ///< seconds, east positive
    const char *abbreviation;
    const char *local;
};

/// Worked out once by Python's zoneinfo, from the database of version 2025b.
constexpr Truth kTruth[] = {
    {"Europe/Berlin", -59011372800, 3208, "LMT", "0100-01-02 00:53:28"},
    {"Europe/Berlin", -2422054409, 3208, "LMT", "1893-03-31 23:59:59"},
    {"Europe/Berlin", -2422054408, 3600, "CET", "1893-04-01 00:06:32"},
    {"Europe/Berlin", -2422008000, 3600, "CET", "1893-04-01 13:00:00"},
    {"Europe/Berlin", -1693706401, 3600, "CET", "1916-04-30 22:59:59"},
    {"Europe/Berlin", -1693706400, 7200, "CEST", "1916-05-01 00:00:00"},
    {"Europe/Berlin", -938905201, 3600, "CET", "1940-04-01 01:59:59"},
    {"Europe/Berlin", -938905200, 7200, "CEST", "1940-04-01 03:00:00"},
    {"Europe/Berlin", -781052401, 3600, "CET", "1945-04-02 01:59:59"},
    {"Europe/Berlin", -781052400, 7200, "CEST", "1945-04-02 03:00:00"},
    {"Europe/Berlin", -776563200, 10800, "CEMT", "1945-05-24 03:00:00"},
    {"Europe/Berlin", -773236800, 10800, "CEMT", "1945-07-01 15:00:00"},
    {"Europe/Berlin", -765936000, 7200, "CEST", "1945-09-24 02:00:00"},
    {"Europe/Berlin", -761180401, 7200, "CEST", "1945-11-18 02:59:59"},
    {"Europe/Berlin", -761180400, 3600, "CET", "1945-11-18 02:00:00"},
    {"Europe/Berlin", -748479601, 3600, "CET", "1946-04-14 01:59:59"},
    {"Europe/Berlin", -748479600, 7200, "CEST", "1946-04-14 03:00:00"},
    {"Europe/Berlin", -714610801, 7200, "CEST", "1947-05-11 02:59:59"},
    {"Europe/Berlin", -714610800, 10800, "CEMT", "1947-05-11 04:00:00"},
    {"Europe/Berlin", -710380801, 10800, "CEMT", "1947-06-29 02:59:59"},
    {"Europe/Berlin", -710380800, 7200, "CEST", "1947-06-29 02:00:00"},
    {"Europe/Berlin", -639010801, 7200, "CEST", "1949-10-02 02:59:59"},
    {"Europe/Berlin", -639010800, 3600, "CET", "1949-10-02 02:00:00"},
    {"Europe/Berlin", 173448000, 3600, "CET", "1975-07-01 13:00:00"},
    {"Europe/Berlin", 323830799, 3600, "CET", "1980-04-06 01:59:59"},
    {"Europe/Berlin", 323830800, 7200, "CEST", "1980-04-06 03:00:00"},
    {"Europe/Berlin", 1232020800, 3600, "CET", "2009-01-15 13:00:00"},
    {"Europe/Berlin", 1245067200, 7200, "CEST", "2009-06-15 14:00:00"},
    {"Europe/Berlin", 1301187599, 3600, "CET", "2011-03-27 01:59:59"},
    {"Europe/Berlin", 1301187600, 7200, "CEST", "2011-03-27 03:00:00"},
    {"Europe/Berlin", 1319934600, 7200, "CEST", "2011-10-30 02:30:00"},
    {"Europe/Berlin", 1319938200, 3600, "CET", "2011-10-30 02:30:00"},
    {"Europe/Berlin", 2140045200, 3600, "CET", "2037-10-25 02:00:00"},
    {"Europe/Berlin", 2153350799, 3600, "CET", "2038-03-28 01:59:59"},
    {"Europe/Berlin", 2153350800, 7200, "CEST", "2038-03-28 03:00:00"},
    {"Europe/Berlin", 32487825600, 7200, "CEST", "2999-07-01 14:00:00"},
    {"Europe/Berlin", 253386446400, 7200, "CEST", "9999-07-01 14:00:00"},
    {"Europe/Berlin", 253402257600, 3600, "CET", "9999-12-31 13:00:00"},
    {"Asia/Kolkata", -3692131200, 21208, "LMT", "1853-01-01 05:53:28"},
    {"Asia/Kolkata", -3471292800, 21200, "HMT", "1860-01-01 05:53:20"},
    {"Asia/Kolkata", -2524521600, 19270, "MMT", "1890-01-01 05:21:10"},
    {"Asia/Kolkata", -2019686400, 19800, "IST", "1906-01-01 05:30:00"},
    {"Asia/Kolkata", -891561600, 23400, "+0630", "1941-10-01 06:30:00"},
    {"Asia/Kolkata", -871948800, 19800, "IST", "1942-05-16 05:30:00"},
    {"Asia/Kolkata", -862617600, 23400, "+0630", "1942-09-01 06:30:00"},
    {"Asia/Kolkata", -764121600, 19800, "IST", "1945-10-15 05:30:00"},
    {"Asia/Kolkata", 1232020800, 19800, "IST", "2009-01-15 17:30:00"},
    {"Asia/Kolkata", 253386446400, 19800, "IST", "9999-07-01 17:30:00"},
    {"America/Sao_Paulo", -1767312000, -11188, "LMT", "1913-12-30 20:53:32"},
    {"America/Sao_Paulo", 1518919199, -7200, "-02", "2018-02-17 23:59:59"},
    {"America/Sao_Paulo", 1518919200, -10800, "-03", "2018-02-17 23:00:00"},
    {"America/Sao_Paulo", 1541300399, -10800, "-03", "2018-11-03 23:59:59"},
    {"America/Sao_Paulo", 1541300400, -7200, "-02", "2018-11-04 01:00:00"},
    {"America/Sao_Paulo", 1550368799, -7200, "-02", "2019-02-16 23:59:59"},
    {"America/Sao_Paulo", 1550368800, -10800, "-03", "2019-02-16 23:00:00"},
    {"America/Sao_Paulo", 1575158400, -10800, "-03", "2019-11-30 21:00:00"},
    {"America/Sao_Paulo", 1705276800, -10800, "-03", "2024-01-14 21:00:00"},
    {"America/Sao_Paulo", 253371974400, -10800, "-03", "9999-01-14 21:00:00"},
    {"Pacific/Apia", -2445422400, -41216, "LMT", "1892-07-04 00:33:04"},
    {"Pacific/Apia", -2445336000, -41216, "LMT", "1892-07-05 00:33:04"},
    {"Pacific/Apia", 1285498800, -36000, "-10", "2010-09-26 01:00:00"},
    {"Pacific/Apia", 1325239199, -36000, "-10", "2011-12-29 23:59:59"},
    {"Pacific/Apia", 1325239200, 50400, "+14", "2011-12-31 00:00:00"},
    {"Pacific/Apia", 1333202400, 46800, "+13", "2012-04-01 03:00:00"},
    {"Pacific/Apia", 1610668800, 50400, "+14", "2021-01-15 14:00:00"},
    {"Pacific/Apia", 1642204800, 46800, "+13", "2022-01-15 13:00:00"},
    {"Africa/Casablanca", -1773100800, -1820, "LMT", "1913-10-24 23:29:40"},
    {"Africa/Casablanca", 448243200, 3600, "+01", "1984-03-16 01:00:00"},
    {"Africa/Casablanca", 1212278400, 3600, "+01", "2008-06-01 01:00:00"},
    {"Africa/Casablanca", 1540641600, 3600, "+01", "2018-10-27 13:00:00"},
    {"Africa/Casablanca", 1540728000, 3600, "+01", "2018-10-28 13:00:00"},
    {"Africa/Casablanca", 1557021599, 3600, "+01", "2019-05-05 02:59:59"},
    {"Africa/Casablanca", 1557025200, 0, "+00", "2019-05-05 03:00:00"},
    {"Africa/Casablanca", 1560045599, 0, "+00", "2019-06-09 01:59:59"},
    {"Africa/Casablanca", 1560045600, 3600, "+01", "2019-06-09 03:00:00"},
    {"Africa/Casablanca", 1579046400, 3600, "+01", "2020-01-15 01:00:00"},
    {"America/New_York", -2717650801, -17762, "LMT", "1883-11-18 12:03:57"},
    {"America/New_York", -2717650800, -18000, "EST", "1883-11-18 12:00:00"},
    {"America/New_York", 1142164800, -18000, "EST", "2006-03-12 07:00:00"},
    {"America/New_York", 1173596399, -18000, "EST", "2007-03-11 01:59:59"},
    {"America/New_York", 1173596400, -14400, "EDT", "2007-03-11 03:00:00"},
    {"America/New_York", 1194155999, -14400, "EDT", "2007-11-04 01:59:59"},
    {"America/New_York", 1194156000, -18000, "EST", "2007-11-04 01:00:00"},
    {"America/New_York", 2161555200, -14400, "EDT", "2038-06-30 20:00:00"},
    {"Australia/Lord_Howe", 1232020800, 39600, "+11", "2009-01-15 23:00:00"},
    {"Australia/Lord_Howe", 1238857200, 37800, "+1030", "2009-04-05 01:30:00"},
    {"Australia/Lord_Howe", 1245067200, 37800, "+1030", "2009-06-15 22:30:00"},
    {"Australia/Lord_Howe", 253372017600, 39600, "+11", "9999-01-15 23:00:00"},
    {"Asia/Kathmandu", 504901799, 19800, "+0530", "1985-12-31 23:59:59"},
    {"Asia/Kathmandu", 504901800, 20700, "+0545", "1986-01-01 00:15:00"},
    {"Asia/Kathmandu", 1232020800, 20700, "+0545", "2009-01-15 17:45:00"},
    {"Europe/Dublin", -1680469200, 0, "GMT", "1916-10-01 03:00:00"},
    {"Europe/Dublin", 1252800, 3600, "IST", "1970-01-15 13:00:00"},
    {"Europe/Dublin", 1232020800, 0, "GMT", "2009-01-15 12:00:00"},
    {"Europe/Dublin", 1245067200, 3600, "IST", "2009-06-15 13:00:00"},
    {"Europe/Dublin", 2525860800, 0, "GMT", "2050-01-15 12:00:00"},
    {"Europe/Dublin", 2538907200, 3600, "IST", "2050-06-15 13:00:00"},
    {"America/Nuuk", 1679792400, -7200, "-02", "2023-03-25 23:00:00"},
    {"America/Nuuk", 1711846799, -7200, "-02", "2024-03-30 22:59:59"},
    {"America/Nuuk", 1711846800, -3600, "-01", "2024-03-31 00:00:00"},
    {"America/Nuuk", 2531955599, -7200, "-02", "2050-03-26 22:59:59"},
    {"America/Nuuk", 2531955600, -3600, "-01", "2050-03-27 00:00:00"},
    {"America/Nuuk", 2550704399, -3600, "-01", "2050-10-29 23:59:59"},
    {"America/Nuuk", 2550704400, -7200, "-02", "2050-10-29 23:00:00"},
    {"Europe/Moscow", -1593820800, 14400, "MSD", "1919-07-01 04:00:00"},
    {"Europe/Moscow", 1277942400, 14400, "MSD", "2010-07-01 04:00:00"},
    {"Europe/Moscow", 1326585600, 14400, "MSK", "2012-01-15 04:00:00"},
    {"Europe/Moscow", 1421280000, 10800, "MSK", "2015-01-15 03:00:00"},
    {"Antarctica/Troll", 1074124800, 0, "-00", "2004-01-15 00:00:00"},
    {"Antarctica/Troll", 1231977600, 0, "+00", "2009-01-15 00:00:00"},
    {"Antarctica/Troll", 1245024000, 7200, "+02", "2009-06-15 02:00:00"},
    {"Antarctica/Troll", 2854483200, 7200, "+02", "2060-06-15 02:00:00"},
    {"Africa/Monrovia", 1209600, -2670, "MMT", "1970-01-14 23:15:30"},
    {"Africa/Monrovia", 63593069, -2670, "MMT", "1972-01-06 23:59:59"},
    {"Africa/Monrovia", 63593070, 0, "GMT", "1972-01-07 00:44:30"},
    {"Etc/GMT+5", -11676096000, -18000, "-05", "1599-12-31 19:00:00"},
    {"Etc/GMT+5", 253386403200, -18000, "-05", "9999-06-30 19:00:00"},
    {"UTC", -59011459200, 0, "UTC", "0100-01-01 00:00:00"},
    {"UTC", 253402300799, 0, "UTC", "9999-12-31 23:59:59"},
};

DateSettings settings() {
    DateSettings settings;
    settings.currentYear = 2026;
    return settings;
}

TimeZone zoneNamed(const std::string &name) {
    const Date now = Date::fromCivil({2026, 1, 15, 12});
    TimeZone zone(now);
    setExactZone(zone, ExactZones(kSystem).find(name), now);
    return zone;
}

std::string failureOf(const ExactZones &zones, const std::string &name) {
    std::string failure = "none";
    EXPECT_THROW(
        {
            try {
                zones.find(name);
            } catch (const ZoneFailure &thrown) {
                failure = thrown.what();
                throw;
            }
        },
        ZoneFailure);
    return failure;
}

TEST(ExactZone, hasTheLawOfEachDate) {
    for (const Truth &truth : kTruth) {
        const TimeZone zone = zoneNamed(truth.zone);
        const Date utc = Date::fromUnixSeconds(truth.unixSeconds);
        const ZoneMoment law = zone.exact->at(utc);
        EXPECT_EQ(law.offset.count(), truth.offset) << truth.zone << " " << truth.unixSeconds;
        EXPECT_EQ(law.abbreviation, truth.abbreviation) << truth.zone << " " << truth.unixSeconds;
        const Date local = convertDateToZone(utc, zone, true);
        EXPECT_EQ(formatDate(local, "yyyy-mm-dd Hh:Nn:Ss"), truth.local) << truth.zone;
        EXPECT_EQ(local, convertDateToZone(utc, zone, false)) << "the switch is the classic zones'";
        EXPECT_EQ(zoneCell(utc, zone, settings()),
                  std::string(truth.local) + " " + truth.abbreviation)
            << "dates of any age are shown";
    }
}

TEST(ExactZone, leavesWhatLiesAfterTheCalendar) {
    const TimeZone zone = zoneNamed("Europe/Berlin");
    EXPECT_FALSE(convertDateToZone(Date(), zone, true).has());
    EXPECT_EQ(zoneCell(Date(), zone, settings()), "");
    const Date last = Date::fromCivil({9999, 12, 31, 23, 30});
    EXPECT_FALSE(convertDateToZone(last, zone, true).has()) << "it is the year 10000 in Berlin";
    EXPECT_EQ(zoneProperty(last, zone, settings()), "");
}

TEST(ExactZone, isShownWithItsOffsetAndItsName) {
    const TimeZone berlin = zoneNamed("europe/BERLIN");
    EXPECT_EQ(zoneProperty(Date::fromUnixSeconds(1245067200), berlin, settings()),
              "2009-06-15 14:00:00 [+0200 CEST]");
    EXPECT_EQ(zoneProperty(Date::fromUnixSeconds(-2422054409), berlin, settings()),
              "1893-03-31 23:59:59 [+005328 LMT]");
    EXPECT_EQ(zoneHeading(berlin), "[Europe/Berlin]");
    EXPECT_EQ(zoneKey(berlin), "Europe/Berlin");
    EXPECT_THAT(exactZoneText(berlin), testing::MatchesRegex("Europe/Berlin, zoneinfo 20.*"));
    EXPECT_EQ(berlin.tzBias, -60);
    EXPECT_EQ(berlin.tzBiasAsText, "+0100") << "in January, when it was set";
    EXPECT_EQ(berlin.daylightCode, "CET");
    EXPECT_EQ(berlin.tzName, "Europe/Berlin");
    EXPECT_EQ(
        zoneProperty(Date::fromUnixSeconds(1232020800), zoneNamed("America/Nuuk"), settings()),
        "2009-01-15 09:00:00 [-0300 -03]");
}

TEST(ExactZone, givesWayToAClassicOne) {
    TimeZone zone = zoneNamed("Europe/Berlin");
    zone.setToDefault(Date::fromCivil({2026, 1, 15}));
    EXPECT_EQ(zone.exact, nullptr);
    EXPECT_EQ(zoneKey(zone), "15");
    EXPECT_EQ(exactZoneText(zone), "");
}

TEST(ExactZone, knowsItsAbbreviations) {
    const auto all = zoneNamed("Europe/Berlin").exact->abbreviations();
    EXPECT_EQ(all, (std::vector<std::string>{"CEMT", "CEST", "CET", "LMT"}));
}

TEST(ExactZones, listTheNamesOfTheDatabaseOnly) {
    const auto names = ExactZones(kSystem).names();
    EXPECT_GT(names.size(), 400U);
    for (const char *name : {"Europe/Berlin", "Asia/Calcutta", "America/Argentina/Ushuaia", "UTC"})
        EXPECT_THAT(names, Contains(name));
    for (const char *name : {"posix/Europe/Berlin", "right/UTC", "localtime", "posixrules",
                             "Factory", "tzdata.zi", "zone.tab"})
        EXPECT_THAT(names, Not(Contains(name)));
    for (const std::string &name : names)
        EXPECT_NE(ExactZones(kSystem).find(name), nullptr) << name;
}

TEST(ExactZones, neverOpenWhatIsNoZone) {
    for (const std::string &name :
         {std::string(), std::string("../../etc/passwd"), std::string("/etc/localtime"),
          std::string("Europe"), std::string("Europe/"), std::string("Europe/../Europe/Berlin"),
          std::string("Europe/Berlin\0", 14), std::string("Europe/M\xC3\xBCnchen"),
          std::string("\xFF\xFE"), std::string("tzdata.zi"), std::string(100000, '/'),
          std::string("posix/Europe/Berlin"), std::string("Europe/Berlin ")})
        EXPECT_EQ(ExactZones(kSystem).find(name), nullptr) << name.substr(0, 30);
}

TEST(ExactZones, aSystemWithoutThemIsNamed) {
    const ExactZones none("/no/such/zoneinfo");
    EXPECT_FALSE(none.areThere());
    EXPECT_TRUE(none.names().empty());
    EXPECT_THAT(failureOf(none, "Europe/Berlin"), HasSubstr("\"/no/such/zoneinfo\""));
    EXPECT_THAT(failureOf(none, "Europe/Berlin"), HasSubstr("tzdata"));
}

TEST(ExactZones, aDamagedFileIsNamed) {
    const test::TempFolder folder;
    const Bytes sound = readWhole(kSystem / "Europe/Berlin");
    const std::string text(ByteView(sound).raw());
    const ExactZones zones(folder.path());
    EXPECT_THAT(failureOf(zones, "Europe/Berlin"), HasSubstr("is not there"));
    folder.write("Europe/Berlin", text);
    EXPECT_NE(zones.find("Europe/Berlin"), nullptr);
    EXPECT_EQ(zones.version(), "unknown");
    for (const std::string &damaged :
         {std::string(), std::string("TZif"), std::string("root:x:0:0"),
          text.substr(0, text.size() / 2), text.substr(0, text.size() - 1), text + "x",
          text.substr(0, text.size() - 3) + "\xFF\n", std::string("TZif2\n\n"), text + "\n"}) {
        folder.write("Europe/Berlin", damaged);
        EXPECT_THAT(failureOf(zones, "Europe/Berlin"),
                    HasSubstr((folder.path() / "Europe/Berlin").string()));
    }
}

TEST(ExactZones, tellTheVersion) {
    const test::TempFolder folder;
    folder.write("+VERSION", "2024a\n");
    EXPECT_EQ(ExactZones(folder.path()).version(), "2024a");
    folder.write("tzdata.zi", "# version 2025b\n# ddeps backzone\n");
    EXPECT_EQ(ExactZones(folder.path()).version(), "2025b");
    EXPECT_THAT(ExactZones(kSystem).version(), testing::MatchesRegex("20[0-9][0-9][a-z]*"));
}

} // namespace
} // namespace nv
