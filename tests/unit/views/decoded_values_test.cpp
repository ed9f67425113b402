#include "base/Base64.h"
#include "base/Text.h"
#include "time/DateFormat.h"
#include "views/record/DecodedValues.h"
#include "views/record/NumberTimes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// "name = value (rule)".
std::vector<std::string> linesOf(const std::vector<DecodedValue> &values) {
    std::vector<std::string> lines;
    for (const DecodedValue &value : values)
        lines.push_back(value.name + " = " + value.value + " (" + value.rule + ")");
    return lines;
}
std::vector<std::string> ofAddress(std::string_view address) {
    return linesOf(decodedAddress("URL", address));
}
std::vector<std::string> ofText(std::string_view text) {
    return linesOf(decodedText("cookie_value", text));
}
std::string base64Of(const std::string &text) {
    return base64(ByteView(Bytes(text.begin(), text.end())));
}
std::string readingOf(std::string_view digits) {
    const auto read = timeOfNumber(digits);
    return read ? isoUtc(read->utc) + " " + std::string(read->rule) : "none";
}

TEST(NumberTimes, eachClockHasItsOwnLength) {
    EXPECT_EQ(readingOf("1299006630"), "2011-03-01T19:10:30Z Unix time in seconds");
    EXPECT_EQ(readingOf("1299006630.25"), "2011-03-01T19:10:30Z Unix time in seconds");
    EXPECT_EQ(readingOf("1299006630250"), "2011-03-01T19:10:30Z Unix time in milliseconds");
    EXPECT_EQ(readingOf("1299006630250000"), "2011-03-01T19:10:30Z Unix time in microseconds");
    EXPECT_EQ(readingOf("1299006630250000000"), "2011-03-01T19:10:30Z Unix time in nanoseconds");
    EXPECT_EQ(readingOf("12943480230250000"),
              "2011-03-01T19:10:30Z WebKit time, microseconds since 1601");
    EXPECT_EQ(readingOf("129434802302500000"),
              "2011-03-01T19:10:30Z FILETIME, 100 nanoseconds since 1601");
    EXPECT_EQ(readingOf("634346034302500000"),
              "2011-03-01T19:10:30Z Ticks, 100 nanoseconds since the year 1");
}

TEST(NumberTimes, othersAreNone) {
    for (const char *text : {"",
                             ".",
                             "0",
                             "1",
                             "99999999",
                             "320699430",
                             "999999999",
                             "2000000000",
                             "2011030112",
                             "20110301121000",
                             "994519120255",
                             "12345678901",
                             "99999999999999",
                             "-1299006630",
                             "+1299006630",
                             "01299006630",
                             "1299006630x",
                             "9223372036854775807",
                             "9223372036854775808",
                             "99999999999999999999999999",
                             "1212092628029698048"})
        EXPECT_EQ(readingOf(text), "none") << text;
    // The ends of what is read.
    EXPECT_EQ(readingOf("1000000000"), "2001-09-09T01:46:40Z Unix time in seconds");
    EXPECT_EQ(readingOf("1999999999"), "2033-05-18T03:33:19Z Unix time in seconds");
}

TEST(NumberTimes, identifiersOfVersion1HoldTheirTime) {
    const auto read = timeOfUuid("c232ab00-9414-11ec-b3c8-9e6bdeced846");
    ASSERT_TRUE(read);
    EXPECT_EQ(isoUtc(read->utc), "2022-02-22T19:22:22Z");
    for (const char *text :
         {"c232ab00-9414-41ec-b3c8-9e6bdeced846", "c232ab00-9414-11ec-b3c8",
          "c232ab0g-9414-11ec-b3c8-9e6bdeced846", "c232ab00-9414-11ec-b3c8-9e6bdeced84z",
          "ffffffff-ffff-1fff-ffff-ffffffffffff"})
        EXPECT_FALSE(timeOfUuid(text)) << text;
}

TEST(DecodedValues, parametersStandInTheirOrder) {
    EXPECT_THAT(
        ofAddress("http://shop.example/item?id=7&name=sea+chart%20No.%2D1&empty=&x"),
        ElementsAre("id = 7 (Query parameter)", "name = sea chart No.-1 (Query parameter)"));
    EXPECT_THAT(ofAddress("http://map.example/#lat=53.5&lon=9.9"),
                ElementsAre("lat = 53.5 (Parameter after #)", "lon = 9.9 (Parameter after #)"));
    EXPECT_THAT(decodedAddress("Referrer", "http://h/?a=b"),
                ElementsAre(DecodedValue{"Referrer", "a", "b", "Query parameter"}));
}

TEST(DecodedValues, termsOfASearchAreTold) {
    EXPECT_THAT(ofAddress("https://www.google.com/search?hl=en&q=tide+tables"),
                ElementsAre("hl = en (Query parameter)", "q = tide tables (Search term)"));
    EXPECT_THAT(ofAddress("http://harbour.example/find/Search.php?query=%22low%20water%22"),
                ElementsAre("query = \"low water\" (Search term)"));
    EXPECT_THAT(ofAddress("http://notgoogle.example/?q=1"), ElementsAre("q = 1 (Query parameter)"));
    EXPECT_THAT(ofAddress("https://duckduckgo.com/?q=1299006630"),
                ElementsAre("q = 1299006630 (Search term)"));
}

/// Of a search for C++ and AT&T, as found and as records have it.
TEST(DecodedValues, codedSignsPartNoValues) {
    const std::string raw = "https://www.google.com/search?q=C%2B%2B+AT%26T+bomb&hl=en";
    const std::string address = percentDecode(raw);
    const auto expected =
        ElementsAre("q = C++ AT&T bomb (Search term)", "hl = en (Query parameter)");
    EXPECT_THAT(ofAddress(raw), expected);
    const auto by = [](const std::string &undone, std::string_view stored) {
        return linesOf(decodedAddress("URL", undone, stored));
    };
    EXPECT_THAT(by(address, raw), expected);
    EXPECT_THAT(by(address, "Visited: ada@" + raw), expected);
    EXPECT_THAT(by(address, "1/0/_dk_https://g.example https://g.example " + raw), expected);
    const std::string sharp = "http://www.bing.com/search?q=F%23+and+C%23%3B";
    EXPECT_THAT(by(percentDecode(sharp), sharp), ElementsAre("q = F# and C#; (Search term)"));
    const std::string nested = "http://a.example/?u=https%3A%2F%2Fb.example%2F%3Fa%3D1%26b%3D2&c=3";
    EXPECT_THAT(by(percentDecode(nested), nested),
                ElementsAre("u = https://b.example/?a=1&b=2 (Query parameter)",
                            "u > a = 1 (Query parameter)", "u > b = 2 (Query parameter)",
                            "c = 3 (Query parameter)"));
}

TEST(DecodedValues, withoutTheTextAsFoundOnlyWhatIsSureIsTold) {
    const auto by = [](const std::string &undone, std::string_view stored = {}) {
        return linesOf(decodedAddress("URL", undone, stored));
    };
    EXPECT_THAT(by("http://www.bing.com/search?q=tide"), ElementsAre("q = tide (Search term)"));
    for (const char *doubtful : {"a+b", "a&b=c", "a;b=c", "a#b", "a%20b", "a=b", "http://b/?c"}) {
        EXPECT_THAT(by("http://www.bing.com/search?q=" + std::string(doubtful)), IsEmpty());
        EXPECT_THAT(by("http://www.bing.com/search?q=" + std::string(doubtful), "another"),
                    IsEmpty());
    }
    EXPECT_THAT(by("http://h.example/c232ab00-9414-11ec-b3c8-9e6bdeced846?a=1&b=2"),
                ElementsAre("path = 2022-02-22 19:22:22 UTC (UUID of version 1)"));
}

TEST(DecodedValues, aSemicolonPartsOnlyNamesWithValues) {
    EXPECT_THAT(ofAddress("http://www.bing.com/search?q=tide;low&a=1;b=2;;=3"),
                ElementsAre("q = tide;low (Search term)", "a = 1 (Query parameter)",
                            "b = 2;;=3 (Query parameter)"));
}

TEST(DecodedValues, idsInPathsHoldTimesOnlyOfSitesThatAreKnown) {
    for (const char *none :
         {"http://h.example/photo/1299006630250/x.jpg", "http://h.example/1299006630",
          "https://h.example/ada/status/1212092628029698048", "https://x.com/1212092628029698048",
          "https://twitter.com/ada/status/29700859247",
          "https://x.com/ada/status/99999999999999999999",
          "https://nottwitter.com/ada/status/1212092628029698048", "https://x.com/status/",
          "https://x.com/status/-1212092628029698048", "https://discord.com/channels/@me",
          "http://h.example/?id=1212092628029698048"})
        for (const std::string &line : ofAddress(none))
            EXPECT_THAT(line, testing::HasSubstr("(Query parameter)")) << none;
    EXPECT_THAT(ofAddress("https://mobile.twitter.com/ada/status/1212092628029698048/photo/1"),
                ElementsAre("path = 2019-12-31 19:26:16 UTC (Id of a post on twitter.com or x.com: "
                            "milliseconds since 2010-11-04 01:42:54, 22 bits up)"));
    EXPECT_THAT(ofAddress("https://X.com:443/i/status/1212092628029698048"), SizeIs(1));
    EXPECT_THAT(ofAddress("https://discord.com/channels/81384788765712384/381890411414683648/"
                          "1201234567890123456"),
                ElementsAre(testing::StartsWith("path = 2015-08-13 "),
                            testing::StartsWith("path = 2017-11-19 "),
                            testing::StartsWith("path = 2024-01-28 ")));
}

TEST(DecodedValues, numbersBelowZeroAreNoTimesOfToday) {
    EXPECT_THAT(
        ofAddress("http://h.example/?t=-1700000000&u=a+-1700000000"),
        ElementsAre("t = -1700000000 (Query parameter)", "u = a -1700000000 (Query parameter)"));
    EXPECT_THAT(ofText("-1700000000"), IsEmpty());
}

TEST(DecodedValues, timesAreReadInParametersThatAreNamedForTimes) {
    EXPECT_THAT(ofAddress("http://h.example/photo/x.jpg?t=1299006630"),
                ElementsAre("t = 1299006630 (Query parameter)",
                            "t = 2011-03-01 19:10:30 UTC (Unix time in seconds)"));
    EXPECT_THAT(ofAddress("http://h.example/?ts=ab-1299006630-77"),
                ElementsAre("ts = ab-1299006630-77 (Query parameter)",
                            "ts = 2011-03-01 19:10:30 UTC (Unix time in seconds)"));
    for (const char *name :
         {"ts", "oauth_timestamp", "StartTime", "created_at", "filter[since]", "LAST-MODIFIED",
          "expires", "end", "lmt", "ga_sid", "time_ms", "servertime"})
        EXPECT_THAT(ofAddress("http://h.example/?" + std::string(name) + "=1299006630"), SizeIs(2))
            << name;
}

/// Ids, counts and chance of which many are as long as times.
TEST(DecodedValues, otherNumbersAreNoTimes) {
    for (const char *text : {"id=1392837465001928",
                             "story_fbid=1443218205900123",
                             "fbid=10151495752291961",
                             "upload_id=1795304524493062",
                             "since_id=1299006630",
                             "utmhid=1666361232",
                             "utmn=1719151623",
                             "AN=1344932832",
                             "z=1664147700",
                             "v=1871234717",
                             "ga_hid=1439309887",
                             "a=1806368067",
                             "TargetID=100055028",
                             "tw=363864528",
                             "s=ab-1299006630-77",
                             "oauth_token=363864528-GYyrNC1K",
                             "destination=;ord=1344932832?",
                             "upsid=994519120255",
                             "set=pb.216311481960.-2207520000.1372307247.",
                             "page=1299006630250",
                             "t=2011030112",
                             "time=320699430",
                             "_=1299006630",
                             "cb=1299006630",
                             "candidate=1299006630"})
        EXPECT_THAT(ofAddress("http://h.example/?" + std::string(text)), SizeIs(1)) << text;
    for (const char *text : {"1299006630", "1392837465001928", "1332381329:B0C5A738-0F1C"})
        EXPECT_THAT(ofText(text), IsEmpty()) << text;
}

TEST(DecodedValues, whatKeepsABrowserFromAnOldCopyIsInMilliseconds) {
    for (const std::string name : {"_", "cb", "dt", "correlator", "utmht", "zx"})
        EXPECT_THAT(ofAddress("http://h.example/?" + name + "=1299006630250"),
                    ElementsAre(name + " = 1299006630250 (Query parameter)",
                                name + " = 2011-03-01 19:10:30 UTC (Unix time in milliseconds)"));
    EXPECT_THAT(ofAddress("http://h.example/?f=jQuery162013103312062718447_1299006630250"),
                ElementsAre("f = jQuery162013103312062718447_1299006630250 (Query parameter)",
                            "f = 2011-03-01 19:10:30 UTC (Unix time in milliseconds)"));
    for (const char *none : {"jQuery1620_1299006630", "jQuery_1299006630250", "jQuery_",
                             "xQuery12_1299006630250", "jQuery12x_1299006630250"})
        EXPECT_THAT(ofAddress("http://h.example/?f=" + std::string(none)), SizeIs(1)) << none;
}

TEST(DecodedValues, withinATextTheWordInFrontNamesANumber) {
    const std::string time = " = 2011-03-01 19:10:30 UTC (Unix time in seconds)";
    EXPECT_THAT(ofText("ID=12ab:FF=0:TM=1299006630:LM=1299006630:S=x"),
                ElementsAre("ID = 12ab:FF=0:TM=1299006630:LM=1299006630:S=x (Name and value)",
                            "ID" + time, "ID" + time));
    EXPECT_THAT(ofAddress("http://h.example/?d={\"id\":1299006630,\"time\" : \"1299006630\"}"),
                ElementsAre("d = {\"id\":1299006630,\"time\" : \"1299006630\"} (Query parameter)",
                            "d" + time));
    EXPECT_THAT(ofAddress("http://h.example/?time=id=1299006630"), SizeIs(1));
    EXPECT_THAT(linesOf(decodedText("cookie_value", "1299006630", "lastvisit")), ElementsAre(time));
}

TEST(DecodedValues, aSessionOfASearchBeginsWithItsTime) {
    // 0x4D6D4526 is 2011-03-01 19:12:38.
    const std::string session = base64Of(std::string("\x26\x45\x6D\x4D\x01\x02\x03", 7));
    EXPECT_THAT(ofAddress("https://www.google.com/search?ei=" + session.substr(0, 10)),
                ElementsAre("ei = " + session.substr(0, 10) + " (Query parameter)",
                            "ei = 2011-03-01 19:12:38 UTC (First four bytes of base64, the lowest "
                            "first: Unix time in seconds)"));
}

TEST(DecodedValues, addressesWithinAnAddressAreTakenApart) {
    EXPECT_THAT(
        ofAddress("http://a.example/login?continue=http%3A%2F%2Fb.example%2F%3Fq%3Done%26t%3D2"),
        ElementsAre("continue = http://b.example/?q=one&t=2 (Query parameter)",
                    "continue > q = one (Query parameter)", "continue > t = 2 (Query parameter)"));
}

TEST(DecodedValues, base64IsReadWhereAllOfItIsText) {
    const std::string coded = base64Of("harbour@example");
    EXPECT_THAT(ofText(coded), ElementsAre(" = harbour@example (Base64)"));
    EXPECT_THAT(ofAddress("http://h.example/?u=" + replaceAll(coded, "=", "%3D")),
                ElementsAre("u = " + coded + " (Query parameter)", "u = harbour@example (Base64)"));
    EXPECT_THAT(ofText(base64Of("http://b.example/?a=1")),
                ElementsAre(" = http://b.example/?a=1 (Base64)", "a = 1 (Query parameter)"));
    // Words, and bytes that are no text.
    for (const char *text : {"password", "averylongwordthatgoeson", "AAAAAAAAAAAAAAAAAAAA"})
        EXPECT_THAT(ofText(text), IsEmpty()) << text;
}

TEST(DecodedValues, cookiesOfVisitCountersHoldTheirTimesAlone) {
    EXPECT_THAT(ofText("GA1.2.1400000000.1299006630"),
                ElementsAre(" = 2011-03-01 19:10:30 UTC (First visit, by a counter of visits, Unix "
                            "time in seconds)"));
    for (const char *text : {"cid=235375106.1299006630", "ga_vid=2003771680.1299006630"})
        EXPECT_THAT(ofAddress("http://h.example/?" + std::string(text)),
                    testing::Contains(testing::HasSubstr(
                        " = 2011-03-01 19:10:30 UTC (First visit, by a counter of visits")))
            << text;
    EXPECT_THAT(ofAddress("http://h.example/?utmcc=__utma%3D1.1400000000.1299006630.1299006631."
                          "1299006632.3%3B%2B__utmz%3D1.1299006630.1.1.x"),
                SizeIs(4));
    // Ids in no order.
    EXPECT_THAT(ofText("96992031.1400000000.1299006632.1299006631.1299006633.3"), IsEmpty());
    EXPECT_THAT(ofText("96992031.1400000000.1299006630.1299006631.2147483647.3"), IsEmpty());
    EXPECT_THAT(ofText("96992031.1400000000.1299006630.1299006631.1299006632.3"),
                ElementsAre(" = 2011-03-01 19:10:30 UTC (First visit, by a counter of visits, Unix "
                            "time in seconds)",
                            " = 2011-03-01 19:10:31 UTC (Visit before, by a counter of visits, "
                            "Unix time in seconds)",
                            " = 2011-03-01 19:10:32 UTC (Last visit, by a counter of visits, Unix "
                            "time in seconds)"));
}

TEST(DecodedValues, pairsOfACookieAreParameters) {
    EXPECT_THAT(ofText("user=ada&seen=1299006630"),
                ElementsAre("user = ada (Name and value)", "seen = 1299006630 (Name and value)",
                            "seen = 2011-03-01 19:10:30 UTC (Unix time in seconds)"));
}

TEST(DecodedValues, whatIsNoAddressHoldsNone) {
    for (const char *text :
         {"", "://", "http:", "Visited: nobody", "javascript:x?a=b", "a b://host/?x=1"})
        EXPECT_THAT(ofAddress(text), IsEmpty()) << text;
    // As an index has it.
    EXPECT_THAT(ofAddress("Cookie:ada@http://h.example/?a=1"), SizeIs(1));
}

TEST(DecodedValues, hostileTextsAreBounded) {
    std::string many = "http://h/?";
    for (int i = 0; i < 100'000; ++i)
        many += "t=1299006630&";
    EXPECT_THAT(ofAddress(many), SizeIs(kMostDecodedValues));

    const auto longOne = decodedAddress("URL", "http://h/?a=" + std::string(1'000'000, 'x'));
    ASSERT_THAT(longOne, SizeIs(1));
    EXPECT_LE(longOne[0].value.size(), kLongestDecodedValue + 3);
    const std::string accents = [] {
        std::string text;
        for (int i = 0; i < 9'000; ++i)
            text += "\xC3\xA9";
        return text;
    }();
    const auto cut = decodedAddress("URL", "http://h/?a=b" + accents);
    ASSERT_THAT(cut, SizeIs(1));
    EXPECT_TRUE(isUtf8(cut[0].value));

    std::string nested = "x";
    for (int i = 0; i < 200; ++i)
        nested = "http://h/?u=" + nested;
    EXPECT_LE(ofAddress(nested).size(), 5U);
    std::string packed = "harbour@example.com";
    for (int i = 0; i < 12; ++i)
        packed = base64Of(packed);
    EXPECT_LE(ofText(packed).size(), 5U);
}

TEST(DecodedValues, costGrowsWithTheTextAlone) {
    const auto begin = std::chrono::steady_clock::now();
    for (const char *piece : {"&", "=", "%", "/", ".", "http://", "t=", "1299006630.", "A", "?#"}) {
        std::string text = "http://h/?a=";
        while (text.size() < kMostDecodedBytes)
            text += piece;
        static_cast<void>(ofAddress(text));
        static_cast<void>(ofText(text.substr(12)));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

} // namespace
} // namespace nv
