#include "base/ByteView.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/Grammar.h"
#include "cli/ManPage.h"
#include "support/Places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace nv::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// The lines of the README's table of commands.
std::vector<std::string> readmeLines() {
    const Bytes bytes = readWhole(test::readmeFile());
    const std::string readme(ByteView(bytes).raw());
    const std::string head = "| Command | Does |\n|---|---|\n";
    const auto begin = readme.find(head);
    if (begin == std::string::npos)
        return {};
    const auto end = readme.find("\n\n", begin);
    const std::string table = readme.substr(begin, end - begin);
    std::vector<std::string> lines;
    for (const std::string_view line : split(table, '\n'))
        lines.emplace_back(line);
    lines.erase(lines.begin(), lines.begin() + 2);
    return lines;
}

std::vector<std::string> helpCall(const cli::Command &command) {
    std::vector<std::string> words;
    for (const std::string_view word : split(command.name, ' '))
        words.emplace_back(word);
    words.emplace_back("--help");
    return words;
}

/// As the help names it: "--notes" of "--notes,!--no-notes".
std::string firstName(const cli::Argument &argument) {
    return argument.name.substr(0, argument.name.find(','));
}

TEST(CommandTable, isTheTableOfTheReadme) {
    std::vector<std::string> expected;
    for (const cli::Command &command : cli::commandsOf(cli::commandTable()))
        if (std::string line = cli::readmeLine(command); !line.empty())
            expected.push_back(std::move(line));
    EXPECT_THAT(readmeLines(), testing::UnorderedElementsAreArray(expected));
}

TEST(CommandTable, hasARowOfTheReadmeForEachFirstWord) {
    for (const cli::Command &command : cli::commandsOf(cli::commandTable())) {
        const bool isFirst = command.name.find(' ') == std::string_view::npos;
        EXPECT_EQ(isFirst, !command.readme.call.empty()) << command.name;
    }
}

TEST(CommandTable, callsNothingTwiceAndPutsWordsAfterTheirCommand) {
    std::set<std::string_view> names;
    for (const cli::Command &command : cli::commandsOf(cli::commandTable())) {
        EXPECT_TRUE(names.insert(command.name).second) << command.name;
        const auto space = command.name.find(' ');
        EXPECT_TRUE(space == std::string_view::npos ||
                    names.contains(command.name.substr(0, space)))
            << command.name;
    }
}

TEST(CommandTable, isWhatHelpAndManualPageSay) {
    const std::string manual = cli::manPageOf(cli::commandTable(), "1.2.3", "today");
    for (const cli::Command &command : cli::commandsOf(cli::commandTable())) {
        const std::string help = cli::callOf(helpCall(command)).answer;
        EXPECT_THAT(help, StartsWith(std::string(command.what) + "\n")) << command.name;
        for (const cli::Argument &argument : command.arguments) {
            EXPECT_THAT(help, HasSubstr(firstName(argument))) << command.name;
            EXPECT_THAT(help, HasSubstr(std::string(argument.what))) << command.name;
            EXPECT_THAT(manual, HasSubstr(replaceAll(firstName(argument), "-", "\\-")));
        }
        for (const cli::Example &example : command.examples)
            EXPECT_THAT(help, HasSubstr(std::string(example.line)));
        const std::string section =
            "\n.SS \\&" + replaceAll(std::string(command.name), "-", "\\-") + "\\&";
        EXPECT_EQ(manual.find(section) != std::string::npos, bool(command.run)) << command.name;
    }
}

} // namespace
} // namespace nv::test
