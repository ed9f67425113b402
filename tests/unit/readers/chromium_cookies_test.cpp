#include "readers/chrome/profile/Cookies.h"
#include "support/FactText.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/ChromiumProfile.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::chromeTime;
using test::fact;
namespace cipher = test::cipher;

constexpr std::int64_t kNow = 1308139200; // 2011-06-15 12:00, where the test's clock stands

struct ChromiumCookies : testing::Test {
    void read(test::SqliteFile &cookies) {
        cookies.close();
        reading.read(parseChromeCookiesFile, file);
    }
    const UrlRecord &recordOf(const test::ChromiumCookie &cookie, int version = 24) {
        test::ChromiumCookies cookies(file, version);
        read(cookies.add(cookie));
        return reading.records().at(0);
    }
    void forget() {
        reading.sink.records.clear();
        reading.result = {};
    }
    test::TempFolder folder;
    std::filesystem::path file = folder.path() / "Cookies";
    test::SqliteHistoryReading reading;
};

TEST_F(ChromiumCookies, everyColumnIsAFact) {
    const UrlRecord &r = recordOf({.name = "id",
                                   .value = "plain",
                                   .created = chromeTime(kNow, 250000),
                                   .expires = chromeTime(kNow + 60),
                                   .lastAccess = chromeTime(kNow + 1),
                                   .lastUpdate = chromeTime(kNow + 2),
                                   .path = "/mail",
                                   .topFrameSite = "https://around.example",
                                   .secure = 1,
                                   .httpOnly = 0,
                                   .sameSite = 1,
                                   .sourceScheme = 2,
                                   .sourcePort = 8443});
    EXPECT_EQ(r.MetaData, "plain");
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T12:00:01Z");
    EXPECT_EQ(fact(r, "path"), "/mail");
    EXPECT_EQ(fact(r, "secure"), "yes");
    EXPECT_EQ(fact(r, "http_only"), "no");
    EXPECT_EQ(fact(r, "same_site"), "lax [1]");
    EXPECT_EQ(fact(r, "partition"), "https://around.example");
    EXPECT_EQ(fact(r, "source_scheme"), "secure [2]");
    EXPECT_EQ(fact(r, "source_port"), "8443");
    EXPECT_EQ(fact(r, "created"), "2011-06-15 12:00:00.250000 [12952612800250000]");
    EXPECT_EQ(fact(r, "last_updated"), "2011-06-15 12:00:02 [12952612802000000]");
    EXPECT_EQ(fact(r, "source_table") + fact(r, "source_rowid"), "cookies1");
    EXPECT_EQ(fact(r, "value") + fact(r, "encrypted"), "");
    EXPECT_TRUE(reading.result.noted.empty());
}

TEST_F(ChromiumCookies, aValueOfThisHostIsDecrypted) {
    const UrlRecord &r = recordOf({.encrypted = test::v10(cipher::kOfHost)});
    EXPECT_EQ(fact(r, "value"), "harbour light");
    EXPECT_EQ(fact(r, "encrypted"), "");
    EXPECT_EQ(r.MetaData, "") << "the classic columns stay";
    EXPECT_EQ(reading.result.noted.begin()->first,
              "encrypted value, decrypted by the key that Linux's \"v10\" has everywhere");
}

TEST_F(ChromiumCookies, aValueOfAnotherHostIsToldAndNotTaken) {
    for (const char *digits : {cipher::kOfOtherHost, cipher::kPlain}) {
        forget();
        const UrlRecord &r = recordOf({.encrypted = test::v10(digits)});
        EXPECT_EQ(fact(r, "value"), "");
        EXPECT_TRUE(fact(r, "encrypted").ends_with("since it was encrypted for another host"));
    }
}

TEST_F(ChromiumCookies, earlierVersionsHaveTheValueAlone) {
    EXPECT_EQ(fact(recordOf({.encrypted = test::v10(cipher::kPlain)}, 23), "value"),
              "harbour light");
    forget();
    EXPECT_EQ(fact(recordOf({.encrypted = test::v10(cipher::kOfHost)}, 23), "value"),
              "harbour light")
        << "what stands there tells, not the number alone";
}

TEST_F(ChromiumCookies, whatStaysEncryptedIsNeverEmptyInSilence) {
    test::ChromiumCookies cookies(file);
    const std::string blocks = test::bytesOfHex(cipher::kOfHost);
    for (const std::string &each : {"v20" + std::string(128, 'x'), "v11" + blocks, test::v10("00"),
                                    blocks, test::v10(cipher::kNoText)})
        cookies.add({.encrypted = each});
    read(cookies);
    const auto &rows = reading.records();
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(fact(rows[0], "encrypted"), "encrypted, v20, 131 bytes");
    EXPECT_EQ(fact(rows[1], "encrypted"), "encrypted, v11, 51 bytes");
    EXPECT_EQ(fact(rows[2], "encrypted"), "encrypted, v10, 4 bytes");
    EXPECT_EQ(fact(rows[3], "encrypted"), "encrypted, without a version, 48 bytes");
    EXPECT_NE(fact(rows[4], "encrypted"), "");
    std::uint64_t noted = 0;
    for (const auto &[reason, count] : reading.result.noted)
        noted += count;
    EXPECT_EQ(noted, 5U);
}

TEST_F(ChromiumCookies, anEmptyValueIsNoEncryptedOne) {
    const UrlRecord &r = recordOf({.encrypted = test::v10(cipher::kEmptyOfHost)});
    EXPECT_EQ(fact(r, "value") + fact(r, "encrypted"), "");
}

TEST_F(ChromiumCookies, theClassicRulesGiveTheirRowsWithoutFacts) {
    reading.classicOnly = true;
    const UrlRecord &r = recordOf({.encrypted = test::v10(cipher::kOfHost)});
    EXPECT_TRUE(r.facts.empty());
    EXPECT_EQ(reading.result.noted,
              (std::map<std::string, std::uint64_t>{
                  {"encrypted value with the prefix \"v10\", not shown", 1}}));
}

TEST_F(ChromiumCookies, columnsOfEarlierVersionsAreKnown) {
    test::SqliteFile cookies(file);
    cookies.run("CREATE TABLE cookies(creation_utc INTEGER, host_key TEXT, name TEXT, value TEXT, "
                "path TEXT, expires_utc INTEGER, secure INTEGER, httponly INTEGER, "
                "last_access_utc INTEGER, firstpartyonly INTEGER)");
    cookies.run("INSERT INTO cookies VALUES(12952612800000000,'a.example','n','v','/',0,1,0,0,2)");
    read(cookies);
    const UrlRecord &r = reading.records().at(0);
    EXPECT_EQ(fact(r, "secure") + fact(r, "http_only"), "yesno");
    EXPECT_EQ(fact(r, "same_site"), "strict [2]");
    EXPECT_EQ(fact(r, "source_scheme") + fact(r, "partition") + fact(r, "source_port"), "");
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromiumCookies, hostileValuesAreFactsOrNothing) {
    test::SqliteFile cookies(file);
    cookies.run("CREATE TABLE meta(key, value)")
        .run("INSERT INTO meta VALUES(NULL, NULL), ('version', 'none')")
        .run("CREATE TABLE cookies(host_key, name, value, encrypted_value, path, is_secure, "
             "samesite, source_scheme, source_port, creation_utc, last_update_utc)")
        .run("INSERT INTO cookies VALUES(x'E9', NULL, NULL, 'v10', 7, 'yes', 99, -5, 'port', "
             "9223372036854775807, -1)")
        .run("INSERT INTO cookies VALUES(7, 8, 9, 3.5, x'00', NULL, 'lax', NULL, 1e300, 'soon', "
             "NULL)");
    read(cookies);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    ASSERT_EQ(reading.records().size(), 2U);
    const UrlRecord &r = reading.records()[0];
    EXPECT_EQ(fact(r, "path"), "7");
    EXPECT_EQ(fact(r, "secure"), "no");
    EXPECT_EQ(fact(r, "same_site"), "99");
    EXPECT_EQ(fact(r, "source_scheme"), "-5");
    EXPECT_EQ(fact(r, "created"), "9223372036854775807");
    EXPECT_EQ(fact(r, "last_updated"), "-1");
    EXPECT_EQ(fact(r, "encrypted"), "encrypted, v10, 3 bytes");
    EXPECT_EQ(fact(reading.records()[1], "encrypted"), "");
}

TEST_F(ChromiumCookies, theVersionOfTheTablesIsNotedWhereNothingElseIsKnown) {
    recordOf({.value = "x"}, 24);
    EXPECT_EQ(reading.origin.browserVersion, "Cookies 24");
}

} // namespace
} // namespace nv
