#include "cli/CommandHints.h"
#include "cli/Grammar.h"

#include <gtest/gtest.h>

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

void expectCalls(std::span<const cli::Example> examples) {
    for (const cli::Example &example : examples) {
        const cli::Call call = cli::callOf(wordsOf(example.line));
        EXPECT_EQ(call.refusal, "") << example.line;
        EXPECT_TRUE(call.run) << example.line;
    }
}

TEST(ExamplesTest, everyCommandHasExamplesOfItsOwnAndTheyCanBeCalled) {
    const auto commands = cli::commandsOf(cli::commandTable());
    ASSERT_GT(commands.size(), 25U);
    for (const cli::Command &command : commands) {
        EXPECT_GE(command.examples.size(), command.run ? 2U : 0U) << command.name;
        EXPECT_LE(command.examples.size(), 3U) << command.name;
        expectCalls(command.examples);
    }
    expectCalls(cli::programExamples());
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
