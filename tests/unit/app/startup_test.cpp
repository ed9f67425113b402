#include "ProgramFixture.h"
#include "app/TempFolder.h"

namespace nv {
namespace {

namespace fs = std::filesystem;

struct StartupTest : test::ProgramFixture {};

TEST_F(StartupTest, aMissingSettingsFileGivesTheDefaults) {
    const ThisClass &state = start().thisClass;
    EXPECT_EQ(state.DateTimeFormat, "yyyy-mm-dd Hh:Nn:Ss");
    EXPECT_EQ(state.ViewerThumbnailWidth, 120);
    EXPECT_EQ(state.ThumbnailRedrawTimeout, 5);
    EXPECT_EQ(state.GalleryRecordsPerPage, 300);
    EXPECT_EQ(state.ProgressBarRefreshRate, 5);
    EXPECT_EQ(state.NetworkConnectionName, "Local Area Connection");
    EXPECT_EQ(state.HTMLReplaceableHREFTags, "js;css;php;txt;asp;aspx;htm;html;");
    EXPECT_EQ(state.HTMLReplaceablePictureTags, "jpe;jpeg;jpg;gif;bmp;png;tif;");
    EXPECT_TRUE(state.VerifyFileSignatures && state.ConnectionOffline && state.GalleryIncludeHTML &&
                state.GalleryIncludePictures && state.RedrawThumbIfPageRebuilt);
    EXPECT_FALSE(state.DisableFileVersionCheck || state.DisableAutoRebuildInHTMLGallery ||
                 state.DebugMain);
    EXPECT_TRUE(program->import.ParseAdvancedMetadata);
    EXPECT_EQ(state.LocalFavoritesPath, paths.home / "favorites.ini");
    EXPECT_EQ(state.CurrentSQLDef, "SELECT * FROM URLs ORDER BY ActionDateLocal ASC");
    EXPECT_FALSE(fs::exists(paths.settings())) << "a start writes no settings";
}

TEST_F(StartupTest, twoValuesAreMended) {
    settings("[THUMBNAILS]\nThumbnailRedrawTimeout=0\nViewerThumbnailWidth=99\n");
    EXPECT_EQ(start().thisClass.ThumbnailRedrawTimeout, 15);
    EXPECT_EQ(program->thisClass.ViewerThumbnailWidth, 160);
    settings("[THUMBNAILS]\nThumbnailRedrawTimeout=1\nViewerThumbnailWidth=100\n");
    EXPECT_EQ(start().thisClass.ThumbnailRedrawTimeout, 1);
    EXPECT_EQ(program->thisClass.ViewerThumbnailWidth, 100);
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
    EXPECT_EQ(start().thisClass.TempFolderPath, paths.home / "Temp");
    fs::create_directories(named);
    folder.write("scratch/left-over.txt", "x");
    EXPECT_EQ(start().thisClass.TempFolderPath, named);
    EXPECT_FALSE(fs::exists(named / "left-over.txt"));
    EXPECT_TRUE(fs::exists(tempFileNames(named).badUrl));
}

TEST_F(StartupTest, aFolderThatHoldsTheProgramIsNeverEmptied) {
    settings("[DEFAULT]\nTempFolderPath=" + folder.path().string() + "\n");
    EXPECT_EQ(start().thisClass.TempFolderPath, paths.home / "Temp");
    EXPECT_TRUE(fs::exists(paths.zones()));
}

TEST_F(StartupTest, aFolderThatHoldsTheSettingsOrTheLogsIsNeverEmptied) {
    paths.config = folder.path() / "user" / "config";
    paths.state = folder.path() / "other" / "state";
    for (const char *named : {"user", "other"}) {
        fs::create_directories(folder.path() / named);
        const fs::path kept = folder.write(fs::path(named) / "kept.txt", "x");
        folder.write("user/config/Norvelane.ini",
                     "[DEFAULT]\nTempFolderPath=" + (folder.path() / named).string() + "\n");
        EXPECT_EQ(start().thisClass.TempFolderPath, paths.state / "Temp");
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
    EXPECT_EQ(start().thisClass.GMTZone.tzStandardName, "Eastern Standard Time");
    EXPECT_EQ(program->thisClass.GMTZone.tzBias, 300);
    systemTime.machine = {7, "Zone of Nowhere"};
    EXPECT_EQ(start().thisClass.GMTZone.tzTimeZoneID, 15);
    EXPECT_EQ(program->thisClass.GMTZone.tzBias, -300);
}

TEST_F(StartupTest, theCompanionToolIsTakenOnlyWhenItExists) {
    EXPECT_EQ(start().thisClass.OstermoorEXEPath, "");
    folder.write("program/Ostermoor.exe", "x");
    settings("[OPTIONS]\nOstermoorEXEPath=/nowhere/Ostermoor.exe\n");
    EXPECT_EQ(start().thisClass.OstermoorEXEPath, paths.program / "Ostermoor.exe");
}

} // namespace
} // namespace nv
