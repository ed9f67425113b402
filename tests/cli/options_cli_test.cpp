#include "cli/CliCase.h"
#include "support/RefuseValues.h"

#include <gmock/gmock.h>

#include <memory>

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
    EXPECT_EQ(cli({"options", "set", "LastTimeZoneID", "asia/kolkata", "--project", project}).exit,
              0);
    EXPECT_THAT(cli({"options", "get", "--project", project, "--format", "tsv"}).out,
                HasSubstr("PROJECT\tLastTimeZoneID\tAsia/Kolkata\t"));
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out,
                HasSubstr("-> Asia/Kolkata, zoneinfo 20"));
    EXPECT_EQ(cli({"options", "set", "LastTimeZoneID", "9999", "--project", project}).exit, 1);
    EXPECT_EQ(cli({"options", "set", "AppMajor", "9", "--project", project}).exit, 1);
    EXPECT_EQ(cli({"options", "set", "Nothing", "9", "--project", project}).exit, 1);
}

TEST_F(OptionsCliTest, whatNoProjectKeepsIsRefusedForOne) {
    IndexDat index;
    index.add({.url = "Visited: mara@http://a.example/"});
    folder.write("evidence/index.dat", index.bytes());
    ASSERT_EQ(cli({"import", project, (folder.path() / "evidence").string()}).exit, 0);
    for (const char *key : {"DateFormat", "GalleryRecordsPerPage", "ViewerThumbnailWidth"}) {
        const CliResult run = cli({"options", "set", key, "200", "--project", project});
        EXPECT_EQ(run.exit, 1) << key;
        EXPECT_THAT(run.err, HasSubstr("no project keeps " + std::string(key))) << key;
    }
    const CliResult own = cli({"options", "set", "AppMajor", "9", "--project", project});
    EXPECT_THAT(own.err, HasSubstr("written by the program itself"));
    const CliResult unknown = cli({"options", "set", "RootPat", "x", "--project", project});
    EXPECT_THAT(unknown.err, HasSubstr("The nearest names: RootPath"));
}

TEST_F(OptionsCliTest, getKnowsEveryKey) {
    folder.write("home/Norvelane.ini", "[FILES]\r\nFile1=/cases/a.nvp\r\n[BEYOND]\r\n"
                                       "; a comment = of somebody\r\nSplitter_dataArea=AAAA\r\n");
    const std::string all = cli({"options", "get", "--format", "tsv"}).out;
    EXPECT_THAT(all, HasSubstr("FILES\tFile1\t/cases/a.nvp\t"));
    EXPECT_THAT(all, HasSubstr("REPORT\tUseDefaultThumbnailPath\tFalse\t"));
    EXPECT_THAT(all, HasSubstr("BEYOND\tSplitter_dataArea\tAAAA\t"));
    EXPECT_THAT(all, testing::Not(HasSubstr("of somebody")));
    EXPECT_THAT(cli({"options", "get", "splitter_dataarea", "--format", "tsv"}).out,
                HasSubstr("\tAAAA\t"));
    EXPECT_EQ(cli({"options", "get", "Splitter_none"}).exit, 1);
    IndexDat index;
    index.add({.url = "Visited: mara@http://a.example/"});
    folder.write("evidence/index.dat", index.bytes());
    ASSERT_EQ(cli({"import", project, (folder.path() / "evidence").string()}).exit, 0);
    EXPECT_THAT(
        cli({"options", "get", "RootPathSeen", "--project", project, "--format", "tsv"}).out,
        HasSubstr("PROJECT\tRootPathSeen\t1 "));
    EXPECT_EQ(cli({"options", "get", "Nothing", "--project", project}).exit, 1);
}

TEST_F(OptionsCliTest, hostileValuesAreRefusedOrKeptWhole) {
    for (const std::string &bad : {std::string("a\nb"), std::string(100'000, 'x')}) {
        const CliResult run = cli({"options", "set", "CaseNumber", bad});
        EXPECT_EQ(run.exit, 1);
        EXPECT_LT(run.err.size(), 400U);
    }
    EXPECT_EQ(cli({"options", "set", "TempFolderPath", "../../no/such"}).exit, 1);
    EXPECT_EQ(cli({"options", "set", "CaseNumber", "\xE4\xBA\x8B 7/\xC3\x84"}).exit, 0);
    EXPECT_THAT(cli({"options", "get", "CaseNumber", "--format", "tsv"}).out,
                HasSubstr("\t\xE4\xBA\x8B 7/\xC3\x84\t"));
    EXPECT_EQ(cli({"options", "set", "CaseNumber", ""}).exit, 0);
    EXPECT_THAT(cli({"options", "get", "CaseNumber", "--format", "tsv"}).out,
                HasSubstr("CaseNumber\t\t\t"));
}

TEST_F(OptionsCliTest, settingsThatCantBeWrittenAreSaid) {
    folder.write("home/Norvelane.ini.new/stands-in-the-way", "x");
    const CliResult run = cli({"options", "set", "DateFormat", "dd.mm.yyyy"});
    EXPECT_NE(run.exit, 0);
    EXPECT_THAT(run.err, HasSubstr("the settings can't be written"));
    EXPECT_THAT(run.err, HasSubstr("Norvelane.ini"));
}

TEST_F(OptionsCliTest, valuesThatAProjectCantKeepAreSaid) {
    IndexDat index;
    index.add({.url = "http://a.example/"});
    import(index);
    {
        SQLite::Database database(project, SQLite::OPEN_READWRITE);
        refuseValues(database);
    }
    const CliResult run = cli({"options", "set", "LastTimeZoneID", "20", "--project", project});
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.err, HasSubstr("can't keep LastTimeZoneID"));
    folder.write("more/index.dat", index.bytes());
    const CliResult more = cli({"import", project, (folder.path() / "more").string()});
    EXPECT_EQ(more.exit, 3);
    EXPECT_THAT(more.err, HasSubstr("is evidence"));
}

TEST_F(OptionsCliTest, programsAtOnceLoseNoSetting) {
    const std::vector<std::string> keys = {"CaseNumber",  "ReportedBy", "Organization",
                                           "ReportTitle", "DateFormat", "TimeFormat"};
    std::vector<std::unique_ptr<CliProcess>> running;
    for (const std::string &key : keys)
        running.push_back(std::make_unique<CliProcess>(
            std::vector<std::string>{"options", "set", key, "kept " + key},
            folder.path() / "home"));
    for (const auto &process : running)
        EXPECT_EQ(process->finish().exit, 0);
    const std::string all = cli({"options", "get", "--format", "tsv"}).out;
    for (const std::string &key : keys)
        EXPECT_THAT(all, HasSubstr("\tkept " + key + "\t"));
}

} // namespace
} // namespace nv::test
