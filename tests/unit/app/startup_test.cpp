#include "ProgramFixture.h"
#include "app/program/TempFolder.h"
#include "base/Files.h"

#include <unistd.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct StartupTest : test::ProgramFixture {};

TEST_F(StartupTest, aMissingSettingsFileGivesTheDefaults) {
    const ProgramState &state = start().state;
    EXPECT_EQ(state.dateTimeFormat, "yyyy-mm-dd Hh:Nn:Ss");
    EXPECT_EQ(state.viewerThumbnailWidth, 120);
    EXPECT_EQ(state.thumbnailRedrawTimeout, 5);
    EXPECT_EQ(state.galleryRecordsPerPage, 300);
    EXPECT_EQ(state.progressBarRefreshRate, 5);
    EXPECT_EQ(state.networkConnectionName, "Local Area Connection");
    EXPECT_EQ(state.htmlReplaceableHREFTags, "js;css;php;txt;asp;aspx;htm;html;");
    EXPECT_EQ(state.htmlReplaceablePictureTags, "jpe;jpeg;jpg;gif;bmp;png;tif;");
    EXPECT_TRUE(state.verifyFileSignatures && state.connectionOffline && state.galleryIncludeHTML &&
                state.galleryIncludePictures && state.redrawThumbIfPageRebuilt);
    EXPECT_FALSE(state.disableFileVersionCheck || state.disableAutoRebuildInHTMLGallery ||
                 state.debugMain);
    EXPECT_TRUE(program->import.parseAdvancedMetadata);
    EXPECT_TRUE(state.wideRecordIds);
    EXPECT_EQ(state.localFavoritesPath, paths.home / "favorites.ini");
    EXPECT_EQ(state.currentSQLDef, "SELECT * FROM URLs ORDER BY ActionDateLocal ASC");
    EXPECT_FALSE(fs::exists(paths.settings())) << "a start writes no settings";
}

TEST_F(StartupTest, twoValuesAreMended) {
    settings("[THUMBNAILS]\nThumbnailRedrawTimeout=0\nViewerThumbnailWidth=99\n");
    EXPECT_EQ(start().state.thumbnailRedrawTimeout, 15);
    EXPECT_EQ(program->state.viewerThumbnailWidth, 160);
    settings("[THUMBNAILS]\nThumbnailRedrawTimeout=1\nViewerThumbnailWidth=100\n");
    EXPECT_EQ(start().state.thumbnailRedrawTimeout, 1);
    EXPECT_EQ(program->state.viewerThumbnailWidth, 100);
}

TEST_F(StartupTest, theLimitOfEarlierBuildsIsASettingAway) {
    settings("[BEYOND]\nWideRecordIds=False\n");
    EXPECT_FALSE(start().state.wideRecordIds);
}

TEST_F(StartupTest, theLogHoldsOnlyTheCurrentRun) {
    folder.write("home/error.log", "old");
    folder.write("home/error-cli.log", "of another program");
    start();
    EXPECT_FALSE(fs::exists(folder.path() / "home" / "error.log"));
    EXPECT_TRUE(fs::exists(folder.path() / "home" / "error-cli.log"));
}

TEST_F(StartupTest, theTempFolderIsTheNamedOneWhenItExists) {
    const fs::path named = folder.path() / "scratch";
    settings("[DEFAULT]\nTempFolderPath=" + named.string() + "\n");
    EXPECT_EQ(start().state.tempFolderRoot, paths.home / "Temp");
    fs::create_directories(named);
    const ProgramState &state = start().state;
    EXPECT_EQ(state.tempFolderRoot, named);
    EXPECT_EQ(state.tempFolderPath.parent_path(), named);
    EXPECT_TRUE(fs::exists(tempFileNames(state.tempFolderPath).badUrl));
}

TEST_F(StartupTest, whatTheProgramDidNotMakeInTheTempFolderStays) {
    const fs::path named = folder.path() / "scratch";
    settings("[DEFAULT]\nTempFolderPath=" + named.string() + "\n");
    folder.write("scratch/thesis.odt", "x");
    folder.write("scratch/0000001.NVR/page.htm", "x");
    folder.write("scratch/norvelane-window-abc123/notes.txt", "x");
    start();
    start();
    for (const char *kept :
         {"thesis.odt", "0000001.NVR/page.htm", "norvelane-window-abc123/notes.txt"})
        EXPECT_TRUE(fs::exists(named / kept)) << kept;
}

TEST_F(StartupTest, twoWindowsKeepOutOfEachOthersScratch) {
    const fs::path first = start().state.tempFolderPath;
    const fs::path report = first / "Report" / "~report.htm";
    fs::create_directories(report.parent_path());
    writeWhole(report, "not published yet");
    const std::unique_ptr<Program> running = std::move(program);
    const fs::path second = start().state.tempFolderPath;
    EXPECT_NE(first, second);
    EXPECT_TRUE(fs::exists(report));
    EXPECT_NE(tempFileNames(first).project, tempFileNames(second).project);
}

TEST_F(StartupTest, theScratchOfAWindowThatHasEndedGoesAtTheNextStart) {
    const fs::path first = start().state.tempFolderPath;
    program.reset();
    EXPECT_TRUE(fs::exists(first)) << "a report that isn't published outlives its window";
    start(Front::headless);
    takeTempFolder(*program, program->state.tempFolderRoot);
    EXPECT_TRUE(fs::exists(first)) << "and the command lines behind it";
    start();
    EXPECT_FALSE(fs::exists(first));
}

TEST_F(StartupTest, aTempFolderThatCantBeWrittenToIsNotTaken) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everywhere";
    const fs::path named = folder.path() / "scratch";
    fs::create_directories(named);
    fs::permissions(named, fs::perms::owner_read | fs::perms::owner_exec);
    settings("[DEFAULT]\nTempFolderPath=" + named.string() + "\n");
    EXPECT_EQ(start().state.tempFolderRoot, paths.home / "Temp");
}

TEST_F(StartupTest, aFolderThatHoldsTheProgramIsNoTempFolder) {
    settings("[DEFAULT]\nTempFolderPath=" + folder.path().string() + "\n");
    EXPECT_EQ(start().state.tempFolderRoot, paths.home / "Temp");
    EXPECT_TRUE(fs::exists(paths.zones()));
}

TEST_F(StartupTest, aFolderThatHoldsTheSettingsOrTheLogsIsNoTempFolder) {
    paths.config = folder.path() / "user" / "config";
    paths.state = folder.path() / "other" / "state";
    for (const char *named : {"user", "other"}) {
        fs::create_directories(folder.path() / named);
        const fs::path kept = folder.write(fs::path(named) / "kept.txt", "x");
        folder.write("user/config/Norvelane.ini",
                     "[DEFAULT]\nTempFolderPath=" + (folder.path() / named).string() + "\n");
        EXPECT_EQ(start().state.tempFolderRoot, paths.state / "Temp");
        EXPECT_TRUE(fs::exists(kept));
    }
}

TEST_F(StartupTest, theHeadlessProgramLeavesTheTempFolderOfTheWindowAlone) {
    folder.write("home/Temp/of-the-window.txt", "x");
    folder.write("home/error.log", "of the window");
    folder.write("home/error-cli.log", "of an earlier command");
    start(Front::headless);
    EXPECT_TRUE(fs::exists(folder.path() / "home" / "Temp" / "of-the-window.txt"));
    EXPECT_TRUE(fs::exists(folder.path() / "home" / "error.log"));
    EXPECT_TRUE(fs::exists(folder.path() / "home" / "error-cli.log"));
}

TEST_F(StartupTest, theZoneIsTheMachinesOrTheDefault) {
    EXPECT_EQ(start().state.gmtZone.tzStandardName, "Eastern Standard Time");
    EXPECT_EQ(program->state.gmtZone.tzBias, 300);
    systemTime.machine = {7, "Zone of Nowhere"};
    EXPECT_EQ(start().state.gmtZone.tzTimeZoneID, 15);
    EXPECT_EQ(program->state.gmtZone.tzBias, -300);
}

TEST_F(StartupTest, theCompanionToolIsTakenOnlyWhenItExists) {
    EXPECT_EQ(start().state.ostermoorEXEPath, "");
    folder.write("program/Ostermoor.exe", "x");
    settings("[OPTIONS]\nOstermoorEXEPath=/nowhere/Ostermoor.exe\n");
    EXPECT_EQ(start().state.ostermoorEXEPath, paths.program / "Ostermoor.exe");
}

} // namespace
} // namespace nv
