// Real profiles, with what an independent reading found in them.

#include "base/Files.h"
#include "readers/chrome/profile/Bookmarks.h"
#include "readers/chrome/profile/Cookies.h"
#include "readers/chrome/profile/Logins.h"
#include "readers/chrome/profile/Settings.h"
#include "readers/chrome/profile/WebData.h"
#include "support/FactText.h"
#include "support/FileReading.h"
#include "support/Samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::fact;

class ChromiumSample : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        const fs::path folder =
            samples ? samples->parent_path() / "samples-today" / GetParam() : fs::path();
        if (!samples || !fs::is_directory(folder))
            GTEST_SKIP() << "the folder of today's samples is not here";
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        profile = folder / "evidence/home/ada/.config/chromium/Default";
    }

    const std::vector<UrlRecord> &read(test::FileReading::ReadFunction reader,
                                       const std::string &name) {
        const auto &records = reading.read(reader, profile / name);
        EXPECT_EQ(reading.result.state, ReadState::complete) << reading.result.reason;
        return records;
    }

    std::vector<UrlRecord> of(std::string_view kind) const {
        std::vector<UrlRecord> records;
        std::ranges::copy_if(reading.sink.records, std::back_inserter(records),
                             [kind](const UrlRecord &each) { return each.cacheType == kind; });
        return records;
    }

    fs::path profile;
    json expected;
    test::FileReading reading;
};

TEST_P(ChromiumSample, cookiesHaveTheirValues) {
    const auto &records = read(parseChromeCookiesFile, "Cookies");
    ASSERT_EQ(records.size(), expected.at("cookies").size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const json &cookie = expected.at("cookies").at(i);
        EXPECT_EQ(records[i].URLFileName, cookie.at("name"));
        EXPECT_EQ(fact(records[i], "value"), cookie.at("plain"));
        EXPECT_EQ(fact(records[i], "path"), cookie.at("path"));
        EXPECT_EQ(fact(records[i], "secure"), cookie.at("is_secure") == 1 ? "yes" : "no");
    }
}

TEST_P(ChromiumSample, formValuesHaveTheirCounts) {
    read(parseChromiumWebData, "Web Data");
    const auto forms = of("Chrome Form Value");
    ASSERT_EQ(forms.size(), expected.at("autofill").size());
    for (std::size_t i = 0; i < forms.size(); ++i) {
        const json &form = expected.at("autofill").at(i);
        EXPECT_EQ(fact(forms[i], "field_name"), form.at("name"));
        EXPECT_EQ(fact(forms[i], "field_value"), form.at("value"));
        EXPECT_EQ(fact(forms[i], "count"), std::to_string(form.at("count").get<int>()));
        EXPECT_EQ(forms[i].ActionDateUTC.unixSeconds(), form.at("date_last_used"));
    }
    ASSERT_EQ(of("Chrome Address").size(), 1U);
    EXPECT_EQ(fact(of("Chrome Address")[0], "address"), "1 Mill Race, Harbourton");
}

TEST_P(ChromiumSample, loginsKeepTheirPasswords) {
    const auto &records = read(parseChromiumLogins, "Login Data");
    ASSERT_EQ(records.size(), expected.at("logins").size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const json &login = expected.at("logins").at(i);
        EXPECT_EQ(records[i].URL, login.at("origin_url"));
        EXPECT_EQ(records[i].User, login.at("username_value"));
        for (const RecordFact &each : records[i].facts)
            EXPECT_EQ(factText(each).find(login.at("plain").get<std::string>()), std::string::npos);
    }
}

TEST_P(ChromiumSample, bookmarksAreThereOnce) {
    const auto &records = read(parseChromiumBookmarks, "Bookmarks");
    ASSERT_EQ(records.size(), expected.at("bookmarks").size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        const json &bookmark = expected.at("bookmarks").at(i);
        EXPECT_EQ(records[i].URL, bookmark.at("url"));
        EXPECT_EQ(records[i].WebpageTitle, bookmark.at("title"));
        EXPECT_EQ(fact(records[i], "folder"), bookmark.at("folder"));
    }
    EXPECT_TRUE(read(parseChromiumBookmarks, "EncryptedBookmarks2").empty()) << "the same";
}

TEST_P(ChromiumSample, settingsTellPermissionsProfileAndVersion) {
    read(parseChromiumSettings, "Preferences");
    const auto sites = of("Chrome Site Setting");
    const auto isAllowed = [](const UrlRecord &each) {
        return fact(each, "permission") == "notifications" &&
               fact(each, "setting") == "allowed [1]";
    };
    EXPECT_EQ(std::ranges::count_if(sites, isAllowed), 1);
    EXPECT_EQ(of("Chrome Account").size(), 1U);
    EXPECT_TRUE(reading.origin.browserVersion.starts_with("156.0."));
    read(parseChromiumSettings, "../Local State");
    ASSERT_EQ(reading.sink.records.size(), 1U);
    EXPECT_EQ(reading.sink.records[0].Profile, "Default");
}

INSTANTIATE_TEST_SUITE_P(Real, ChromiumSample,
                         testing::Values("chromium156_simple", "chromium156_blockfile",
                                         "chromium156_sql"));

} // namespace
} // namespace nv
