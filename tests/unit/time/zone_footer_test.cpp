#include "time/ZoneFooter.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

/// "<offset in seconds> <abbreviation>".
std::string lawAt(std::string_view rule, std::int64_t unixSeconds) {
    const auto footer = ZoneFooter::parse(rule);
    if (!footer)
        return "no rule";
    const ZoneMoment law = footer->at(unixSeconds);
    return std::to_string(law.offset.count()) + " " + law.abbreviation;
}

constexpr std::int64_t kJune = 2223720000;     // 2040-06-19 12:00:00
constexpr std::int64_t kDecember = 2239531200; // 2040-12-19 12:00:00

TEST(ZoneFooter, goesByWeekdays) {
    EXPECT_EQ(lawAt("CET-1CEST,M3.5.0,M10.5.0/3", kJune), "7200 CEST");
    EXPECT_EQ(lawAt("CET-1CEST,M3.5.0,M10.5.0/3", kDecember), "3600 CET");
    EXPECT_EQ(lawAt("NZST-12NZDT,M9.5.0,M4.1.0/3", kJune), "43200 NZST");
    EXPECT_EQ(lawAt("NZST-12NZDT,M9.5.0,M4.1.0/3", kDecember), "46800 NZDT");
    EXPECT_EQ(lawAt("IST-1GMT0,M10.5.0,M3.5.0/1", kJune), "3600 IST") << "winter is the exception";
    EXPECT_EQ(lawAt("IST-1GMT0,M10.5.0,M3.5.0/1", kDecember), "0 GMT");
}

TEST(ZoneFooter, takesClocksBeforeAndAfterTheDay) {
    // The last Sunday of March, the 25th, begins at 02:00 UTC there: the clocks change an hour
    // before.
    constexpr std::int64_t kChange = 2216250000; // 2040-03-25 01:00:00
    EXPECT_EQ(lawAt("<-02>2<-01>,M3.5.0/-1,M10.5.0/0", kChange - 1), "-7200 -02");
    EXPECT_EQ(lawAt("<-02>2<-01>,M3.5.0/-1,M10.5.0/0", kChange), "-3600 -01");
    // The fourth Thursday is the 22nd of March; 50 hours behind it is Saturday, two o'clock.
    constexpr std::int64_t kGaza = 2216160000; // 2040-03-24 00:00:00
    EXPECT_EQ(lawAt("EET-2EEST,M3.4.4/50,M10.4.4/50", kGaza - 1), "7200 EET");
    EXPECT_EQ(lawAt("EET-2EEST,M3.4.4/50,M10.4.4/50", kGaza), "10800 EEST");
}

TEST(ZoneFooter, countsDaysOfTheYear) {
    // 2040 is a leap year: J60 is the first of March in each year, 60 is it in leap years.
    constexpr std::int64_t kMarch = 2214172800; // 2040-03-01 00:00:00
    for (const char *rule : {"AAA0BBB,J60/0,J300/0", "AAA0BBB,60/0,300/0"}) {
        EXPECT_EQ(lawAt(rule, kMarch - 1), "0 AAA") << rule;
        EXPECT_EQ(lawAt(rule, kMarch), "3600 BBB") << rule;
    }
}

TEST(ZoneFooter, mayHaveOneTimeOnly) {
    EXPECT_EQ(lawAt("<+0545>-5:45", kJune), "20700 +0545");
    EXPECT_EQ(lawAt("MMT+0:44:30", kJune), "-2670 MMT");
}

TEST(ZoneFooter, refusesWhatIsNoRule) {
    for (const char *text : {"",
                             "CET",
                             "1",
                             "CET-1CEST",
                             "CET-1CEST,M3.5.0",
                             "CET-1CEST,M3.5.0,",
                             "<CET-1",
                             "<>1",
                             "CET-168",
                             "CET-1:60",
                             "CET-1CEST,M13.5.0,M10.5.0",
                             "CET-1CEST,M0.5.0,M10.5.0",
                             "CET-1CEST,M3.6.0,M10.5.0",
                             "CET-1CEST,M3.0.0,M10.5.0",
                             "CET-1CEST,M3.5.7,M10.5.0",
                             "CET-1CEST,J0,J300",
                             "CET-1CEST,J366,J300",
                             "CET-1CEST,M3.5.0,M10.5.0/3x",
                             "CET-99999999999999999999",
                             "C\xC3\x84T-1",
                             "CET-1 "})
        EXPECT_FALSE(ZoneFooter::parse(text)) << text;
}

} // namespace
} // namespace nv
