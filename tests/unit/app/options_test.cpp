#include "OptionsFixture.h"
#include "app/NetworkSwitch.h"
#include "app/ProjectOptions.h"
#include "base/Files.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using OptionsTest = test::OptionsFixture;

TEST_F(OptionsTest, theDialogsDefaultsDifferFromThoseOfTheStart) {
    EXPECT_EQ(state().DateFormat, "yyyy-mm-dd");
    EXPECT_EQ(shown().DateFormat, "YYYY-MM-DD");
    EXPECT_EQ(shown().TimeFormat, "24:00:00");
    EXPECT_EQ(state().ThumbnailRedrawTimeout, 5);
    EXPECT_EQ(shown().ThumbnailRedrawTimeout, 15);
}

TEST_F(OptionsTest, theRedrawTimeOutIsLookedForInItsOwnSection) {
    settings("[OPTIONS]\nThumbnailRedrawTimeout=20\n[THUMBNAILS]\nThumbnailRedrawTimeout=7\n");
    start();
    EXPECT_EQ(state().ThumbnailRedrawTimeout, 7);
    EXPECT_EQ(shown().ThumbnailRedrawTimeout, 20);
}

TEST_F(OptionsTest, emptyFormatsBecomeTheirOwnDefaults) {
    Options options = shown();
    options.DateFormat.clear();
    options.TimeFormat.clear();
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().DateFormat, "MM/DD/YY");
    EXPECT_EQ(state().TimeFormat, "Hh:Nn:Ss");
    EXPECT_EQ(state().DateTimeFormat, "MM/DD/YY Hh:Nn:Ss");
    EXPECT_EQ(ini("OPTIONS", "DateFormat"), "MM/DD/YY");
    EXPECT_EQ(ini("OPTIONS", "TimeFormat"), "Hh:Nn:Ss");
}

TEST_F(OptionsTest, noZoneIsRefusedAndTheStepsBeforeStayApplied) {
    Options options = shown();
    options.Time_Zone_ID.reset();
    options.VerifyFileSignatures = false;
    options.DateFormat = "dd.mm.yyyy";
    options.EnableDSTChanges = false;
    options.GalleryIncludeHTML = false;
    examiner.expect("zone-not-selected");
    const OptionsOutcome outcome = applyOptions(*program, options);
    EXPECT_FALSE(outcome.applied);
    EXPECT_EQ(outcome.focus, OptionsField::zone);
    EXPECT_EQ(examiner.heard.back().title, "Time Zone Not Selected");
    EXPECT_EQ(examiner.heard.back().text, "A time zone setting has not been defined.\n"
                                          "Please select a time zone before continuing...");
    EXPECT_FALSE(state().VerifyFileSignatures);
    EXPECT_FALSE(program->import.VerifyFileSignatures);
    EXPECT_EQ(ini("OPTIONS", "VerifyFileSignatures"), "False");
    EXPECT_EQ(state().DateFormat, "dd.mm.yyyy");
    EXPECT_FALSE(state().EnableDSTChanges);
    EXPECT_TRUE(state().GalleryIncludeHTML) << "a step behind the refusal";
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludeHTML"), "(none)");
}

TEST_F(OptionsTest, noZoneIsRefusedEvenWhenNothingElseChanged) {
    Options options = shown();
    options.Time_Zone_ID.reset();
    examiner.expect("zone-not-selected");
    EXPECT_FALSE(apply(options));
}

TEST_F(OptionsTest, aZoneWithDaylightTimeOffIsInStandardTime) {
    Options options = shown(); // the clock stands in June
    options.Time_Zone_ID = 15;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().GMTZone.DaylightCode, "DST");
    options.EnableDSTChanges = false;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().GMTZone.DaylightCode, "STD");
    EXPECT_FALSE(state().GMTZone.DSTInEffect);
    EXPECT_EQ(ini("OPTIONS", "TimeZoneID"), "15");
    EXPECT_EQ(ini("OPTIONS", "TimeZoneBias"), "300");
    EXPECT_EQ(ini("OPTIONS", "TimeZoneName"), state().GMTZone.tzName);
}

TEST_F(OptionsTest, wrongFoldersAreRefusedBehindTheZone) {
    openCase();
    Options options = shown();
    options.Time_Zone_ID = 20;
    options.TempFolderPath = folder.path() / "none";
    examiner.expect("invalid-temp-folder");
    EXPECT_EQ(applyOptions(*program, options).focus, OptionsField::temp);
    EXPECT_EQ(examiner.heard.back().text, "The selected TEMP folder is invalid or does not exist.");
    EXPECT_EQ(examiner.heard.back().title, "Invalid Folder Path");
    EXPECT_EQ(state().GMTZone.tzTimeZoneID, 20) << "the zone was applied";
    EXPECT_EQ(inProject("TimeZoneID"), "20");
    EXPECT_EQ(inProject("DateFormat"), "") << "the last step wasn't reached";
    options.TempFolderPath = state().TempFolderRoot;
    options.RootPath = folder.path() / "none";
    examiner.expect("invalid-base-folder");
    EXPECT_EQ(applyOptions(*program, options).focus, OptionsField::base);
    EXPECT_EQ(examiner.heard.back().text, "The selected BASE folder is invalid or does not exist.");
}

TEST_F(OptionsTest, aTempFolderWhoseEmptyingWouldHurtIsInvalid) {
    Options options = shown();
    options.TempFolderPath = folder.path(); // holds the program and its settings
    examiner.expect("invalid-temp-folder");
    EXPECT_FALSE(apply(options));
}

TEST_F(OptionsTest, aBaseFolderThatIsUnpluggedNowDoesntBlockTheDialog) {
    openCase();
    setRootPath(*program, folder.path() / "unplugged");
    EXPECT_TRUE(apply(shown()));
    EXPECT_EQ(state().RootPath, folder.path() / "unplugged");
}

TEST_F(OptionsTest, theChosenTempFolderHoldsForTheRunAndOverProjects) {
    fs::create_directories(folder.path() / "scratch");
    Options options = shown();
    options.TempFolderPath = folder.path() / "scratch";
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().TempFolderRoot, folder.path() / "scratch");
    EXPECT_EQ(state().TempFolderPath.parent_path(), folder.path() / "scratch");
    EXPECT_EQ(tempFolderFrom(*program), folder.path() / "scratch");
    EXPECT_EQ(ini("FILE PATHS", "TempFolder"), (folder.path() / "scratch").string());
    EXPECT_EQ(ini("DEFAULT", "TempFolderPath"), "(none)");
}

TEST_F(OptionsTest, everythingElseIsAppliedAndWritten) {
    Options options = shown();
    options.PublishTempFolder = "/publish";
    options.AgencyLogoPath = "/logo.jpg";
    options.TemplatesPath = "/templates";
    options.DisableScriptTags = true;
    options.GalleryIncludePictures = false;
    options.RedrawThumbIfPageRebuilt = false;
    options.GalleryRecordsPerPage = 50;
    options.ThumbnailRedrawTimeout = 30;
    options.EnablePARD = true;
    options.PARDFrom = 10;
    options.PARDTo = 60;
    options.switchedOffline = false;
    options.ViewerThumbnailWidth = 160;
    options.ReportThumbnailWidth = 120;
    options.ProgressBarRefreshRate = 2;
    options.WideRecordIds = true;
    options.ThumbnailsWhileImporting = true;
    options.TemplateMatchByTitle = false;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().PublishTempFolder, "/publish");
    EXPECT_EQ(ini("FILE PATHS", "PublishFolder"), "/publish");
    EXPECT_EQ(ini("FILE PATHS", "AgencyLogoPath"), "/logo.jpg");
    EXPECT_EQ(ini("FILE PATHS", "LastProjectDBPath"), "(none)");
    EXPECT_EQ(state().TemplatesPath, "/templates");
    EXPECT_TRUE(state().DisableScriptTags);
    EXPECT_EQ(ini("OPTIONS", "DisableScriptTags"), "True");
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludePictures"), "False");
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludeHTML"), "True");
    EXPECT_EQ(ini("OPTIONS", "RedrawThumbIfPageRebuilt"), "False");
    EXPECT_EQ(state().GalleryRecordsPerPage, 50);
    EXPECT_EQ(state().ThumbnailRedrawTimeout, 30);
    EXPECT_TRUE(state().PARD.EnablePARD);
    EXPECT_EQ(state().PARD.FromValue, 10);
    EXPECT_EQ(state().PARD.ToValue, 60);
    EXPECT_FALSE(state().ConnectionOffline);
    EXPECT_EQ(ini("THUMBNAILS", "ViewerThumbnailWidth"), "160");
    EXPECT_EQ(ini("THUMBNAILS", "ReportThumbnailWidth"), "120");
    EXPECT_EQ(ini("OPTIONS", "ProgressBarRefreshRate"), "2");
    EXPECT_EQ(program->thread.ProgressBarRefreshRate, 2);
    EXPECT_EQ(ini("BEYOND", "WideRecordIds"), "True");
    EXPECT_TRUE(program->import.MakeThumbnails);
    EXPECT_FALSE(state().TemplateMatchByTitle);
}

TEST_F(OptionsTest, someSettingsHoldForTheRunUnlessKept) {
    Options options = shown();
    options.GalleryRecordsPerPage = 50;
    options.DisableFileVersionCheck = true;
    options.NetworkConnectionName = "eth7";
    ASSERT_TRUE(apply(options));
    EXPECT_TRUE(state().DisableFileVersionCheck);
    EXPECT_EQ(state().NetworkConnectionName, "eth7");
    EXPECT_EQ(ini("OPTIONS", "GalleryRecordsPerPage"), "(none)");
    EXPECT_EQ(ini("OPTIONS", "DisableFileVersionCheck"), "(none)");
    EXPECT_EQ(ini("OPTIONS", "NetworkConnectionName"), "(none)");
    options.KeepAllOptions = true;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(ini("OPTIONS", "GalleryRecordsPerPage"), "50");
    EXPECT_EQ(ini("OPTIONS", "DisableFileVersionCheck"), "True");
    EXPECT_EQ(ini("OPTIONS", "NetworkConnectionName"), "eth7");
    EXPECT_EQ(ini("THUMBNAILS", "ThumbnailRedrawTimeout"), "15");
}

TEST_F(OptionsTest, theProjectGetsItsValuesAndATrailEntryForWhatChanged) {
    openCase();
    fs::create_directories(folder.path() / "evidence");
    Options options = shown();
    options.Time_Zone_ID = 20;
    options.RootPath = folder.path() / "evidence";
    options.GalleryRecordsPerPage = 50;
    options.GalleryIncludeHTML = false;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(inProject("RootPath"), (folder.path() / "evidence").string());
    EXPECT_EQ(inProject("DateFormat"), "YYYY-MM-DD");
    EXPECT_EQ(inProject("TimeFormat"), "24:00:00");
    EXPECT_EQ(inProject("LastTimeZoneID"), "20");
    EXPECT_EQ(inProject("ProjectDBPath"), (folder.path() / "case.nvp").string());
    EXPECT_EQ(inProject("GalleryIncludeHTML"), "False");
    EXPECT_EQ(inProject("GalleryIncludePictures"), "True");
    EXPECT_EQ(inProject("GalleryRecordsPerPage"), "50");
    EXPECT_EQ(inProject("RedrawThumbIfPageRebuilt"), "True");
    EXPECT_EQ(ini("FILE PATHS", "LastProjectDBPath"), (folder.path() / "case.nvp").string());
    const std::size_t before = trail().size();
    EXPECT_EQ(trail().back().Action, "Options");
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(trail().size(), before) << "nothing has changed";
    options.GalleryRecordsPerPage = 60;
    ASSERT_TRUE(apply(options));
    ASSERT_EQ(trail().size(), before + 1);
    EXPECT_EQ(trail().back().Detail, "GalleryRecordsPerPage: \"50\" -> \"60\"");
}

TEST_F(OptionsTest, aFormatIsWrittenAtOnceAndSampled) {
    EXPECT_EQ(chooseDateFormat(*program, "ddd d mmm yyyy"), "Wed 15 Jun 2011");
    EXPECT_EQ(ini("OPTIONS", "DateFormat"), "ddd d mmm yyyy");
    EXPECT_EQ(chooseTimeFormat(*program, "24:00:00"), "12:00:00");
    EXPECT_EQ(ini("OPTIONS", "TimeFormat"), "24:00:00");
    EXPECT_EQ(state().DateFormat, "yyyy-mm-dd") << "in force only after Okay";
}

TEST_F(OptionsTest, aZoneListThatCantBeReadIsToldAndLogged) {
    fs::remove(paths.zones());
    examiner.expect("zones-not-read");
    EXPECT_TRUE(InitTimeZone(*program).empty());
    const Bytes log = readWhole(program->log.path());
    EXPECT_THAT(std::string(ByteView(log).raw()), HasSubstr("OptionsForm.InitTimeZone()"));
}

TEST_F(OptionsTest, theListSelectsByIdThenByBiasAndCanadaWins) {
    const auto row = [](std::int32_t id, const char *places, std::int16_t bias) {
        ZoneRow zone;
        zone.Time_Zone_ID = id;
        zone.Landmarks = places;
        zone.STD_Bias = bias;
        return zone;
    };
    const ZoneRow plain = row(1, "Bogota", 300);
    const ZoneRow canada = row(2, "Eastern Time (US & Canada)", 300);
    const ZoneRow other = row(3, "Chicago", 360);
    state().GMTZone.tzBias = 300;
    state().GMTZone.tzTimeZoneID = 3;
    EXPECT_EQ(readOptions(*program, {plain, canada, other}).Time_Zone_ID, 3);
    state().GMTZone.tzTimeZoneID = 99;
    EXPECT_EQ(readOptions(*program, {plain, canada, other}).Time_Zone_ID, 2);
    EXPECT_EQ(readOptions(*program, {plain, other}).Time_Zone_ID, 1);
    EXPECT_EQ(readOptions(*program, {other}).Time_Zone_ID, std::nullopt);
}

TEST_F(OptionsTest, theNamedConnectionIsSwitchedWithoutChangingTheSetting) {
    network.status = "ENABLED";
    network.answer = Switched::done;
    examiner.expect("network-disabled");
    switchConnectionOver(*program, "eth7");
    ASSERT_EQ(network.asked.size(), 1U);
    EXPECT_EQ(network.asked[0].first, "eth7");
    EXPECT_EQ(network.asked[0].second, ConnectionState::disabled);
    EXPECT_EQ(state().NetworkConnectionName, "Local Area Connection");
    network.status = "DISABLED";
    switchConnectionOver(*program, "eth7");
    EXPECT_EQ(network.asked[1].second, ConnectionState::enabled);
}

TEST_F(OptionsTest, settingsThatCantBeWrittenAreTold) {
    Options options = shown();
    options.GalleryIncludeHTML = false;
    fs::create_directories(paths.settings().native() + ".new"); // stands where a file is written
    examiner.expect("settings-not-written");
    EXPECT_TRUE(apply(options));
    EXPECT_THAT(examiner.heard.back().text, HasSubstr(paths.settings().string()));
    EXPECT_FALSE(state().GalleryIncludeHTML) << "holds until the program ends";
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludeHTML"), "(none)");
}

} // namespace
} // namespace nv
