#include "cli/ExplainCase.h"
#include "support/builders/Cookies.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

TEST_F(ExplainCliTest, aDateOfTheFirstTenDigitsOfADamagedStampSaysSo) {
    fs::remove(history);
    {
        SQLite::Database places((history.parent_path() / "places.sqlite").string(),
                                SQLite::OPEN_CREATE | SQLite::OPEN_READWRITE);
        places.exec("CREATE TABLE moz_places (id INTEGER PRIMARY KEY, url TEXT, title TEXT, "
                    "visit_count INTEGER, hidden INTEGER);"
                    "CREATE TABLE moz_historyvisits (id INTEGER PRIMARY KEY, place_id INTEGER, "
                    "visit_date INTEGER, from_visit INTEGER, visit_type INTEGER);"
                    "INSERT INTO moz_places VALUES (1, 'http://a.example/', 'A', 1, 0);"
                    "INSERT INTO moz_historyvisits VALUES (1, 1, 1000000000000000000, 0, 1)");
    }
    importAll();
    const json date = valueIn(explained(1), "ActionDateUTC");
    EXPECT_EQ(date.at("check"), "same");
    EXPECT_THAT(date.at("value").dump(), HasSubstr("2001-09-09"));
    EXPECT_THAT(date.at("rule"), HasSubstr("the date is none of the event"));
}

TEST_F(ExplainCliTest, anExpiryThatTenDigitsLoseAccusesNobody) {
    fs::remove(history);
    test::FirefoxCookies(history.parent_path() / "cookies.sqlite").add({.expiry = 253402300799});
    importAll();
    const json record = explained(1);
    const json date = valueIn(record, "ExpiryDate");
    EXPECT_EQ(date.at("check"), "same");
    EXPECT_THAT(date.at("value").dump(), HasSubstr("2050-04-19"));
    EXPECT_THAT(date.at("rule"), HasSubstr("another date than the stored one"));
    EXPECT_THAT(valueIn(record, "expires").at("value").dump(), HasSubstr("9999-12-31"));
    EXPECT_EQ(valueIn(record, "expires").at("check"), "same");
}

/// Safari's and macOS's clock is none that people know: its text says from when it counts.
TEST_F(ExplainCliTest, theClockOfSafariIsToldInPlainWords) {
    fs::create_directories(folder.path() / "evidence/ada");
    const std::string head = "<plist><dict><key>WebHistoryDates</key><array>\n<dict><key></key>";
    writeWhole(folder.path() / "evidence/ada/History.plist",
               head + "<string>http://a.example/?a=1&amp;b</string>\n<key>lastVisitedDate</key>"
                      "<string>320673600.5</string><key>visitCount</key><integer>3</integer>"
                      "</dict></array></dict></plist>");
    importAll();
    for (int row = 1; row <= 4; ++row) {
        const json record = explained(row);
        if (record.at("kind") != "Safari History")
            continue;
        const json date = valueIn(record, "ActionDateUTC");
        EXPECT_EQ(date.at("stored"), "320673600.5");
        EXPECT_EQ(date.at("check"), "same");
        EXPECT_EQ(date.at("value"), "2011-03-01 12:00:00 [UTC]");
        EXPECT_THAT(date.at("rule"), HasSubstr("seconds since 2001-01-01 00:00:00 UTC"));
        EXPECT_THAT(date.at("place"), HasSubstr("line 3, column"));
        EXPECT_THAT(date.at("place"), HasSubstr("value of key \"lastVisitedDate\""));
        const json url = valueIn(record, "URL");
        EXPECT_EQ(url.at("stored"), "http://a.example/?a=1&amp;b");
        EXPECT_EQ(url.at("offset"), head.size() + std::string("<string>").size());
        EXPECT_EQ(url.at("check"), "same");
        return;
    }
    FAIL() << "no row of the list";
}

/// The unit of this very number, not all that the column may have.
TEST_F(ExplainCliTest, secondsAreToldAsSeconds) {
    {
        SQLite::Database file((history.parent_path() / "Web Data").string(),
                              SQLite::OPEN_CREATE | SQLite::OPEN_READWRITE);
        file.exec("CREATE TABLE meta (key TEXT, value TEXT);"
                  "CREATE TABLE keywords (id INTEGER PRIMARY KEY, short_name TEXT, url TEXT);"
                  "CREATE TABLE autofill (name TEXT, value TEXT, value_lower TEXT, date_created "
                  "INTEGER, date_last_used INTEGER, count INTEGER, PRIMARY KEY (name, value));"
                  "INSERT INTO autofill VALUES ('town', 'Eastkey', 'eastkey', 1298981430, "
                  "1298981431, 2)");
    }
    importAll();
    int found = 0;
    for (const json &record : ofKind("Chrome Form Value")) {
        ++found;
        const json date = valueIn(record, "ActionDateUTC");
        EXPECT_THAT(date.at("rule").get<std::string>(),
                    testing::StartsWith("seconds since 1970-01-01, UTC"));
        EXPECT_EQ(date.at("check"), "same");
    }
    EXPECT_GT(found, 0);
}

} // namespace
} // namespace nv::test
