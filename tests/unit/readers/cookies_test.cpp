#include "readers/chrome/profile/Cookies.h"
#include "readers/firefox/profile/Cookies.h"
#include "support/FactText.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/Cookies.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::chromeTime;

constexpr std::int64_t kNow = 1308139200; // 2011-06-15 12:00, where the test's clock stands

struct CookiesTest : testing::Test {
    const UrlRecord &chromeRecord(const test::Cookie &cookie) {
        test::ChromeCookies(folder.path() / "Cookies").add(cookie);
        return reading.read(parseChromeCookiesFile, folder.path() / "Cookies").records().at(0);
    }
    const UrlRecord &firefoxRecord(const test::Cookie &cookie) {
        test::FirefoxCookies(folder.path() / "cookies.sqlite").add(cookie);
        return reading.read(parseFirefoxCookiesFile, folder.path() / "cookies.sqlite")
            .records()
            .at(0);
    }
    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(CookiesTest, aChromeCookieFillsEveryField) {
    const UrlRecord &r =
        chromeRecord({".tools.example.com", "__utma", "211.103", chromeTime(kNow - 60),
                      chromeTime(kNow + 60), chromeTime(kNow - 3600)});
    EXPECT_EQ(r.URL, "tools.example.com");
    EXPECT_EQ(r.URLRawValue, "tools.example.com");
    EXPECT_EQ(r.host, "tools.example.com");
    EXPECT_EQ(r.URLFileName, "__utma");
    EXPECT_EQ(r.MetaData, "211.103");
    EXPECT_EQ(r.URLParameters, "211.103");
    EXPECT_EQ(r.Action, "Cached");
    EXPECT_EQ(r.cacheType, "Chrome Cookies");
    EXPECT_EQ(r.Status, "Cookie");
    EXPECT_EQ(r.Visits, -1);
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T11:59:00Z");
    EXPECT_EQ(isoUtc(r.OtherDate), "2011-06-15T11:00:00Z");
    EXPECT_EQ(r.OtherDateMeaning, "Creation Date (UTC)");
    EXPECT_EQ(isoUtc(r.ExpiryDate), "2011-06-15T12:01:00Z");
    EXPECT_TRUE(r.IsCookie);
    EXPECT_FALSE(r.IsHistory || r.IsWebPage || r.IsPicture || r.IsBookmark || r.Hidden);
    EXPECT_EQ(r.URLProtocol + r.User + r.Referrer + r.WebpageTitle, "");
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_EQ(reading.task.headings.at(0).title, "PARSING CHROME COOKIES FILE");
}

TEST_F(CookiesTest, aFirefoxCookieHasItsExpiryAsOtherDate) {
    reading.clock.offset = std::chrono::hours(2);
    const UrlRecord &r =
        firefoxRecord({"www.example.com", "id", "x", (kNow - 60) * 1'000'000, kNow - 30, 0});
    EXPECT_EQ(r.URL, "www.example.com");
    EXPECT_EQ(r.cacheType, "Firefox Cookies");
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T11:59:00Z");
    EXPECT_EQ(isoUtc(r.LastVisited), "2011-06-15T13:59:00Z") << "the machine's local time";
    EXPECT_EQ(isoUtc(r.ExpiryDate), "2011-06-15T11:59:30Z");
    EXPECT_EQ(r.OtherDate, r.ExpiryDate);
    EXPECT_EQ(r.OtherDateMeaning, "Expiry Date");
    EXPECT_EQ(r.Status, "Expired");
    EXPECT_EQ(reading.task.headings.at(0).title, "PARSING FIREFOX COOKIES FILE");
}

/// "Never" is often the year 9999, which ten digits can't tell.
TEST_F(CookiesTest, anExpiryThatTenDigitsLoseIsAFactAndNoted) {
    test::FirefoxCookies file(folder.path() / "cookies.sqlite");
    for (const std::int64_t expiry : {kNow, kNow * 1000, 253402300799, 253402300799000,
                                      std::int64_t{946684800000}, std::int64_t{-1}})
        file.add({.expiry = expiry});
    file.close();
    reading.read(parseFirefoxCookiesFile, file.path());
    std::vector<std::string> expiries, facts;
    for (const UrlRecord &record : reading.records()) {
        expiries.push_back(isoUtc(record.ExpiryDate));
        facts.push_back(test::fact(record, "expires"));
    }
    const std::string shown = "2050-04-19T23:16:47Z"; // of 2534023007
    EXPECT_EQ(expiries,
              (std::vector<std::string>{"2011-06-15T12:00:00Z", "2011-06-15T12:00:00Z", shown,
                                        shown, "2269-12-29T00:00:00Z", "1969-12-31T23:59:59Z"}));
    EXPECT_EQ(facts, (std::vector<std::string>{"", "", "9999-12-31 23:59:59 [253402300799]",
                                               "9999-12-31 23:59:59 [253402300799000]",
                                               "2000-01-01 00:00:00 [946684800000]", ""}));
    ASSERT_EQ(reading.result.noted.size(), 1U);
    EXPECT_EQ(reading.result.noted.begin()->second, 3U);
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(CookiesTest, encryptedValuesAreNotedByTheirPrefix) {
    test::ChromeCookies file(folder.path() / "Cookies");
    std::int64_t creation = 0;
    for (const char *encrypted : {"v10abc", "v10def", "v11abc", "v20abc", "\x01\x02\x03", "v1", ""})
        file.add({.value = "", .creation = ++creation, .encrypted = encrypted});
    file.add({.value = "plain", .creation = ++creation, .encrypted = "v10abc"});
    file.close();
    reading.read(parseChromeCookiesFile, file.path());
    EXPECT_EQ(reading.records().size(), 8U);
    EXPECT_EQ(reading.result.noted, (std::map<std::string, std::uint64_t>{
                                        {"encrypted value with the prefix \"v10\", not shown", 2},
                                        {"encrypted value with the prefix \"v11\", not shown", 1},
                                        {"encrypted value with the prefix \"v20\", not shown", 1},
                                        {"encrypted value without a prefix, not shown", 2}}));
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(CookiesTest, onlyOneLeadingPointGoes) {
    EXPECT_EQ(chromeRecord({.host = "..example.com", .creation = 1}).URL, ".example.com");
}

TEST_F(CookiesTest, aCookieOfOneSessionHasNoExpiryAndHasNotExpired) {
    const UrlRecord &r = chromeRecord({.lastAccess = chromeTime(kNow), .expiry = 0, .creation = 1});
    EXPECT_FALSE(r.ExpiryDate.has());
    EXPECT_EQ(r.Status, "Cookie");
}

TEST_F(CookiesTest, stampsFarOutOfRangeAreNoDates) {
    const UrlRecord &r =
        chromeRecord({.lastAccess = INT64_MAX, .expiry = INT64_MAX, .creation = 1});
    EXPECT_FALSE(r.ActionDateUTC.has());
    EXPECT_FALSE(r.ExpiryDate.has());
}

TEST_F(CookiesTest, valuesOfTheWrongKindAreReadAsWhatTheyCanBe) {
    test::FirefoxCookies file(folder.path() / "cookies.sqlite");
    file.run("INSERT INTO moz_cookies(host, name, value, expiry, lastAccessed) VALUES "
             "(NULL, 7, x'E9', 'soon', 1308139200.9)");
    file.close();
    const UrlRecord r = reading.read(parseFirefoxCookiesFile, file.path()).records().at(0);
    EXPECT_EQ(r.URL, "");
    EXPECT_EQ(r.URLFileName, "7");
    EXPECT_EQ(r.MetaData, "\u00e9");
    EXPECT_FALSE(r.ExpiryDate.has());
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T12:00:00Z");
}

TEST_F(CookiesTest, aFileWithoutTheTableFails) {
    test::ChromeCookies(folder.path() / "Cookies").run("ALTER TABLE cookies RENAME TO other");
    reading.read(parseChromeCookiesFile, folder.path() / "Cookies");
    EXPECT_EQ(reading.result.state, ReadState::failed);
    ASSERT_EQ(reading.log.entries.size(), 1U);
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseChromeCookiesFile()");
    EXPECT_EQ(reading.log.entries[0].severity, Severity::Serious);
}

TEST_F(CookiesTest, cancellingKeepsTheRowsSoFar) {
    test::FirefoxCookies file(folder.path() / "cookies.sqlite");
    for (int i = 0; i < 20; ++i)
        file.add({});
    file.close();
    test::CancelAfter task(5);
    reading.read(parseFirefoxCookiesFile, file.path(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_LT(reading.records().size(), 20U);
}

} // namespace
} // namespace nv
