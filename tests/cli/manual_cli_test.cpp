#include "base/ByteView.h"
#include "base/Files.h"
#include "cli/CliRun.h"
#include "support/Places.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace nv::test {
namespace {

using testing::HasSubstr;

std::string contentsOf(const std::filesystem::path &file) {
    const Bytes bytes = readWhole(file);
    return std::string(ByteView(bytes).raw());
}

/// A hyphen as troff has it.
std::string escaped(const std::string &text) {
    return std::regex_replace(text, std::regex("-"), "\\-");
}

/// The manual page and the README hold what the program says of itself.
struct ManualTest : testing::Test {
    std::string help(std::vector<std::string> words) {
        words.emplace_back("--help");
        return runCli(words, folder.path() / "home").out;
    }
    /// The words behind "Subcommands:" of a help text.
    static std::vector<std::string> commandsIn(const std::string &text) {
        std::istringstream lines(text.substr(std::min(text.find("Subcommands:"), text.size())));
        std::vector<std::string> commands;
        std::string line;
        for (std::getline(lines, line); std::getline(lines, line) && line.starts_with("  ");)
            if (line[2] != ' ')
                commands.push_back(line.substr(2, line.find(' ', 2) - 2));
        return commands;
    }
    /// "list", "queries save" and so on: those that can be called.
    std::vector<std::string> commands() {
        std::vector<std::string> all;
        for (const std::string &command : commandsIn(help({}))) {
            const std::string text = help({command});
            const auto inner = commandsIn(text);
            if (inner.empty() || text.find("Positionals:") != std::string::npos)
                all.push_back(command);
            for (const std::string &each : inner)
                all.push_back(command + " " + each);
        }
        return all;
    }

    TempFolder folder;
    std::string manual = contentsOf(manualFile());
    std::string readme = contentsOf(readmeFile());
};

TEST_F(ManualTest, theReadmeShowsEveryCommand) {
    const auto all = commandsIn(help({}));
    ASSERT_GT(all.size(), 20U);
    for (const std::string &command : all)
        EXPECT_THAT(readme, testing::ContainsRegex("\\| `" + command + "[ `]"));
}

TEST_F(ManualTest, theManualPageHasEachCommandWithItsOptions) {
    const std::regex option("\n +(?:-\\w,)?(--[a-z-]+)");
    for (const std::string &command : commands()) {
        const auto begin = manual.find("\n.SS \\&" + escaped(command) + "\\&");
        ASSERT_NE(begin, std::string::npos) << command;
        const std::string section = manual.substr(begin, manual.find("\n.S", begin + 1) - begin);
        std::istringstream words(command);
        const std::string text =
            help({std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()});
        for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end;
             ++found) {
            const std::string name = escaped((*found)[1].str());
            if (name != "\\-\\-help") {
                EXPECT_THAT(section, HasSubstr(name)) << command;
            }
        }
    }
}

TEST_F(ManualTest, theManualPageNamesTheExitCodes) {
    for (const char *code : {"0", "1", "2", "3", "130"})
        EXPECT_THAT(manual, HasSubstr(std::string(".TP\n.B ") + code + "\n"));
}

} // namespace
} // namespace nv::test
