#include "cli/CliRun.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Calls that are wrong before any project is looked at.
struct UsageCliTest : testing::Test {
    CliResult run(std::vector<std::string> arguments) {
        return runCli(arguments, folder.path() / "home");
    }
    TempFolder folder;
};

TEST_F(UsageCliTest, aCommandThatIsNoneIsNamedWithTheNearestOne) {
    const CliResult far = run({"foo"});
    EXPECT_EQ(far.exit, 1);
    EXPECT_EQ(far.err, "norvelane-cli: there is no command \"foo\"\nSee: norvelane-cli --help\n");
    EXPECT_THAT(run({"exprot"}).err, HasSubstr("no command \"exprot\"; was \"export\" meant?"));
    EXPECT_THAT(run({"template", "aply"}).err,
                HasSubstr("no command \"template aply\"; was \"apply\" meant?\n"
                          "See: norvelane-cli template --help"));
    EXPECT_THAT(run({}).err, HasSubstr("a command was expected"));
    EXPECT_THAT(run({"template"}).err, HasSubstr("a command was expected"));
    EXPECT_THAT(run({"\x1B[2J"}).err, Not(HasSubstr("\x1B")));
}

TEST_F(UsageCliTest, aWordTooManyAndAnOptionThatIsNoneAreTold) {
    EXPECT_THAT(run({"list", "a.nvp", "b.nvp"}).err,
                HasSubstr("\"b.nvp\" is one word too many for list\nSee: norvelane-cli list"));
    EXPECT_THAT(run({"list", "a.nvp", "--filtr", "x"}).err,
                HasSubstr("there is no option \"--filtr\" of list; was \"--filter\" meant?"));
    EXPECT_THAT(run({"--quiet"}).err, HasSubstr("there is no option \"--quiet\""));
    EXPECT_THAT(run({"show", "a.nvp", "x"}).err, HasSubstr("URL_ID: \"x\" is no number"));
}

TEST_F(UsageCliTest, aWordThatAnOptionDoesNotTakeIsRefusedWithThoseItTakes) {
    EXPECT_THAT(run({"hosts", "a.nvp", "--format", "xml"}).err,
                HasSubstr("--format: \"xml\" is none of table, csv, tsv and jsonl\n"));
    EXPECT_THAT(run({"export", "a.nvp", "x", "--format", "xml"}).err,
                HasSubstr("\"xml\" is none of delimited, csv, jsonl, xlsx, warc, timesketch, "
                          "timesketch-csv, body, l2tcsv and kml\n"));
    EXPECT_THAT(run({"report", "a.nvp", "--type", "long", "--out", "x"}).err,
                HasSubstr("\"long\" is none of graphical, tabular and case\n"));
    EXPECT_THAT(run({"import", "a.nvp", "x", "--format", "csv"}).err,
                HasSubstr("\"csv\" is none of text and json\n"));
    EXPECT_THAT(run({"gallery", "a.nvp", "--per-page", "0", "--out", "x"}).err,
                HasSubstr("\"0\" is no number from 1 on"));
    EXPECT_EQ(run({"zones", "--format", "CSV"}).exit, 0) << "in any case";
}

TEST_F(UsageCliTest, aWrongColumnIsAnsweredWithAllOfThem) {
    for (const auto &call :
         {std::vector<std::string>{"list", "a.nvp", "--columns", "URLs"},
          std::vector<std::string>{"export", "a.nvp", "x", "--columns", "URLs"}}) {
        const CliResult wrong = run(call);
        EXPECT_EQ(wrong.exit, 1);
        EXPECT_THAT(wrong.err, HasSubstr("there is no column \"URLs\""));
        EXPECT_THAT(wrong.err, HasSubstr(", url, "));
        EXPECT_THAT(wrong.err, HasSubstr("last_visited"));
    }
}

TEST_F(UsageCliTest, theHelpOfACommandShowsNoOthersExamples) {
    const std::string help = run({"hosts", "--help"}).out;
    EXPECT_THAT(help, HasSubstr("norvelane-cli hosts case.nvp --by-visits"));
    EXPECT_THAT(help, Not(HasSubstr("norvelane-cli import")));
    EXPECT_THAT(run({"template", "--help"}).out, HasSubstr("norvelane-cli template apply"));
    const std::string all = run({"--help"}).out;
    EXPECT_THAT(all, HasSubstr("norvelane-cli import case.nvp"));
    EXPECT_THAT(all, HasSubstr("Exit codes: 0 done"));
}

} // namespace
} // namespace nv::test
