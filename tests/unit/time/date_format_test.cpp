#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

const Date kMorning = Date::fromCivil({2009, 9, 7, 9, 5, 3}); // a Monday
const Date kEvening = Date::fromCivil({2009, 11, 25, 21, 45, 33});

std::string morning(std::string_view format) {
    return formatDate(kMorning, format);
}

TEST(FormatDate, knowsEveryLineOfTheHelp) {
    EXPECT_EQ(morning("yyyy"), "2009");
    EXPECT_EQ(morning("yy"), "09");
    EXPECT_EQ(morning("d"), "7");
    EXPECT_EQ(morning("dd"), "07");
    EXPECT_EQ(morning("ddd"), "Mon");
    EXPECT_EQ(morning("m"), "9");
    EXPECT_EQ(morning("mm"), "09");
    EXPECT_EQ(morning("mmm"), "Sep");
    EXPECT_EQ(morning("h"), "9");
    EXPECT_EQ(morning("Hh"), "09");
    EXPECT_EQ(morning("n"), "5");
    EXPECT_EQ(morning("Nn"), "05");
    EXPECT_EQ(morning("s"), "3");
    EXPECT_EQ(morning("Ss"), "03");
    EXPECT_EQ(morning("AM/PM"), "AM");
}

TEST(FormatDate, knowsTheFormatsInUse) {
    EXPECT_EQ(morning("yyyy-mm-dd"), "2009-09-07");
    EXPECT_EQ(morning("YYYY-MM-DD"), "2009-09-07");
    EXPECT_EQ(morning("Hh:Nn:Ss"), "09:05:03");
    EXPECT_EQ(morning("dd-mmm-yyyy Hh:Nn:Ss"), "07-Sep-2009 09:05:03");
    EXPECT_EQ(morning("dd-mm-yyyy Hh:Nn:Ss"), "07-09-2009 09:05:03");
    EXPECT_EQ(morning("MM/DD/YY"), "09/07/09");
    EXPECT_EQ(formatDate(kEvening, "yyyy-mm-dd Hh:Mm:Ss AMPM"), "2009-11-25 09:45:33 PM");
    EXPECT_EQ(formatDate(kEvening, "dddd, mmmm dd, yyyy Hh:Mm:Ss AMPM"),
              "Wednesday, November 25, 2009 09:45:33 PM");
}

TEST(FormatDate, readsTheWholeDayClockAsATimeOf24Hours) {
    EXPECT_EQ(formatDate(kEvening, "24:00:00"), "21:45:33");
    EXPECT_EQ(formatDate(kEvening, "YYYY-MM-DD 24:00:00"), "2009-11-25 21:45:33");
    EXPECT_EQ(formatDate(kEvening, "24:00"), "24:00");
}

TEST(FormatDate, takesMForMinutesRightAfterTheHoursOnly) {
    EXPECT_EQ(morning("Hh:Mm:Ss"), "09:05:03");
    EXPECT_EQ(morning("h m"), "9 5");
    EXPECT_EQ(morning("Hh:Mm mm"), "09:05 09");
    EXPECT_EQ(morning("Hh:Nn mm"), "09:05 09");
    EXPECT_EQ(morning("Hh dd mm"), "09 07 09");
    EXPECT_EQ(morning("Hh mmm"), "09 Sep");
    EXPECT_EQ(morning("mm Hh"), "09 09");
}

TEST(FormatDate, runsFrom1To12WithAMarkOfTheHalfDay) {
    const auto at = [](int hour) {
        return formatDate(Date::fromCivil({2009, 1, 1, hour}), "h AM/PM");
    };
    EXPECT_EQ(at(0), "12 AM");
    EXPECT_EQ(at(1), "1 AM");
    EXPECT_EQ(at(11), "11 AM");
    EXPECT_EQ(at(12), "12 PM");
    EXPECT_EQ(at(23), "11 PM");
    EXPECT_EQ(formatDate(kEvening, "Hh:Nn am/pm"), "09:45 pm");
    EXPECT_EQ(formatDate(kEvening, "A/P h"), "P 9");
    EXPECT_EQ(formatDate(kEvening, "a/p h"), "p 9");
}

TEST(FormatDate, copiesWhatIsNoLetterOfItsOwn) {
    EXPECT_EQ(morning("[yyyy] k \xC3\xA9"), "[2009] k \xC3\xA9");
    EXPECT_EQ(morning("\\d\\\\d"), "d\\7");
    EXPECT_EQ(morning("\"day \"d"), "day 7");
    EXPECT_EQ(morning("d \"open"), "7 open");
    EXPECT_EQ(morning("d\\"), "7");
    EXPECT_EQ(morning("\"\"d\""), "7");
    EXPECT_EQ(morning(""), "");
}

TEST(FormatDate, takesLongerRunsForTheLongestForm) {
    EXPECT_EQ(morning("yyyyyy"), "2009");
    EXPECT_EQ(morning("ddddd"), "Monday");
    EXPECT_EQ(morning("mmmmm"), "September");
    EXPECT_EQ(morning("hhhh:nnnn:ssss"), "09:05:03");
}

TEST(FormatDate, showsFarYearsWithFourDigits) {
    EXPECT_EQ(formatDate(Date::fromCivil({100, 1, 2}), "yyyy-mm-dd ddd"), "0100-01-02 Sat");
    EXPECT_EQ(formatDate(Date::fromCivil({9999, 12, 31, 23, 59, 59}), "yyyy-mm-dd Hh:Nn:Ss"),
              "9999-12-31 23:59:59");
}

TEST(FormatDate, isEmptyWithoutADate) {
    EXPECT_EQ(formatDate({}, "yyyy \"text\""), "");
    EXPECT_EQ(isoUtc({}), "");
}

TEST(IsoUtc, isIso8601) {
    EXPECT_EQ(isoUtc(kEvening), "2009-11-25T21:45:33Z");
    EXPECT_EQ(isoUtc(Date::fromCivil({100, 1, 2})), "0100-01-02T00:00:00Z");
}

} // namespace
} // namespace nv
