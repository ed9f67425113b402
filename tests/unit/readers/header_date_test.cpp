#include "readers/HeaderDate.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

std::string whole(std::string_view text) {
    return isoUtc(headerDate(text));
}

std::string behindDayName(std::string_view text) {
    return isoUtc(headerDateBehindDayName(text));
}

TEST(HeaderDates, areReadInTheFormOfServers) {
    EXPECT_EQ(whole("Wed, 09 Mar 2011 18:00:07 GMT"), "2011-03-09T18:00:07Z");
    EXPECT_EQ(whole("9 march 2011 8:05"), "2011-03-09T08:05:00Z");
    EXPECT_EQ(whole("Sunday, 06-Nov-94 08:49:37 GMT"), "1994-11-06T08:49:37Z");
    EXPECT_EQ(whole("06-Nov-29 08:49:37"), "2029-11-06T08:49:37Z");
    EXPECT_EQ(whole("06-Nov-30 08:49:37 UTC"), "1930-11-06T08:49:37Z");
    EXPECT_EQ(whole("29 Feb 2012 00:00:00 GMT"), "2012-02-29T00:00:00Z");
    EXPECT_EQ(whole("01 Jan 0100 00:00:00 GMT"), "0100-01-01T00:00:00Z");
    EXPECT_EQ(whole("31 Dec 9999 23:59:59 GMT"), "9999-12-31T23:59:59Z");
}

TEST(HeaderDates, areNoneWhereAnythingElseStands) {
    for (const char *text : {"",
                             "Wed,",
                             "Wed, ",
                             "0",
                             "2011-03-09 18:00:00",
                             "09 Mar 2011",
                             "09 Mar 2011 18:00:00 PST",
                             "09 Mar 2011 18:00:00 +0100",
                             "09 Mar 2011 18:00:00 GMT GMT",
                             "29 Feb 2011 00:00:00 GMT",
                             "32 Mar 2011 00:00:00 GMT",
                             "09 Foo 2011 00:00:00 GMT",
                             "09 Mar 2011 24:00:00 GMT",
                             "09 Mar 2011 18:60:00 GMT",
                             "09 Mar 2011 18:00:00:00 GMT",
                             "09 Mar 2011 1800 GMT",
                             "Sun Nov  6 08:49:37 1994",
                             "x 09 Mar 2011 18:00:00 GMT",
                             "009 Mar 2011 18:00:00 GMT",
                             "09 Mar 20111 18:00:00 GMT",
                             "+9 Mar 2011 18:00:00 GMT",
                             "09 Mar 2011 \xff:00:00 GMT"})
        EXPECT_EQ(whole(text), "") << text;
}

TEST(HeaderDates, loseTheirFirstFiveCharacters) {
    EXPECT_EQ(behindDayName("Wed, 09 Mar 2011 18:00:07 GMT"), "2011-03-09T18:00:07Z");
    EXPECT_EQ(behindDayName("Xyz: 09 Mar 2011 18:00:07 GMT"), "2011-03-09T18:00:07Z");
    EXPECT_EQ(behindDayName("W\u00e9d, 09 Mar 2011 18:00:07 GMT"), "2011-03-09T18:00:07Z");
    for (const char *text :
         {"", "Wed, ", "Wednesday, 09-Mar-11 18:00:07 GMT", "Wed Mar  9 18:00:07 2011"})
        EXPECT_EQ(behindDayName(text), "") << text;
}

TEST(HeaderDates, areNeverMadeOfHalfADay) {
    // The five characters would take the first digit of the day along.
    EXPECT_EQ(behindDayName("Wed,19 Mar 2011 18:00:07 GMT"), "");
    EXPECT_EQ(behindDayName("19 Mar 2011 18:00:07 GMT"), "");
}

} // namespace
} // namespace nv
