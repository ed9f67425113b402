#include "OptionsFixture.h"
#include "app/options/ProjectOptions.h"
#include "app/options/SettingsInForce.h"
#include "app/program/NetworkSwitch.h"
#include "app/project/EvidenceFolders.h"
#include "base/Files.h"
#include "support/RefuseValues.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using OptionsTest = test::OptionsFixture;

TEST_F(OptionsTest, theDialogsDefaultsDifferFromThoseOfTheStart) {
    EXPECT_EQ(state().dateFormat, "yyyy-mm-dd");
    EXPECT_EQ(shown().dateFormat, "YYYY-MM-DD");
    EXPECT_EQ(shown().timeFormat, "24:00:00");
    EXPECT_EQ(state().thumbnailRedrawTimeout, 5);
    EXPECT_EQ(shown().thumbnailRedrawTimeout, 15);
}

TEST_F(OptionsTest, theRedrawTimeOutIsLookedForInItsOwnSection) {
    settings("[OPTIONS]\nThumbnailRedrawTimeout=20\n[THUMBNAILS]\nThumbnailRedrawTimeout=7\n");
    start();
    EXPECT_EQ(state().thumbnailRedrawTimeout, 7);
    EXPECT_EQ(shown().thumbnailRedrawTimeout, 20);
}

TEST_F(OptionsTest, emptyFormatsBecomeTheirOwnDefaults) {
    Options options = shown();
    options.dateFormat.clear();
    options.timeFormat.clear();
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().dateFormat, "MM/DD/YY");
    EXPECT_EQ(state().timeFormat, "Hh:Nn:Ss");
    EXPECT_EQ(state().dateTimeFormat, "MM/DD/YY Hh:Nn:Ss");
    EXPECT_EQ(ini("OPTIONS", "DateFormat"), "MM/DD/YY");
    EXPECT_EQ(ini("OPTIONS", "TimeFormat"), "Hh:Nn:Ss");
}

TEST_F(OptionsTest, noZoneIsRefusedAndTheStepsBeforeStayApplied) {
    Options options = shown();
    options.timeZoneID.reset();
    options.verifyFileSignatures = false;
    options.dateFormat = "dd.mm.yyyy";
    options.enableDSTChanges = false;
    options.galleryIncludeHTML = false;
    examiner.expect("zone-not-selected");
    const OptionsOutcome outcome = applyOptions(*program, options);
    EXPECT_FALSE(outcome.applied);
    EXPECT_EQ(outcome.focus, OptionsField::zone);
    EXPECT_EQ(examiner.heard.back().title, "Time Zone Not Selected");
    EXPECT_EQ(examiner.heard.back().text, "A time zone setting has not been defined.\n"
                                          "Please select a time zone before continuing...");
    EXPECT_FALSE(state().verifyFileSignatures);
    EXPECT_FALSE(program->import.verifyFileSignatures);
    EXPECT_EQ(ini("OPTIONS", "VerifyFileSignatures"), "False");
    EXPECT_EQ(state().dateFormat, "dd.mm.yyyy");
    EXPECT_FALSE(state().enableDSTChanges);
    EXPECT_TRUE(state().galleryIncludeHTML) << "a step behind the refusal";
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludeHTML"), "(none)");
}

TEST_F(OptionsTest, noZoneIsRefusedEvenWhenNothingElseChanged) {
    Options options = shown();
    options.timeZoneID.reset();
    examiner.expect("zone-not-selected");
    EXPECT_FALSE(apply(options));
}

TEST_F(OptionsTest, aZoneWithDaylightTimeOffIsInStandardTime) {
    Options options = shown(); // the clock stands in June
    options.timeZoneID = 15;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().gmtZone.daylightCode, "DST");
    options.enableDSTChanges = false;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().gmtZone.daylightCode, "STD");
    EXPECT_FALSE(state().gmtZone.dstInEffect);
    EXPECT_EQ(ini("OPTIONS", "TimeZoneID"), "15");
    EXPECT_EQ(ini("OPTIONS", "TimeZoneBias"), "300");
    EXPECT_EQ(ini("OPTIONS", "TimeZoneName"), state().gmtZone.tzName);
}

TEST_F(OptionsTest, wrongFoldersAreRefusedAfterTheZone) {
    openCase();
    Options options = shown();
    options.timeZoneID = 20;
    options.tempFolderPath = folder.path() / "none";
    examiner.expect("invalid-temp-folder");
    EXPECT_EQ(applyOptions(*program, options).focus, OptionsField::temp);
    EXPECT_EQ(examiner.heard.back().text, "The selected TEMP folder is invalid or does not exist.");
    EXPECT_EQ(examiner.heard.back().title, "Invalid Folder Path");
    EXPECT_EQ(state().gmtZone.tzTimeZoneID, 20) << "the zone was applied";
    EXPECT_EQ(inProject("TimeZoneID"), "20");
    EXPECT_EQ(inProject("DateFormat"), "") << "the last step wasn't reached";
    options.tempFolderPath = state().tempFolderRoot;
    options.rootPath = folder.path() / "none";
    examiner.expect("invalid-base-folder");
    EXPECT_EQ(applyOptions(*program, options).focus, OptionsField::base);
    EXPECT_EQ(examiner.heard.back().text, "The selected BASE folder is invalid or does not exist.");
}

TEST_F(OptionsTest, aTempFolderWhoseEmptyingWouldHurtIsInvalid) {
    Options options = shown();
    options.tempFolderPath = folder.path(); // holds the program and its settings
    examiner.expect("invalid-temp-folder");
    EXPECT_FALSE(apply(options));
}

TEST_F(OptionsTest, aBaseFolderThatIsUnpluggedNowDoesntBlockTheDialog) {
    openCase();
    setRootPath(*program, folder.path() / "unplugged");
    EXPECT_TRUE(apply(shown()));
    EXPECT_EQ(state().rootPath, folder.path() / "unplugged");
}

TEST_F(OptionsTest, theChosenTempFolderHoldsForTheRunAndOverProjects) {
    fs::create_directories(folder.path() / "scratch");
    Options options = shown();
    options.tempFolderPath = folder.path() / "scratch";
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().tempFolderRoot, folder.path() / "scratch");
    EXPECT_EQ(state().tempFolderPath.parent_path(), folder.path() / "scratch");
    EXPECT_EQ(tempFolderFrom(*program), folder.path() / "scratch");
    EXPECT_EQ(ini("FILE PATHS", "TempFolder"), (folder.path() / "scratch").string());
    EXPECT_EQ(ini("DEFAULT", "TempFolderPath"), "(none)");
}

TEST_F(OptionsTest, everythingElseIsAppliedAndWritten) {
    Options options = shown();
    options.publishTempFolder = "/publish";
    options.agencyLogoPath = "/logo.jpg";
    options.templatesPath = "/templates";
    options.disableScriptTags = true;
    options.galleryIncludePictures = false;
    options.redrawThumbIfPageRebuilt = false;
    options.galleryRecordsPerPage = 50;
    options.thumbnailRedrawTimeout = 30;
    options.enablePARD = true;
    options.pardFrom = 10;
    options.pardTo = 60;
    options.switchedOffline = false;
    options.viewerThumbnailWidth = 160;
    options.reportThumbnailWidth = 120;
    options.progressBarRefreshRate = 2;
    options.wideRecordIds = true;
    options.thumbnailsWhileImporting = true;
    options.templateMatchByTitle = false;
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(state().publishTempFolder, "/publish");
    EXPECT_EQ(ini("FILE PATHS", "PublishFolder"), "/publish");
    EXPECT_EQ(ini("FILE PATHS", "AgencyLogoPath"), "/logo.jpg");
    EXPECT_EQ(ini("FILE PATHS", "LastProjectDBPath"), "(none)");
    EXPECT_EQ(state().templatesPath, "/templates");
    EXPECT_TRUE(state().disableScriptTags);
    EXPECT_EQ(ini("OPTIONS", "DisableScriptTags"), "True");
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludePictures"), "False");
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludeHTML"), "True");
    EXPECT_EQ(ini("OPTIONS", "RedrawThumbIfPageRebuilt"), "False");
    EXPECT_EQ(state().galleryRecordsPerPage, 50);
    EXPECT_EQ(state().thumbnailRedrawTimeout, 30);
    EXPECT_TRUE(state().pard.enablePARD);
    EXPECT_EQ(state().pard.fromValue, 10);
    EXPECT_EQ(state().pard.toValue, 60);
    EXPECT_FALSE(state().connectionOffline);
    EXPECT_EQ(ini("THUMBNAILS", "ViewerThumbnailWidth"), "160");
    EXPECT_EQ(ini("THUMBNAILS", "ReportThumbnailWidth"), "120");
    EXPECT_EQ(ini("OPTIONS", "ProgressBarRefreshRate"), "2");
    EXPECT_EQ(program->task.progressBarRefreshRate, 2);
    EXPECT_EQ(ini("BEYOND", "WideRecordIds"), "True");
    EXPECT_TRUE(program->import.makeThumbnails);
    EXPECT_FALSE(state().templateMatchByTitle);
}

TEST_F(OptionsTest, someSettingsHoldForTheRunUnlessKept) {
    Options options = shown();
    options.galleryRecordsPerPage = 50;
    options.disableFileVersionCheck = true;
    options.networkConnectionName = "eth7";
    ASSERT_TRUE(apply(options));
    EXPECT_TRUE(state().disableFileVersionCheck);
    EXPECT_EQ(state().networkConnectionName, "eth7");
    EXPECT_EQ(ini("OPTIONS", "GalleryRecordsPerPage"), "(none)");
    EXPECT_EQ(ini("OPTIONS", "DisableFileVersionCheck"), "(none)");
    EXPECT_EQ(ini("OPTIONS", "NetworkConnectionName"), "(none)");
    options.keepAllOptions = true;
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
    options.timeZoneID = 20;
    options.rootPath = folder.path() / "evidence";
    options.galleryRecordsPerPage = 50;
    options.galleryIncludeHTML = false;
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
    EXPECT_EQ(trail().back().action, "Options");
    ASSERT_TRUE(apply(options));
    EXPECT_EQ(trail().size(), before) << "nothing has changed";
    options.galleryRecordsPerPage = 60;
    ASSERT_TRUE(apply(options));
    ASSERT_EQ(trail().size(), before + 1);
    EXPECT_EQ(trail().back().detail, "GalleryRecordsPerPage: \"50\" -> \"60\"");
}

TEST_F(OptionsTest, aFormatIsWrittenAtOnceAndSampled) {
    EXPECT_EQ(chooseDateFormat(*program, "ddd d mmm yyyy"), "Wed 15 Jun 2011");
    EXPECT_EQ(ini("OPTIONS", "DateFormat"), "ddd d mmm yyyy");
    EXPECT_EQ(chooseTimeFormat(*program, "24:00:00"), "12:00:00");
    EXPECT_EQ(ini("OPTIONS", "TimeFormat"), "24:00:00");
    EXPECT_EQ(state().dateFormat, "yyyy-mm-dd") << "in force only after Okay";
}

TEST_F(OptionsTest, aZoneListThatCantBeReadIsToldAndLogged) {
    fs::remove(paths.zones());
    examiner.expect("zones-not-read");
    EXPECT_TRUE(initTimeZone(*program).empty());
    const Bytes log = readWhole(program->log.path());
    EXPECT_THAT(std::string(ByteView(log).raw()), HasSubstr("OptionsForm.InitTimeZone()"));
}

TEST_F(OptionsTest, theListSelectsByIdThenByBiasAndCanadaWins) {
    const auto row = [](std::int32_t id, const char *places, std::int16_t bias) {
        ZoneRow zone;
        zone.timeZoneID = id;
        zone.landmarks = places;
        zone.stdBias = bias;
        return zone;
    };
    const ZoneRow plain = row(1, "Bogota", 300);
    const ZoneRow canada = row(2, "Eastern Time (US & Canada)", 300);
    const ZoneRow other = row(3, "Chicago", 360);
    state().gmtZone.tzBias = 300;
    state().gmtZone.tzTimeZoneID = 3;
    EXPECT_EQ(readOptions(*program, {plain, canada, other}).timeZoneID, 3);
    state().gmtZone.tzTimeZoneID = 99;
    EXPECT_EQ(readOptions(*program, {plain, canada, other}).timeZoneID, 2);
    EXPECT_EQ(readOptions(*program, {plain, other}).timeZoneID, 1);
    EXPECT_EQ(readOptions(*program, {other}).timeZoneID, std::nullopt);
}

TEST_F(OptionsTest, theNamedConnectionIsSwitchedWithoutChangingTheSetting) {
    network.status = "ENABLED";
    network.answer = Switched::done;
    examiner.expect("network-disabled");
    switchConnectionOver(*program, "eth7");
    ASSERT_EQ(network.asked.size(), 1U);
    EXPECT_EQ(network.asked[0].first, "eth7");
    EXPECT_EQ(network.asked[0].second, ConnectionState::disabled);
    EXPECT_EQ(state().networkConnectionName, "Local Area Connection");
    network.status = "DISABLED";
    switchConnectionOver(*program, "eth7");
    EXPECT_EQ(network.asked[1].second, ConnectionState::enabled);
}

TEST_F(OptionsTest, settingsThatCantBeWrittenAreTold) {
    Options options = shown();
    options.galleryIncludeHTML = false;
    fs::create_directories(paths.settings().native() + ".new"); // stands where a file is written
    examiner.expect("settings-not-written");
    EXPECT_TRUE(apply(options));
    EXPECT_THAT(examiner.heard.back().text, HasSubstr(paths.settings().string()));
    EXPECT_FALSE(state().galleryIncludeHTML) << "holds until the program ends";
    EXPECT_EQ(ini("OPTIONS", "GalleryIncludeHTML"), "(none)");
}

TEST_F(OptionsTest, settingsThatCantBeWrittenAreToldAfterARefusalToo) {
    Options options = shown();
    options.timeZoneID.reset();
    fs::create_directories(paths.settings().native() + ".new");
    examiner.expect("zone-not-selected");
    examiner.expect("settings-not-written");
    EXPECT_FALSE(apply(options));
}

TEST_F(OptionsTest, choicesOutsideOfItThatCantBeKeptAreToldOnce) {
    fs::create_directories(paths.settings().native() + ".new");
    rememberFlag(program->settings, "ShowHosts", true); // which nobody misses
    EXPECT_TRUE(examiner.heard.empty());
    examiner.expect("settings-not-written");
    keepFlag(*program, "TemplateMatchByTitle", false);
    chooseDateFormat(*program, "dd.mm.yyyy");
    EXPECT_EQ(examiner.heard.size(), 1U);
    EXPECT_FALSE(state().templateMatchByTitle);
    fs::remove_all(paths.settings().native() + ".new");
    chooseTimeFormat(*program, "Hh:Nn");
    EXPECT_EQ(ini("OPTIONS", "DateFormat"), "dd.mm.yyyy");
    EXPECT_EQ(ini("BEYOND", "TemplateMatchByTitle"), "False");
    EXPECT_EQ(ini("BEYOND", "ShowHosts"), "True");
}

TEST_F(OptionsTest, valuesThatTheProjectCantKeepAreTold) {
    openCase();
    test::refuseValues(state().projectDB.connection());
    Options options = shown();
    options.dateFormat = "dd.mm.yyyy";
    examiner.expect("project-values-not-kept");
    EXPECT_TRUE(apply(options));
    EXPECT_THAT(examiner.heard.back().text, HasSubstr("DateFormat"));
    EXPECT_EQ(state().dateFormat, "dd.mm.yyyy") << "holds until the project is closed";
    examiner.expect("project-values-not-kept");
    closeProject(*program);
    EXPECT_THAT(examiner.heard.back().text, HasSubstr("LastTimeZoneID"));
}

TEST_F(OptionsTest, evidenceThatTheProjectCantKeepIsAFailure) {
    openCase();
    fs::create_directories(folder.path() / "evidence");
    test::refuseValues(state().projectDB.connection());
    EXPECT_THROW(keepEvidenceFolder(*program, folder.path() / "evidence"), StorageFailure);
    EXPECT_THROW(setRootPath(*program, folder.path() / "evidence"), StorageFailure);
}

} // namespace
} // namespace nv
