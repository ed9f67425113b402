#include "readers/chrome/profile/Settings.h"
#include "support/FactText.h"
#include "support/FileReading.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::fact;

struct ChromiumSettings : testing::Test {
    const std::vector<UrlRecord> &read(const std::string &bytes,
                                       const std::string &name = "Preferences") {
        return reading.read(parseChromiumSettings, folder.write(name, bytes));
    }
    /// The exceptions of one permission.
    const std::vector<UrlRecord> &readExceptions(const std::string &permission,
                                                 const std::string &sites) {
        return read("{\"profile\": {\"content_settings\": {\"exceptions\": {\"" + permission +
                    "\": " + sites + "}}}}");
    }
    test::TempFolder folder;
    test::FileReading reading;
};

TEST_F(ChromiumSettings, whatASiteMayDoIsARow) {
    const auto &rows = readExceptions(
        "geolocation", R"({"https://news.example:443,*": {"last_modified": "12952612800000000",
        "setting": 2, "expiration": "12952612860000000"}, "[*.]port.example,https://around.example":
        {"last_modified": "0", "setting": 1}})");
    ASSERT_EQ(rows.size(), 2U);
    const UrlRecord &r = rows[0];
    EXPECT_EQ(r.cacheType, "Chrome Site Setting");
    EXPECT_EQ(r.Action + r.Status, "SavedSite Setting");
    EXPECT_EQ(r.URLRawValue, "https://news.example:443,*");
    EXPECT_EQ(r.URL, "https://news.example:443");
    EXPECT_EQ(r.host, "news.example");
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(isoUtc(r.ExpiryDate), "2011-06-15T12:01:00Z");
    EXPECT_EQ(fact(r, "permission"), "geolocation");
    EXPECT_EQ(fact(r, "setting"), "blocked [2]");
    EXPECT_EQ(fact(r, "last_modified"), "2011-06-15 12:00:00 [12952612800000000]");
    EXPECT_EQ(fact(r, "embedded_in"), "");
    EXPECT_EQ(rows[1].host, "port.example");
    EXPECT_EQ(fact(rows[1], "setting"), "allowed [1]");
    EXPECT_EQ(fact(rows[1], "embedded_in"), "https://around.example");
    EXPECT_FALSE(rows[1].ActionDateUTC.has());
}

TEST_F(ChromiumSettings, aPermissionMayKeepMoreThanANumber) {
    const auto &rows = readExceptions(
        "site_engagement", R"({"https://a.example:443,*": {"last_modified": "12952612800000000",
        "setting": {"lastEngagementTime": 1.29526128e+16, "rawScore": 4.5, "x": {"y": true}}}})");
    EXPECT_EQ(fact(rows.at(0), "setting"),
              "lastEngagementTime=1.29526128e+16; rawScore=4.5; x.y=yes");
    EXPECT_EQ(fact(rows[0], "last_used"), "2011-06-15 12:00:00 [12952612800000000]");
}

TEST_F(ChromiumSettings, zoomIsAFactorOfTheLevel) {
    const auto &rows = read(
        R"({"partition": {"per_host_zoom_levels": {"x": {"a.example": {"last_modified":
        "12952612800000000", "zoom_level": 1.2239010857415449}, "b.example": -1.5778829311823859}}},
        "profile": {"per_host_zoom_levels": {"c.example": 3.8017840169239308}}})");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].host, "a.example");
    EXPECT_EQ(fact(rows[0], "zoom").substr(0, 4), "1.25");
    EXPECT_EQ(isoUtc(rows[0].ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(fact(rows[1], "zoom").substr(0, 4), "0.75");
    EXPECT_EQ(fact(rows[2], "zoom").substr(0, 2), "2 ");
}

TEST_F(ChromiumSettings, earlyVersionsKeepAllPermissionsOfASiteTogether) {
    const auto &rows = read(R"({"profile": {"content_settings": {"pattern_pairs":
        {"[*.]a.example,*": {"geolocation": 1, "images": 2}}}}})");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(fact(rows[0], "permission") + fact(rows[0], "setting"), "geolocationallowed [1]");
    EXPECT_EQ(fact(rows[1], "permission") + fact(rows[1], "setting"), "imagesblocked [2]");
}

TEST_F(ChromiumSettings, accountsOfAProfileAreRows) {
    const auto &rows = read(R"({"account_info": [{"email": "Mara@port.example", "full_name":
        "Mara Hafen", "gaia": "1234", "accountcapabilities": {"a": 1}}],
        "google": {"services": {"last_username": "mara@port.example", "username":
        "old@port.example"}}, "profile": {"creation_time": "12952612800000000", "name": "Work"},
        "extensions": {"last_chrome_version": "156.0.8078.79"}})");
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].cacheType, "Chrome Account");
    EXPECT_EQ(rows[0].User + rows[0].WebpageTitle, "Mara@port.exampleMara Hafen");
    EXPECT_EQ(fact(rows[0], "account") + fact(rows[0], "account_id"), "Mara@port.example1234");
    EXPECT_EQ(fact(rows[1], "account"), "old@port.example") << "the other one is there already";
    EXPECT_EQ(rows[2].Status, "Profile");
    EXPECT_EQ(isoUtc(rows[2].ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(fact(rows[2], "profile_name"), "Work");
    EXPECT_EQ(reading.origin.browserVersion, "156.0.8078.79");
}

TEST_F(ChromiumSettings, profilesOfALocalStateAreRows) {
    const auto &rows = read(R"({"profile": {"info_cache": {"Profile 1": {"active_time":
        1308139200.5, "gaia_id": "77", "gaia_name": "Mara Hafen", "name": "Harbour", "user_name":
        "mara@port.example"}, "Default": {"name": "Person 1", "user_name": ""}}},
        "user_experience_metrics": {"stability": {"stats_version": "156.0.8078.79-64-devel"}}})",
                            "Local State");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].Profile, "Profile 1");
    EXPECT_EQ(rows[0].User, "mara@port.example");
    EXPECT_EQ(isoUtc(rows[0].ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(fact(rows[0], "profile_name") + fact(rows[0], "full_name"), "HarbourMara Hafen");
    EXPECT_EQ(rows[1].Profile + rows[1].Status, "DefaultProfile");
    EXPECT_EQ(reading.origin.browserVersion, "156.0.8078.79");
}

TEST_F(ChromiumSettings, aVersionThatIsKnownStaysAndOthersAreNone) {
    reading.origin.browserVersion = "1.2";
    read(R"({"extensions": {"last_chrome_version": "156.0"}})");
    EXPECT_EQ(reading.origin.browserVersion, "1.2");
    reading.origin.browserVersion.clear();
    read(R"({"extensions": {"last_chrome_version": "<script>"}})");
    EXPECT_EQ(reading.origin.browserVersion, "");
}

TEST_F(ChromiumSettings, wrongTypesAreReadAsWhatTheyCanBe) {
    const auto &rows = read(R"({"profile": {"content_settings": {"exceptions": {"a": {"s,*": 7,
        "t,*": [], "u,*": {"setting": "x", "last_modified": {"y": 1}}, "": {"setting": 1e300}},
        "b": 1, "c": []}}, "info_cache": 3, "creation_time": "soon"}, "account_info": {"x": {}},
        "partition": {"per_host_zoom_levels": {"x": {"z.example": {"zoom_level": "large"},
        "y.example": 1e300}}}})");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    ASSERT_EQ(rows.size(), 6U);
    EXPECT_EQ(fact(rows[0], "setting"), "x");
}

TEST_F(ChromiumSettings, whatStandsBeforeDamageIsKept) {
    readExceptions("images", R"({"a,*": {"setting": 1}, "b,*": {"sett)");
    EXPECT_EQ(reading.sink.records.size(), 1U);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.log.entries.size(), 1U);
    read("no settings");
    EXPECT_EQ(reading.result.state, ReadState::failed);
}

TEST_F(ChromiumSettings, aCancelEndsTheReading) {
    std::string sites = "{\"a,*\": {\"setting\": 1}";
    for (int i = 0; i < 2000; ++i)
        sites += ", \"" + std::to_string(i) + ",*\": {\"setting\": 1}";
    const auto file = folder.write(
        "Preferences",
        "{\"profile\": {\"content_settings\": {\"exceptions\": {\"images\": " + sites + "}}}}}");
    test::CancelAfter task(2);
    reading.read(parseChromiumSettings, file, task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_LT(reading.sink.records.size(), 1000U);
}

} // namespace
} // namespace nv
