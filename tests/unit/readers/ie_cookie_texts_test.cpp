#include "base/Text.h"
#include "readers/ie/CookieTexts.h"
#include "support/Facts.h"
#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using test::factOf;
using test::IndexDat;
using test::IndexReading;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

/// Nine lines, as the browser writes them.
std::string cookieText(const std::string &name, const std::string &value,
                       const std::string &place = "host.example/shop/", std::uint32_t flags = 1024,
                       const char *lineEnd = "\n") {
    const std::uint64_t expires = test::fileTime(2012, 1, 2, 3, 4, 5);
    const std::uint64_t created = test::fileTime(2011, 6, 7, 8, 9, 10);
    std::string text;
    for (const std::string &line :
         {name, value, place, std::to_string(flags), std::to_string(expires & 0xFFFFFFFF),
          std::to_string(expires >> 32), std::to_string(created & 0xFFFFFFFF),
          std::to_string(created >> 32), std::string("*")})
        text += line + lineEnd;
    return text;
}

TextCookies cookiesIn(const std::string &text) {
    return cookiesOf(viewOf(text));
}

TEST(IECookieTexts, holdCookiesOfNineLines) {
    const std::string one = cookieText("id", "caf\xE9");
    const TextCookies found = cookiesIn(one + cookieText("b", "*", "host.example/", 1024, "\r\n"));
    ASSERT_THAT(found.cookies, SizeIs(2));
    EXPECT_EQ(found.damaged, 0U);
    EXPECT_EQ(found.cookies[0].name, "id");
    EXPECT_EQ(found.cookies[0].value, "café");
    EXPECT_EQ(found.cookies[0].place, "host.example/shop/");
    EXPECT_EQ(found.cookies[0].offset, 0U);
    EXPECT_EQ(isoUtc(found.cookies[0].expires), "2012-01-02T03:04:05Z");
    EXPECT_EQ(isoUtc(found.cookies[0].created), "2011-06-07T08:09:10Z");
    EXPECT_EQ(found.cookies[1].name, "b");
    EXPECT_EQ(found.cookies[1].value, "*"); // no end
    EXPECT_EQ(found.cookies[1].offset, one.size());
}

TEST(IECookieTexts, mayLackNamesAndTheLastLineEnd) {
    std::string text = cookieText("", "");
    text.pop_back();
    EXPECT_THAT(cookiesIn(text).cookies, SizeIs(1));
    EXPECT_THAT(cookiesIn("").cookies, IsEmpty());
    EXPECT_EQ(cookiesIn("\n\n").damaged, 0U);
}

TEST(IECookieTexts, areReadOnAfterDamage) {
    const std::string sound = cookieText("sound", "1");
    const std::string odd = replaceAll(cookieText("odd", "1"), "1024", "many");
    TextCookies found = cookiesIn(odd + sound);
    EXPECT_THAT(found.cookies, SizeIs(1));
    EXPECT_EQ(found.damaged, 1U);
    // Its end is gone: the next cookie isn't taken for the rest of it.
    found = cookiesIn("cut\nvalue\n" + sound);
    ASSERT_THAT(found.cookies, SizeIs(1));
    EXPECT_EQ(found.cookies[0].name, "sound");
    EXPECT_EQ(found.damaged, 1U);
}

TEST(IECookieTexts, endWhereverTheyAreCut) {
    const std::string text = cookieText("a", "1") + cookieText("b", "2");
    for (std::size_t length = 0; length < text.size(); ++length) {
        const TextCookies found = cookiesIn(text.substr(0, length));
        EXPECT_LE(found.cookies.size() + found.damaged, 2U) << length;
    }
    EXPECT_EQ(cookiesIn(std::string(5000, '*')).cookies.size(), 0U);
    EXPECT_EQ(cookiesIn("99999999999\n").damaged, 1U);
}

/// The index of a cookies folder with its texts.
class IECookieFiles : public testing::Test {
  protected:
    IndexReading &read(bool classicOnly = false) {
        const auto path = disk.write("Cookies/index.dat", index.bytes());
        reading.emplace(HistoryFileType::ieCookies, test::kCookiesReader);
        reading->classicOnly = classicOnly;
        return reading->readFile(path, disk.path());
    }
    const UrlRecord &record(std::size_t i) const { return reading->records().at(i); }
    static test::IndexRecord cookie(const std::string &name,
                                    const std::string &signature = "URL ") {
        return {.signature = signature,
                .url = "Cookie:mara@host.example/shop/",
                .firstDate = test::fileTime(2011, 3, 1),
                .secondDate = test::fileTime(2011, 3, 2),
                .expiry = test::dosDate(2013, 1, 1),
                .hits = 9,
                .fileName = name};
    }

    IndexDat index;
    test::TempFolder disk;
    std::optional<IndexReading> reading;
};

TEST_F(IECookieFiles, giveTheirFirstCookieToTheRecordAndARowToEachOther) {
    index.add(cookie("mara@host[1].txt"));
    const std::string first = cookieText("id", "17", "host.example/shop/", 0x401);
    disk.write("Cookies/mara@host[1].txt", first + cookieText("lang", "fr", "host.example/"));
    read();
    ASSERT_THAT(reading->records(), SizeIs(2));
    EXPECT_EQ(factOf(record(0), "cookie_name"), "id");
    EXPECT_EQ(factOf(record(0), "cookie_value"), "17");
    EXPECT_EQ(factOf(record(0), "path"), "/shop/");
    EXPECT_EQ(factOf(record(0), "secure"), "yes");
    EXPECT_EQ(factOf(record(0), "http_only"), "no");
    EXPECT_EQ(factOf(record(0), "cookie_flags"), "secure [1025]");
    EXPECT_EQ(factOf(record(0), "created"), "2011-06-07 08:09:10");
    EXPECT_EQ(factOf(record(0), "expires"), "2012-01-02 03:04:05");
    EXPECT_EQ(record(0).Visits, 9);
    const UrlRecord &other = record(1);
    EXPECT_EQ(other.cacheType, "IE Cookies");
    EXPECT_EQ(other.Status, "Cookie");
    EXPECT_EQ(other.Action, "Stored");
    EXPECT_TRUE(other.IsCookie);
    EXPECT_EQ(other.URL, "host.example/");
    EXPECT_EQ(other.host, "host.example");
    EXPECT_EQ(other.User, record(0).User);
    EXPECT_EQ(other.URLFileName, "lang");
    EXPECT_EQ(other.MetaData, "fr");
    EXPECT_EQ(other.Visits, kVisitsUnknown);
    EXPECT_EQ(isoUtc(other.ActionDateUTC), "2011-06-07T08:09:10Z");
    EXPECT_EQ(isoUtc(other.ExpiryDate), "2012-01-02T03:04:05Z");
    EXPECT_FALSE(other.OtherDate.has());
    EXPECT_EQ(factOf(other, "source_offset"), std::to_string(first.size()));
    EXPECT_EQ(factOf(other, "cookie_name"), "lang");
    EXPECT_THAT(reading->result.passedOver, IsEmpty());
}

TEST_F(IECookieFiles, giveOneRecordByTheClassicRules) {
    index.add(cookie("mara@host[1].txt"));
    disk.write("Cookies/mara@host[1].txt", cookieText("id", "17") + cookieText("lang", "fr"));
    read(true);
    ASSERT_THAT(reading->records(), SizeIs(1));
    EXPECT_TRUE(record(0).facts.empty());
    const UrlRecord classic = record(0);
    read();
    EXPECT_EQ(record(0).MetaData, classic.MetaData);
    EXPECT_EQ(record(0).ExpiryDate, classic.ExpiryDate);
}

TEST_F(IECookieFiles, giveTheirCookiesOnceAndCountDamagedOnes) {
    index.add(cookie("mara@host[1].txt"));
    index.add(cookie("MARA@host[1].txt"));
    index.add(cookie("mara@cut[1].txt"));
    disk.write("Cookies/mara@host[1].txt", cookieText("id", "17") + cookieText("lang", "fr"));
    disk.write("Cookies/mara@cut[1].txt", "cut\n*\n" + cookieText("sound", "1"));
    read();
    ASSERT_THAT(reading->records(), SizeIs(5));
    EXPECT_EQ(factOf(record(2), "cookie_name"), "-"); // the same file again
    EXPECT_EQ(factOf(record(3), "cookie_name"), "-"); // the row stands for the damaged one
    EXPECT_EQ(factOf(record(4), "cookie_name"), "sound");
    EXPECT_THAT(reading->result.passedOver, ElementsAre(Pair("damaged cookie in a text file", 1)));
}

TEST_F(IECookieFiles, ofRecordsOutsideOfTheHashAreTheirsWhenNobodyElseHasThem) {
    index.add(cookie("mara@host[1].txt"));
    index.addUnreferenced(cookie("mara@host[1].txt", "LEAK"));
    index.addUnreferenced(cookie("mara@left[1].txt", "LEAK"));
    disk.write("Cookies/mara@host[1].txt", cookieText("id", "17"));
    disk.write("Cookies/mara@left[1].txt", cookieText("a", "1") + cookieText("b", "2"));
    read();
    ASSERT_THAT(reading->records(), SizeIs(4));
    for (const std::size_t i : {1U, 2U, 3U}) {
        EXPECT_EQ(record(i).cacheType, "IE Remnant");
        EXPECT_EQ(record(i).Status, "Recovered");
        EXPECT_EQ(record(i).Visits, kVisitsUnknown);
        EXPECT_NE(factOf(record(i), "recovered_from"), "-");
    }
    EXPECT_FALSE(record(1).CacheFileExists);
    EXPECT_EQ(factOf(record(1), "body"), "none: another record has the text file");
    EXPECT_EQ(factOf(record(2), "cookie_name"), "a");
    EXPECT_EQ(factOf(record(3), "cookie_name"), "b");
}

TEST_F(IECookieFiles, listedRecordsOfOtherKindsAreRows) {
    index.add(cookie("", "LEAK"));
    index.addRedirect("http://host.example/moved");
    index.add(cookie("", "JUNK"));
    read();
    ASSERT_THAT(reading->records(), SizeIs(2));
    EXPECT_EQ(record(0).cacheType, "IE Cookies");
    EXPECT_EQ(record(0).Status, "LEAK");
    EXPECT_EQ(factOf(record(0), "classic_rule"), "LEAK record in a cookies index");
    EXPECT_EQ(record(1).Status, "REDR");
    EXPECT_EQ(record(1).URL, "http://host.example/moved");
    EXPECT_EQ(record(1).Action, "Redirected");
    EXPECT_THAT(reading->result.passedOver,
                ElementsAre(Pair("entry without a record signature", 1)));
}

} // namespace
} // namespace nv
