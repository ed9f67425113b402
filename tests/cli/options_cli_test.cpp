#include "cli/CliCase.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::HasSubstr;

using OptionsCliTest = CliCase;

TEST_F(OptionsCliTest, settingsAreListedWithTheirDefaults) {
    const CliResult all = cli({"options", "get", "--format", "tsv"});
    EXPECT_EQ(all.exit, 0) << all.err;
    EXPECT_THAT(all.out, HasSubstr("OPTIONS\tDateFormat\tyyyy-mm-dd\tyyyy-mm-dd\t"));
    EXPECT_THAT(cli({"options", "get", "ThumbnailRedrawTimeout", "--format", "tsv"}).out,
                HasSubstr("THUMBNAILS\tThumbnailRedrawTimeout\t5\t5\t"));
}

TEST_F(OptionsCliTest, aGoodValueIsKeptAndABadOneRefused) {
    EXPECT_EQ(cli({"options", "set", "dateformat", "dd.mm.yyyy"}).exit, 0);
    EXPECT_THAT(cli({"options", "get", "DateFormat", "--format", "tsv"}).out,
                HasSubstr("DateFormat\tdd.mm.yyyy\tyyyy-mm-dd"));
    const CliResult bad = cli({"options", "set", "GalleryRecordsPerPage", "many"});
    EXPECT_EQ(bad.exit, 1);
    EXPECT_THAT(bad.err, HasSubstr("a whole number from 1 to 32767 is expected"));
}

TEST_F(OptionsCliTest, anUnknownOrDoubleKeyIsRefusedWithNames) {
    const CliResult unknown = cli({"options", "set", "DateFromat", "x"});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_THAT(unknown.err, HasSubstr("The nearest names: DateFormat"));
    const CliResult twice = cli({"options", "set", "ThumbnailRedrawTimeout", "9"});
    EXPECT_EQ(twice.exit, 1);
    EXPECT_THAT(twice.err, HasSubstr("THUMBNAILS/ThumbnailRedrawTimeout"));
    EXPECT_EQ(cli({"options", "set", "THUMBNAILS/ThumbnailRedrawTimeout", "9"}).exit, 0);
}

TEST_F(OptionsCliTest, aProjectsOwnValuesAreChangedAndNoted) {
    IndexDat index;
    index.add({.url = "Visited: mara@http://a.example/"});
    folder.write("evidence/index.dat", index.bytes());
    ASSERT_EQ(cli({"import", project, (folder.path() / "evidence").string()}).exit, 0);
    EXPECT_EQ(cli({"options", "set", "LastTimeZoneID", "20", "--project", project}).exit, 0);
    EXPECT_THAT(cli({"options", "get", "--project", project, "--format", "tsv"}).out,
                HasSubstr("PROJECT\tLastTimeZoneID\t20\t"));
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out, HasSubstr("\tOptions\t"));
    EXPECT_EQ(cli({"options", "set", "LastTimeZoneID", "9999", "--project", project}).exit, 1);
    EXPECT_EQ(cli({"options", "set", "AppMajor", "9", "--project", project}).exit, 1);
    EXPECT_EQ(cli({"options", "set", "Nothing", "9", "--project", project}).exit, 1);
}

} // namespace
} // namespace nv::test
