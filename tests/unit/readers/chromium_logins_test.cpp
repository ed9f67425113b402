#include "readers/chrome/profile/Logins.h"
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

constexpr std::int64_t kNow = 1308139200;

struct ChromiumLogins : testing::Test {
    const UrlRecord &recordOf(const test::ChromiumLogin &login) {
        test::ChromiumLogins logins(file);
        logins.add(login).close();
        reading.sink.records.clear();
        return reading.read(parseChromiumLogins, file).records().at(0);
    }
    test::TempFolder folder;
    std::filesystem::path file = folder.path() / "Login Data";
    test::SqliteHistoryReading reading;
};

TEST_F(ChromiumLogins, aLoginIsARow) {
    const UrlRecord &r = recordOf({.created = chromeTime(kNow),
                                   .lastUsed = chromeTime(kNow + 60),
                                   .passwordChanged = chromeTime(kNow + 1),
                                   .timesUsed = 4});
    EXPECT_EQ(r.cacheType, "Chrome Login");
    EXPECT_EQ(r.Action, "Saved");
    EXPECT_EQ(r.Status, "Login");
    EXPECT_EQ(r.URL, "https://mail.example.com/login");
    EXPECT_EQ(r.host, "mail.example.com");
    EXPECT_EQ(r.User, "mara");
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(isoUtc(r.OtherDate), "2011-06-15T12:01:00Z");
    EXPECT_EQ(r.OtherDateMeaning, "Last Used");
    EXPECT_EQ(fact(r, "user_name"), "mara");
    EXPECT_EQ(fact(r, "signon_realm"), "https://mail.example.com/login");
    EXPECT_EQ(fact(r, "password_changed"), "2011-06-15 12:00:01 [12952612801000000]");
    EXPECT_EQ(fact(r, "count"), "4");
    EXPECT_EQ(fact(r, "never_save"), "");
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromiumLogins, noPasswordIsGivenAwayUnasked) {
    for (const std::string &stored :
         {test::v10(cipher::kPlain), std::string("harbour light"), "v20" + std::string(40, 'x')}) {
        const UrlRecord &r = recordOf({.password = stored});
        EXPECT_EQ(fact(r, "password"), "");
        EXPECT_NE(fact(r, "encrypted"), "");
        for (const RecordFact &each : r.facts)
            EXPECT_EQ(factText(each).find("harbour"), std::string::npos) << each.name;
    }
}

TEST_F(ChromiumLogins, passwordsThatAreAskedForAreDecryptedWhereTheyCanBe) {
    reading.secrets = true;
    EXPECT_EQ(fact(recordOf({.password = test::v10(cipher::kPlain)}), "password"), "harbour light");
    EXPECT_EQ(fact(recordOf({.password = "harbour light"}), "password"), "harbour light")
        << "stored without encryption";
    EXPECT_EQ(fact(recordOf({.password = "v20" + std::string(40, 'x')}), "password"),
              "encrypted, v20, 43 bytes");
    EXPECT_EQ(fact(recordOf({.password = std::string("\x01\x00\x00\x00\xD0", 5)}), "password"),
              "encrypted, without a version, 5 bytes");
    EXPECT_EQ(fact(recordOf({}), "password"), "");
}

TEST_F(ChromiumLogins, aSiteOfWhichNothingIsToBeSavedIsTold) {
    const UrlRecord &r = recordOf({.user = "", .neverSave = true});
    EXPECT_EQ(fact(r, "never_save"), "yes");
    EXPECT_EQ(r.Status, "Never Saved");
}

TEST_F(ChromiumLogins, earlyVersionsCountSecondsAndLackColumns) {
    test::SqliteFile logins(file);
    logins
        .run("CREATE TABLE logins(origin_url, action_url, username_value, password_value, "
             "signon_realm, ssl_valid, preferred, date_created, blacklisted_by_user, scheme)")
        .run("INSERT INTO logins VALUES('http://a.example/','','u',x'','r',0,1,1308139200,0,0)")
        .close();
    const UrlRecord &r = reading.read(parseChromiumLogins, file).records().at(0);
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(fact(r, "created"), "2011-06-15 12:00:00 [1308139200]");
    EXPECT_EQ(fact(r, "last_used") + fact(r, "count"), "");
    EXPECT_FALSE(r.OtherDate.has());
}

TEST_F(ChromiumLogins, tablesThatAreNotReadAreCounted) {
    test::ChromiumLogins logins(file);
    logins.run("INSERT INTO stats VALUES('https://a.example/','u',1,0)").close();
    reading.read(parseChromiumLogins, file);
    EXPECT_EQ(reading.result.passedOver, (std::map<std::string, std::uint64_t>{
                                             {"rows of table stats, which is not read", 1}}));
}

TEST_F(ChromiumLogins, hostileValuesAreReadAsWhatTheyCanBe) {
    reading.secrets = true;
    test::SqliteFile logins(file);
    logins
        .run("CREATE TABLE logins(origin_url, username_value, password_value, date_created, "
             "date_last_used, times_used, blacklisted_by_user)")
        .run("INSERT INTO logins VALUES(x'FF', 7, 3.5, -1, 9223372036854775807, 'x', 'true'), "
             "(NULL, NULL, NULL, NULL, NULL, NULL, NULL)")
        .close();
    reading.read(parseChromiumLogins, file);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    ASSERT_EQ(reading.records().size(), 2U);
    EXPECT_EQ(fact(reading.records()[0], "created"), "-1");
    EXPECT_EQ(fact(reading.records()[0], "never_save"), "yes");
    EXPECT_FALSE(reading.records()[0].ActionDateUTC.has());
}

TEST_F(ChromiumLogins, aFileOfOtherTablesFails) {
    test::SqliteFile(file).run("CREATE TABLE songs(id)").close();
    reading.read(parseChromiumLogins, file);
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_NE(reading.result.reason.find("\"logins\""), std::string::npos);
}

} // namespace
} // namespace nv
