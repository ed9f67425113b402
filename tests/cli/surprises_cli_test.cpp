#include "base/Files.h"
#include "base/Md5.h"
#include "cli/CliRun.h"
#include "platform/Claim.h"
#include "support/Places.h"
#include "support/TempFolder.h"
#include "support/builders/IndexDat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// What a new user of the program runs into. The cache holds one page, row 1.
class SurprisesCliTest : public testing::Test {
  protected:
    SurprisesCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        fs::create_directories(evidence / "ABCDEFGH");
        writeWhole(evidence / "ABCDEFGH" / "page[1].htm", kPage);
        index.add({.url = "http://host/page.htm",
                   .secondDate = fileTime(2011, 3, 1, 12),
                   .fileSize = static_cast<std::uint32_t>(kPage.size()),
                   .folder = 0,
                   .fileName = "page[1].htm"});
        writeWhole(evidence / "index.dat", index.bytes());
    }
    CliResult run(std::vector<std::string> arguments) {
        return runCli(arguments, folder.path() / "home");
    }
    void import() {
        EXPECT_EQ(run({"import", project, evidence.string(), "--kinds", "ie-cache"}).exit, 0);
    }
    /// The program by itself: without what draws and without the lists of keywords.
    fs::path lonelyProgram() {
        const fs::path built = cliProgram();
        fs::create_directories(folder.path() / "alone");
        fs::copy_file(built, folder.path() / "alone" / "norvelane-cli");
        fs::copy_file(built.parent_path() / "nvTZ.dat", folder.path() / "alone" / "nvTZ.dat");
        return folder.path() / "alone" / "norvelane-cli";
    }
    CliResult runAlone(std::vector<std::string> arguments) {
        return runProgram(folder.path() / "alone" / "norvelane-cli", arguments,
                          folder.path() / "home");
    }
    /// The exit code of a line that a shell runs with the program in front.
    int shell(const std::string &line) {
        fs::create_directories(folder.path() / "home");
        // The messages of the program alone, also when the line goes on after a "|".
        const std::string command = "NORVELANE_HOME='" + at("home") + "' 2> '" + at("err") + "' '" +
                                    cliProgram().string() + "' " + line;
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string errors() {
        const Bytes bytes = readWhole(at("err"));
        return std::string(ByteView(bytes).raw());
    }
    std::string at(const char *name) { return (folder.path() / name).string(); }

    static constexpr std::string_view kPage = "<html><title>T</title>some text</html>";
    TempFolder folder;
    fs::path evidence = folder.path() / "evidence";
    std::string project = (folder.path() / "case.nvp").string();
};

TEST_F(SurprisesCliTest, withoutWhatDrawsAnImportWithThumbnailsDoesNotBegin) {
    ::unsetenv("NORVELANE_PROGRAMS");
    lonelyProgram();
    const CliResult refused = runAlone({"import", project, evidence.string(), "--thumbnails"});
    EXPECT_EQ(refused.exit, 3);
    EXPECT_THAT(refused.err, HasSubstr("norvelane-draw"));
    EXPECT_THAT(refused.err, HasSubstr(at("alone")));
    EXPECT_THAT(refused.err, HasSubstr("Nothing was imported"));
    EXPECT_FALSE(fs::exists(project));
    EXPECT_EQ(runAlone({"import", project, evidence.string()}).exit, 0);
}

TEST_F(SurprisesCliTest, aQueryWithoutItsKeywordsSaysSoWheneverItIsRun) {
    lonelyProgram();
    const std::string notice = "the query \"Child Exploitation\" looks for no keywords";
    EXPECT_THAT(runAlone({"import", project, evidence.string()}).err, HasSubstr(notice));
    EXPECT_THAT(run({"list", project, "--query", "child exploitation"}).err,
                HasSubstr("\"child exploitation\" looks for no keywords"));
    EXPECT_THAT(run({"list", project, "--query", "XXX Content (in URLs)"}).err,
                HasSubstr("looks for no keywords"));
    EXPECT_THAT(run({"export", project, at("x.csv"), "--query", "Child Exploitation"}).err,
                HasSubstr(notice));
    EXPECT_THAT(
        run({"gallery", project, "--out", at("x.html"), "--query", "Child Exploitation"}).err,
        HasSubstr(notice));
    EXPECT_THAT(run({"query", project, "SELECT URL FROM [Child Exploitation]"}).err,
                HasSubstr(notice));
    EXPECT_THAT(run({"list", project}).err, Not(HasSubstr("keywords")));
}

TEST_F(SurprisesCliTest, withoutASoundTableOfZonesNothingIsImported) {
    lonelyProgram();
    const fs::path zones = folder.path() / "alone" / "nvTZ.dat";
    const Bytes sound = readWhole(zones);
    fs::resize_file(zones, fs::file_size(zones) / 2);
    const CliResult cut = runAlone({"import", project, evidence.string()});
    EXPECT_EQ(cut.exit, 3);
    EXPECT_THAT(cut.err, HasSubstr("the table of time zones is damaged"));
    EXPECT_FALSE(fs::exists(project));
    writeWhole(zones, ByteView(sound).raw());
    EXPECT_EQ(runAlone({"import", project, evidence.string(), "--zone", "66"}).exit, 0);
    fs::remove(zones);
    const CliResult missing = runAlone({"import", project, evidence.string()});
    EXPECT_EQ(missing.exit, 3);
    EXPECT_THAT(missing.err, HasSubstr("is missing"));
    runAlone({"tag", project, "1"}); // opens the project for writing, and closes it
    EXPECT_THAT(run({"query", project,
                     "SELECT DefaultValue FROM DefaultSettings WHERE DefaultName = "
                     "'LastTimeZoneID'",
                     "--format", "csv"})
                    .out,
                HasSubstr("\n66\r\n"));
}

TEST_F(SurprisesCliTest, aQueryWithItsKeywordsSaysNothing) {
    folder.write("home/keywords/child-exploitation.txt", "some");
    import();
    const CliResult list = run({"list", project, "--query", "Child Exploitation"});
    EXPECT_EQ(list.exit, 0);
    EXPECT_EQ(list.err, "");
}

TEST_F(SurprisesCliTest, aPageThatTheGalleryHasNotIsRefused) {
    import();
    for (const char *page : {"99", "0", "-1"}) {
        const CliResult wrong = run({"gallery", project, "--page", page, "--out", at("g.html")});
        EXPECT_EQ(wrong.exit, 1);
        EXPECT_THAT(wrong.err,
                    HasSubstr(std::string("--page ") + page + ": the gallery has 1 page"));
        EXPECT_FALSE(fs::exists(at("g.html")));
    }
    const CliResult empty = run({"gallery", project, "--out", at("g.html")});
    EXPECT_EQ(empty.exit, 0);
    EXPECT_THAT(empty.err, HasSubstr("the command thumbnails draws them"));
}

TEST_F(SurprisesCliTest, bytesBeyondTheEndAreNoSilence) {
    import();
    const CliResult beyond = run({"hex", project, "1", "--offset", "0x26"});
    EXPECT_EQ(beyond.exit, 1);
    EXPECT_THAT(beyond.err, HasSubstr("offset 38 (0x26) lies beyond the end: there are 38 bytes"));
    EXPECT_EQ(run({"hex", project, "1", "--offset", "37"}).exit, 0);
    for (const char *length : {"-5", "0"})
        EXPECT_THAT(run({"hex", project, "1", "--length", length}).err,
                    HasSubstr("at least 1 byte was expected"));
    writeWhole(evidence / "ABCDEFGH" / "page[1].htm", "");
    EXPECT_THAT(run({"hex", project, "1"}).err, HasSubstr("the file is empty"));
}

TEST_F(SurprisesCliTest, aStatementThatWritesIsToldThatQueriesRead) {
    import();
    EXPECT_THAT(run({"query", project, "DELETE FROM URLs"}).err,
                HasSubstr("a query only reads the project, with SELECT"));
    EXPECT_THAT(run({"query", project, "PRAGMA journal_mode=WAL"}).err, HasSubstr("only reads"));
    EXPECT_THAT(run({"queries", "save", project, "Q", "DELETE FROM URLs"}).err,
                HasSubstr("only reads"));
}

TEST_F(SurprisesCliTest, anExportGoesToTheStandardOutputAndSaysItsForm) {
    import();
    const CliResult csv = run({"export", project, "-", "--format", "csv", "--columns", "id"});
    EXPECT_EQ(csv.exit, 0) << csv.err;
    EXPECT_EQ(csv.out, "id\r\n1\r\n");
    EXPECT_THAT(csv.err, HasSubstr("1 row written as csv\n"));
    EXPECT_FALSE(fs::exists("-"));
    EXPECT_THAT(run({"trail", project, "--format", "csv"}).out, HasSubstr("standard output"));
    EXPECT_THAT(run({"export", project, at("rows.dat")}).err,
                HasSubstr("1 row written as text delimited by \"|\""));
    EXPECT_THAT(run({"export", project, at("rows.txt"), "--delimiter", "tab"}).err,
                HasSubstr("delimited by tabs"));
    EXPECT_THAT(run({"export", project, at("rows.xlsx")}).err, HasSubstr("1 row written as xlsx"));
}

TEST_F(SurprisesCliTest, aProjectInAFolderThatIsMissingIsRefusedWithItsName) {
    const CliResult wrong = run({"import", at("sub/missing/c.nvp"), evidence.string()});
    EXPECT_EQ(wrong.exit, 3);
    EXPECT_THAT(wrong.err, HasSubstr("there is no folder \"" + at("sub/missing") + "\""));
}

TEST_F(SurprisesCliTest, twoImportsIntoOneProjectDontRunAtOnce) {
    const Claim other("norvelane-import-" + md5Hex(project));
    const CliResult second = run({"import", project, evidence.string()});
    EXPECT_EQ(second.exit, 3);
    EXPECT_THAT(second.err, HasSubstr("another import into this project is running"));
    EXPECT_EQ(run({"import", at("other.nvp"), evidence.string()}).exit, 0);
}

TEST_F(SurprisesCliTest, anEmptyNoteIsNoOrderToDelete) {
    import();
    run({"note", project, "1", "seen"});
    const CliResult empty = run({"note", project, "1", ""});
    EXPECT_EQ(empty.exit, 1);
    EXPECT_THAT(empty.err, HasSubstr("--delete takes a note away"));
    EXPECT_EQ(run({"note", project, "1", "", "--delete"}).exit, 1);
    EXPECT_EQ(run({"note", project, "1"}).out, "seen\n");
}

TEST_F(SurprisesCliTest, noIdIsCutToOneThatIsThere) {
    import();
    const std::string wide = "4294967297"; // 1 in its lower half
    const std::vector<std::vector<std::string>> calls = {
        {"show", project, wide},
        {"show", project, wide, "--format", "jsonl"},
        {"extract", project, wide, "-"},
        {"hex", project, wide},
        {"hex", project, wide, "--source"},
        {"text", project, wide},
        {"exif", project, wide},
        {"note", project, wide},
        {"note", project, wide, "text"},
        {"note", project, wide, "--delete"},
        {"tag", project, wide},
        {"links", project, "--url", wide, "--wide-ids"},
        {"rebuild", project, wide, "--out", at("pages")},
        {"audit", project, wide},
        {"thumbnails", project, wide},
        {"template", "create", project, wide}};
    for (const auto &call : calls) {
        const CliResult wrong = run(call);
        EXPECT_EQ(wrong.exit, 1) << call.front();
        EXPECT_THAT(wrong.err, HasSubstr("the project has no row " + wide)) << call.front();
    }
}

TEST_F(SurprisesCliTest, aTemplateIsFoundByItsNameInTheFolder) {
    import();
    fs::create_directories(at("mine"));
    const CliResult none = run({"template", "apply", project, "page", "1", "--folder", at("mine")});
    EXPECT_EQ(none.exit, 1);
    EXPECT_THAT(none.err, HasSubstr("there is no template \"page\", here or in the folder"));
    writeWhole(fs::path(at("mine")) / "page.NVT", "no template at all");
    for (const char *name : {"page", "page.NVT"})
        EXPECT_THAT(run({"template", "apply", project, name, "1", "--folder", at("mine")}).out,
                    HasSubstr("        1  not rebuilt"));
}

TEST_F(SurprisesCliTest, anOutputThatCantBeWrittenIsNoSuccess) {
    import();
    for (const char *call : {"list", "hosts", "queries", "trail"})
        EXPECT_EQ(shell(std::string(call) + " '" + project + "' > /dev/full"), 3) << call;
    EXPECT_THAT(errors(), HasSubstr("the standard output can't be written"));
    EXPECT_EQ(shell("export '" + project + "' - > /dev/full"), 3);
    EXPECT_THAT(run({"trail", project}).out, Not(HasSubstr("Export")));
    EXPECT_EQ(shell("extract '" + project + "' 1 - > /dev/full"), 3);
}

TEST_F(SurprisesCliTest, aPipeThatIsClosedLeavesTheProjectInOrder) {
    import();
    EXPECT_EQ(shell("list '" + project + "' --format csv | true"), 0);
    EXPECT_EQ(errors(), "");
    EXPECT_TRUE(fs::is_empty(folder.path() / "home" / "Temp"));
    EXPECT_FALSE(fs::exists(project + "-wal"));
}

TEST_F(SurprisesCliTest, namesThatAreTooLongAreRefusedWithTheReason) {
    import();
    const std::string longName(300, 'a');
    const std::vector<std::vector<std::string>> calls = {
        {"extract", project, "1", at(longName.c_str())},
        {"export", project, at((longName + ".csv").c_str())},
        {"gallery", project, "--out", at((longName + ".html").c_str())},
        {"import", at((longName + ".nvp").c_str()), evidence.string()}};
    for (const auto &call : calls) {
        const CliResult wrong = run(call);
        EXPECT_EQ(wrong.exit, 3) << call.front();
        EXPECT_THAT(wrong.err, HasSubstr("\": File name too long")) << call.front();
    }
}

TEST_F(SurprisesCliTest, aProjectThatIsNoneSaysWhatItIs) {
    folder.write("empty.nvp", "");
    EXPECT_THAT(run({"list", at("empty.nvp")}).err, HasSubstr("the file is empty"));
    folder.write("text.nvp", std::string(5000, 'x'));
    EXPECT_THAT(run({"list", at("text.nvp")}).err, HasSubstr("this is no project ("));
    import();
    fs::resize_file(project, fs::file_size(project) / 2);
    const CliResult cut = run({"list", project});
    EXPECT_EQ(cut.exit, 3);
    EXPECT_THAT(cut.err, HasSubstr("damaged or cut short"));
}

} // namespace
} // namespace nv::test
