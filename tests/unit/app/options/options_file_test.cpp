// The settings file as Okay leaves it: its lines and their order are those that examiners' files
// have.
#include "OptionsFixture.h"
#include "base/Files.h"
#include "base/Text.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::EndsWith;
using testing::StartsWith;

struct OptionsFileTest : test::OptionsFixture {
    /// Without the folder of the test and the ends of lines.
    std::string file() const {
        const Bytes bytes = readWhole(paths.settings());
        const std::string text = replaceAll(ByteView(bytes).raw(), "\r\n", "\n");
        return replaceAll(text, folder.path().string(), "<folder>");
    }
};

TEST_F(OptionsFileTest, aFirstOkayWritesTheseLines) {
    ASSERT_TRUE(apply(shown()));
    EXPECT_EQ(file(), "[OPTIONS]\n"
                      "VerifyFileSignatures=True\n"
                      "DateFormat=YYYY-MM-DD\n"
                      "TimeFormat=24:00:00\n"
                      "TimeZoneBias=300\n"
                      "TimeZoneName=Eastern Standard Time\n"
                      "TimeZoneID=15\n"
                      "DisableScriptTags=False\n"
                      "GalleryIncludeHTML=True\n"
                      "GalleryIncludePictures=True\n"
                      "RedrawThumbIfPageRebuilt=True\n"
                      "ProgressBarRefreshRate=5\n"
                      "[FILE PATHS]\n"
                      "TempFolder=<folder>/home/Temp\n"
                      "LastProjectDBPath=\n"
                      "AgencyLogoPath=\n"
                      "PublishFolder=\n"
                      "[BEYOND]\n"
                      "TemplatesPath=<folder>/home/Templates\n"
                      "WideRecordIds=True\n"
                      "TemplateMatchByTitle=True\n"
                      "ThumbnailsWhileImporting=False\n"
                      "KeepAllOptions=False\n"
                      "RebuildMethod=auto\n"
                      "ClassicOnly=False\n"
                      "[THUMBNAILS]\n"
                      "ViewerThumbnailWidth=120\n"
                      "ReportThumbnailWidth=200\n");
}

TEST_F(OptionsFileTest, keepAllOptionsAddsTheseLines) {
    Options options = shown();
    options.keepAllOptions = true;
    options.networkConnectionName.clear();
    options.dateFormat.clear();
    options.timeFormat.clear();
    ASSERT_TRUE(apply(options));
    const std::string text = file();
    const auto behind = [&text](std::string_view line) { return text.substr(text.find(line)); };
    EXPECT_THAT(text, StartsWith("[OPTIONS]\n"
                                 "VerifyFileSignatures=True\n"
                                 "DateFormat=MM/DD/YY\n"
                                 "TimeFormat=Hh:Nn:Ss\n"));
    EXPECT_THAT(behind("ProgressBarRefreshRate"),
                StartsWith("ProgressBarRefreshRate=5\n"
                           "GalleryRecordsPerPage=300\n"
                           "ThumbnailRedrawTimeout=15\n"
                           "DisableFileVersionCheck=False\n"
                           "NetworkConnectionName=Local Area Connection\n"
                           "[FILE PATHS]\n"));
    EXPECT_THAT(text, EndsWith("ThumbnailsWhileImporting=False\n"
                               "KeepAllOptions=True\nRebuildMethod=auto\nClassicOnly=False\n"
                               "[THUMBNAILS]\n"
                               "ViewerThumbnailWidth=120\n"
                               "ReportThumbnailWidth=200\n"
                               "ThumbnailRedrawTimeout=15\n"));
}

} // namespace
} // namespace nv
