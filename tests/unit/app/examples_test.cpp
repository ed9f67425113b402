#include "app/cli/CommandHints.h"
#include "app/cli/Examples.h"
#include "app/cli/Grammar.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace nv::test {
namespace {

/// The words of a line as a shell takes them, up to what it keeps for itself.
std::vector<std::string> wordsOf(std::string_view line) {
    std::vector<std::string> words{""};
    bool quoted = false;
    for (const char c : line) {
        if (!quoted && (c == '>' || c == '|'))
            break;
        if (c == '"')
            quoted = !quoted;
        else if (c == ' ' && !quoted)
            words.emplace_back();
        else
            words.back() += c;
    }
    if (words.back().empty())
        words.pop_back();
    return words;
}
void addCommands(const CLI::App &app, const std::string &words, std::vector<std::string> &all) {
    for (const CLI::App *each : app.get_subcommands([](const CLI::App *) { return true; })) {
        const std::string name = words + each->get_name();
        all.push_back(name);
        addCommands(*each, name + " ", all);
    }
}

TEST(ExamplesTest, everyCommandHasExamplesOfItsOwnAndTheyCanBeCalled) {
    std::vector<std::string> commands;
    addCommands(cli::Grammar().app, "", commands);
    ASSERT_GT(commands.size(), 25U);
    for (const std::string &command : commands) {
        const bool isGroup = command == "template" || command == "options";
        const auto count = std::ranges::count(cli::examples(), command, &cli::Example::command);
        EXPECT_GE(count, isGroup ? 0 : 2) << command;
        EXPECT_LE(count, 3) << command;
    }
    for (const cli::Example &example : cli::examples()) {
        cli::Grammar grammar;
        auto words = wordsOf(example.line);
        std::ranges::reverse(words); // as the parser takes them
        EXPECT_NO_THROW(grammar.app.parse(words)) << example.line;
        EXPECT_TRUE(grammar.chosen) << example.line;
    }
}

TEST(NearestTest, givesWhatIsSpeltMuchTheSameAndNothingElse) {
    const std::vector<std::string> known = {"list", "links", "export"};
    EXPECT_EQ(cli::nearest("lst", known), "list");
    EXPECT_EQ(cli::nearest("Exprot", known), "export");
    EXPECT_EQ(cli::nearest("foo", known), "");
    EXPECT_EQ(cli::nearest("", known), "");
    EXPECT_EQ(cli::nearest("list", {}), "");
}

} // namespace
} // namespace nv::test
