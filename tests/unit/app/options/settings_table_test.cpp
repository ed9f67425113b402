#include "app/options/SettingsTable.h"
#include "unit/app/ProgramFixture.h"

#include <gmock/gmock.h>

#include <set>

namespace nv {
namespace {

using testing::HasSubstr;

struct SettingsTableTest : test::ProgramFixture {
    SettingsTableTest() { start(); }
    CheckedValue check(std::string_view name, std::string_view value) {
        return checkValue(*program, *settingsNamed(name).at(0), value);
    }
    std::string value(std::string_view name) {
        return valueOf(*program, *settingsNamed(name).at(0));
    }
};

TEST_F(SettingsTableTest, noKeyStandsTwiceAndEachSaysWhatItChanges) {
    std::set<std::string> names;
    for (const SettingFacts &facts : settingsTable()) {
        EXPECT_TRUE(names.insert(fullName(facts)).second) << fullName(facts);
        EXPECT_FALSE(facts.what.empty()) << fullName(facts);
    }
}

TEST_F(SettingsTableTest, everyDefaultIsAGoodValue) {
    for (const SettingFacts &facts : settingsTable()) {
        if (facts.kind == SettingKind::file)
            continue;
        EXPECT_EQ(checkValue(*program, facts, defaultOf(*program, facts)).refusal, "")
            << fullName(facts);
    }
}

TEST_F(SettingsTableTest, aKeyOfTwoSectionsIsFoundTwice) {
    EXPECT_EQ(settingsNamed("thumbnailredrawtimeout").size(), 2U);
    EXPECT_EQ(settingsNamed("thumbnails/ThumbnailRedrawTimeout").size(), 1U);
    EXPECT_TRUE(settingsNamed("Nothing").empty());
}

TEST_F(SettingsTableTest, valuesAreChecked) {
    EXPECT_EQ(check("VerifyFileSignatures", "true").value, "True") << "the only text read as true";
    EXPECT_THAT(check("VerifyFileSignatures", "1").refusal, HasSubstr("True or False"));
    EXPECT_THAT(check("VerifyFileSignatures", "").refusal, HasSubstr("True or False"));
    EXPECT_EQ(check("GalleryRecordsPerPage", "007").value, "7");
    EXPECT_THAT(check("GalleryRecordsPerPage", "0").refusal, HasSubstr("from 1 to 32767"));
    EXPECT_NE(check("GalleryRecordsPerPage", "12 pages").refusal, "");
    EXPECT_NE(check("GalleryRecordsPerPage", "99999999999999999999").refusal, "");
    EXPECT_EQ(check("TimeZoneID", "15").refusal, "");
    EXPECT_THAT(check("TimeZoneID", "9999").refusal, HasSubstr("no zone"));
    EXPECT_EQ(check("TimeZoneID", "europe/berlin").value, "Europe/Berlin");
    EXPECT_THAT(check("TimeZoneID", "Europe/Berln").refusal, HasSubstr("Europe/Berlin"));
    EXPECT_EQ(check("Theme", "dark").value, "Dark");
    EXPECT_NE(check("Theme", "Pink").refusal, "");
    EXPECT_NE(check("DateFormat", "yyyy\nmm").refusal, "");
    EXPECT_THAT(check("PublishFolder", "/no/such/folder").refusal, HasSubstr("no such folder"));
    EXPECT_THAT(check("AgencyLogoPath", "/no/such.jpg").refusal, HasSubstr("no such file"));
    EXPECT_THAT(check("TempFolderPath", folder.path().string()).refusal,
                HasSubstr("scratch files go there"));
    EXPECT_EQ(check("PublishFolder", "").refusal, "");
}

TEST_F(SettingsTableTest, valuesAndDefaultsAreThoseInForce) {
    EXPECT_EQ(value("DateFormat"), "yyyy-mm-dd");
    EXPECT_EQ(value("TempFolderPath"), (paths.home / "Temp").string());
    ASSERT_TRUE(program->settings.writeIniValue("OPTIONS", "VerifyFileSignatures", "true"));
    EXPECT_EQ(value("VerifyFileSignatures"), "False") << "only True reads as true";
}

TEST_F(SettingsTableTest, hostileValuesAreRefusedWithTheWordsOfOptions) {
    EXPECT_THAT(check("DateFormat", std::string(4001, 'y')).refusal, HasSubstr("4000 bytes"));
    EXPECT_EQ(check("DateFormat", std::string(4000, 'y')).refusal, "");
    EXPECT_EQ(check("TempFolderPath", "../../no/such").refusal,
              "The selected TEMP folder is invalid or does not exist.");
    EXPECT_NE(check("PublishFolder", std::string(3999, 'x')).refusal, "");
    EXPECT_NE(check("CaseNumber", std::string("a\0b", 3)).refusal, "");
    EXPECT_EQ(check("CaseNumber", "\xC3\x84rger \xE4\xBA\x8B").refusal, "");
    std::filesystem::create_directories(folder.path() / "reports");
    EXPECT_EQ(check("PublishFolder", (folder.path() / "home" / ".." / "reports").string()).value,
              (folder.path() / "reports").string());
}

} // namespace
} // namespace nv
