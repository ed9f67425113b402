#include "base/ByteView.h"
#include "base/Files.h"
#include "cli/Commands.h"
#include "cli/Grammar.h"
#include "cli/ManPage.h"
#include "cli/Session.h"
#include "support/Places.h"
#include "support/TestProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <sstream>

namespace nv::cli {

Command countCommand();

namespace {

using testing::HasSubstr;

constexpr std::array<MakeCommand, 1> kTable = {countCommand};

std::string contentsOf(const std::filesystem::path &file) {
    const Bytes bytes = readWhole(file);
    return std::string(ByteView(bytes).raw());
}

TEST(AddingACommand, theGuideHoldsTheCommandOfThisTest) {
    EXPECT_THAT(contentsOf(test::docsFolder() / "adding-a-command.md"),
                HasSubstr("```cpp\n" +
                          contentsOf(test::goldenFolder().parent_path() / "unit" / "cli" /
                                     "CountCommand.cpp") +
                          "```\n"));
    EXPECT_THAT(contentsOf(test::docsFolder() / "adding-a-command.md"),
                HasSubstr(readmeLine(countCommand())));
}

TEST(AddingACommand, aFileAndALineOfTheTableAreEnough) {
    const std::string help = callOf({"count", "--help"}, kTable).answer;
    EXPECT_THAT(help, HasSubstr("How many rows a project has\nUsage: norvelane-cli count"));
    EXPECT_THAT(help, HasSubstr("--format ENUM=table"));
    EXPECT_THAT(help, HasSubstr("count case.nvp --host example.com"));
    EXPECT_THAT(callOf({"cuont"}, kTable).refusal, HasSubstr("was \"count\" meant?"));
    EXPECT_THAT(callOf({"count", "x.nvp", "--hots", "a"}, kTable).refusal,
                HasSubstr("there is no option \"--hots\" of count; was \"--host\" meant?"));
    EXPECT_EQ(callOf({"count"}, kTable).exit, Exit::usage);
    EXPECT_THAT(manPageOf(kTable, "1.2.3", "today"),
                HasSubstr(".SS \\&count\\& PROJECT\n\\&How many rows a project has\n"));
}

TEST(AddingACommand, itRunsWithWhatWasSaid) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs (URL, Host) VALUES ('a', 'x'), ('b', 'y'), "
                              "('c', 'x')");
    const std::string file = project.database.FilePath.string();
    project.database.CloseDB();
    ::setenv("NORVELANE_HOME", (project.folder.path() / "home").c_str(), 1);
    std::ostringstream out;
    std::ostringstream err;
    Session session(std::filesystem::read_symlink("/proc/self/exe"), "count", out, err);
    const Call all = callOf({"count", file, "--format", "csv"}, kTable);
    ASSERT_TRUE(all.run) << all.refusal;
    EXPECT_EQ(all.run(session), Exit::ok);
    const Call some = callOf({"count", file, "--host", "x", "--format", "jsonl"}, kTable);
    ASSERT_TRUE(some.run) << some.refusal;
    EXPECT_EQ(some.run(session), Exit::ok);
    EXPECT_EQ(out.str(), "Rows\r\n3\r\n{\"Rows\":2}\n");
    EXPECT_EQ(err.str(), "");
}

} // namespace
} // namespace nv::cli
