#include "support/TestDoubles.h"
#include "time/DateFormat.h"
#include "time/SourceClocks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace nv {
namespace {

constexpr auto kMostSigned = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeastSigned = std::numeric_limits<std::int64_t>::min();
constexpr auto kMostUnsigned = std::numeric_limits<std::uint64_t>::max();
/// 2009-02-13 23:31:30 in each clock.
constexpr std::int64_t kUnix = 1234567890;
constexpr std::int64_t kChrome = (kUnix + 11644473600) * 1'000'000;
constexpr std::uint64_t kFileTime = std::uint64_t{kChrome} * 10;

constexpr auto kEpoch = "1970-01-01T00:00:00Z";
constexpr auto kMoment = "2009-02-13T23:31:30Z";

std::string unixText(std::string_view text) {
    return isoUtc(unixSecondsToDate(text));
}

TEST(UnixSecondsToDate, countsTheFirstTenCharactersOnly) {
    EXPECT_EQ(isoUtc(unixSecondsToDate(kUnix)), kMoment);
    EXPECT_EQ(unixSecondsToDate(1234567890123), unixSecondsToDate(kUnix));
    EXPECT_EQ(unixSecondsToDate(1234567890123456), unixSecondsToDate(kUnix));
    EXPECT_EQ(unixSecondsToDate(kMostSigned), unixSecondsToDate(9223372036));
    EXPECT_EQ(unixText("1234567890123"), kMoment);
    EXPECT_EQ(unixText("1234567890abc"), kMoment);
    // A sign is a character too.
    EXPECT_EQ(unixSecondsToDate(-1234567890), unixSecondsToDate(-123456789));
    EXPECT_EQ(unixSecondsToDate(kLeastSigned), unixSecondsToDate(-922337203));
}

TEST(UnixSecondsToDate, takesAllOfTenDigits) {
    EXPECT_EQ(isoUtc(unixSecondsToDate(0)), kEpoch);
    EXPECT_EQ(isoUtc(unixSecondsToDate(-1)), "1969-12-31T23:59:59Z");
    EXPECT_EQ(isoUtc(unixSecondsToDate(2147483648)), "2038-01-19T03:14:08Z");
    EXPECT_EQ(isoUtc(unixSecondsToDate(9999999999)), "2286-11-20T17:46:39Z");
}

TEST(UnixSecondsToDate, readsNumericTextAndDropsFractions) {
    EXPECT_EQ(unixText(" 90 "), "1970-01-01T00:01:30Z");
    EXPECT_EQ(unixText("+90"), "1970-01-01T00:01:30Z");
    EXPECT_EQ(unixText("90.9"), "1970-01-01T00:01:30Z");
    EXPECT_EQ(unixText("-0.5"), "1969-12-31T23:59:59Z");
    EXPECT_EQ(unixText("9e1"), "1970-01-01T00:01:30Z");
    EXPECT_EQ(unixText("1234567890.75"), kMoment);
}

TEST(UnixSecondsToDate, givesTheEpochForWhatIsNoNumberOrNoDate) {
    for (const char *text : {"", " ", "abc", "12x", "-", "+", "+-5", "--5", "0x10", "1,5", "inf",
                             "nan", "infinity", "1e", "1e999", "9e99", "-9e99", "\xC3\xA9\xFF"})
        EXPECT_EQ(unixText(text), kEpoch) << text;
    EXPECT_EQ(unixText(std::string_view("12\0", 3)), kEpoch);
    EXPECT_EQ(unixText(std::string(100'000, '\xFF')), kEpoch);
}

TEST(SecondsToDate1970, addsTheSecondsAsTheyAre) {
    EXPECT_EQ(isoUtc(secondsToDate1970(0)), kEpoch);
    EXPECT_EQ(isoUtc(secondsToDate1970(1234567890)), kMoment);
    EXPECT_EQ(isoUtc(secondsToDate1970(1234567890.999)), kMoment);
    EXPECT_EQ(isoUtc(secondsToDate1970(4294967295)), "2106-02-07T06:28:15Z");
    // No cutting to ten digits here.
    EXPECT_FALSE(secondsToDate1970(1234567890123).has());
}

TEST(SecondsToDate1970, isNoDateOutsideOfTheCalendar) {
    EXPECT_EQ(isoUtc(secondsToDate1970(253402300799)), "9999-12-31T23:59:59Z");
    EXPECT_FALSE(secondsToDate1970(253402300800).has());
    EXPECT_EQ(isoUtc(secondsToDate1970(-59011459200)), "0100-01-01T00:00:00Z");
    EXPECT_FALSE(secondsToDate1970(-59011459201).has());
    EXPECT_FALSE(secondsToDate1970(std::nan("")).has());
    EXPECT_FALSE(secondsToDate1970(std::numeric_limits<double>::infinity()).has());
    EXPECT_FALSE(secondsToDate1970(-1e300).has());
}

TEST(SecondsToDate2001, countsFromTheYear2001) {
    EXPECT_EQ(isoUtc(secondsToDate2001(0)), "2001-01-01T00:00:00Z");
    EXPECT_EQ(isoUtc(secondsToDate2001(256260690.4)), kMoment);
    EXPECT_EQ(isoUtc(secondsToDate2001(-1)), "2000-12-31T23:59:59Z");
    EXPECT_FALSE(secondsToDate2001(std::nan("")).has());
}

TEST(ChromeTimeToDate, countsMicrosecondsFrom1601) {
    EXPECT_EQ(chromeTimeToDate(0).days(), -109205);
    EXPECT_EQ(isoUtc(chromeTimeToDate(kChrome)), kMoment);
    EXPECT_EQ(isoUtc(chromeTimeToDate(kChrome + 999'999)), kMoment);
    EXPECT_EQ(isoUtc(chromeTimeToDate(kChrome + 1'000'000)), "2009-02-13T23:31:31Z");
    EXPECT_EQ(isoUtc(chromeTimeToDate(-1)), "1600-12-31T23:59:59Z");
}

TEST(ChromeTimeToDate, isExactForEverySecondOfADay) {
    for (std::int64_t second = 0; second < 86400; ++second)
        ASSERT_EQ(chromeTimeToDate(kChrome + second * 1'000'000).unixSeconds(), kUnix + second);
}

TEST(ChromeTimeToDate, isNoDateOutsideOfTheCalendar) {
    EXPECT_FALSE(chromeTimeToDate(kMostSigned).has());
    EXPECT_FALSE(chromeTimeToDate(kLeastSigned).has());
    EXPECT_FALSE(chromeTimeToDate(kMostUnsigned).has());
    EXPECT_EQ(isoUtc(chromeTimeToDate(265046774399999999)), "9999-12-31T23:59:59Z");
    EXPECT_FALSE(chromeTimeToDate(265046774400000000).has());
}

TEST(FileTimeToUtc, readsTicksAndDropsFractions) {
    EXPECT_EQ(isoUtc(fileTimeToUtc(kFileTime)), kMoment);
    EXPECT_EQ(isoUtc(fileTimeToUtc(kFileTime + 9'999'999)), kMoment);
    EXPECT_EQ(isoUtc(fileTimeToUtc(kFileTime - 1)), "2009-02-13T23:31:29Z");
    EXPECT_EQ(isoUtc(fileTimeToUtc(1)), "1601-01-01T00:00:00Z");
}

TEST(FileTimeToUtc, isNoDateForZeroAndOutsideOfTheCalendar) {
    EXPECT_FALSE(fileTimeToUtc(0).has());
    EXPECT_FALSE(fileTimeToUtc(kMostUnsigned).has());
    EXPECT_FALSE(fileTimeToUtc(std::uint64_t{1} << 63).has());
    EXPECT_EQ(isoUtc(fileTimeToUtc(2650467743999999999)), "9999-12-31T23:59:59Z");
    EXPECT_FALSE(fileTimeToUtc(2650467744000000000).has());
}

TEST(LocalDates, useTheOffsetOfThisMomentWhateverTheDate) {
    test::FixedClock clock;
    clock.offset = std::chrono::minutes(-240);
    EXPECT_EQ(isoUtc(fileTimeToLocalDate(kFileTime, clock)), "2009-02-13T19:31:30Z");
    const Date winter = Date::fromCivil({2009, 1, 15, 12});
    const Date summer = Date::fromCivil({2009, 7, 15, 12});
    EXPECT_EQ(isoUtc(utcDateToLocal(winter, clock)), "2009-01-15T08:00:00Z");
    EXPECT_EQ(isoUtc(utcDateToLocal(summer, clock)), "2009-07-15T08:00:00Z");
    EXPECT_EQ(isoUtc(localDateToUTC(summer, clock)), "2009-07-15T16:00:00Z");
}

TEST(LocalDates, undoEachOtherToTheSameValueInEveryZone) {
    test::FixedClock clock;
    for (int minutes = -14 * 60; minutes <= 14 * 60; minutes += 15) {
        clock.offset = std::chrono::minutes(minutes);
        EXPECT_EQ(localDateToUTC(fileTimeToLocalDate(kFileTime, clock), clock),
                  fileTimeToUtc(kFileTime));
    }
}

TEST(LocalDates, areNoDateWithoutOneAndOutsideOfTheCalendar) {
    test::FixedClock clock;
    clock.offset = std::chrono::minutes(60);
    EXPECT_FALSE(fileTimeToLocalDate(0, clock).has());
    EXPECT_FALSE(localDateToUTC({}, clock).has());
    EXPECT_FALSE(utcDateToLocal({}, clock).has());
    EXPECT_FALSE(utcDateToLocal(Date::fromCivil({9999, 12, 31, 23, 30}), clock).has());
    EXPECT_FALSE(localDateToUTC(Date::fromCivil({100, 1, 1, 0, 30}), clock).has());
}

TEST(DosDateToUtc, readsTheBitsOfBothWords) {
    // 2009-02-13 23:31:30
    EXPECT_EQ(isoUtc(dosDateToUtc((29 << 9) | (2 << 5) | 13, (23 << 11) | (31 << 5) | 15)),
              kMoment);
    EXPECT_EQ(isoUtc(dosDateToUtc((1 << 5) | 1, 0)), "1980-01-01T00:00:00Z");
    EXPECT_EQ(isoUtc(dosDateToUtc(0xFF9F, 0xBF7D)), "2107-12-31T23:59:58Z");
}

TEST(DosDateToUtc, isNoDateWhenTheDayOrTheTimeIsImpossible) {
    EXPECT_FALSE(dosDateToUtc(0, 0).has());
    EXPECT_FALSE(dosDateToUtc(0xFFFF, 0xFFFF).has());
    EXPECT_FALSE(dosDateToUtc((13 << 5) | 1, 0).has());
    EXPECT_FALSE(dosDateToUtc((29 << 9) | (2 << 5) | 29, 0).has()); // 2009-02-29
    EXPECT_FALSE(dosDateToUtc((1 << 5) | 1, 24 << 11).has());
    EXPECT_FALSE(dosDateToUtc((1 << 5) | 1, 60 << 5).has());
    EXPECT_FALSE(dosDateToUtc((1 << 5) | 1, 30).has());
}

} // namespace
} // namespace nv
