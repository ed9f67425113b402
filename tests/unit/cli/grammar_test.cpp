#include "cli/Grammar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace nv::cli {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

enum class Colour { red, green };

/// One of each kind.
struct Arguments {
    std::string word = "unsaid";
    std::vector<std::string> more;
    std::vector<std::int64_t> ids = {7};
    int page = 1;
    std::int64_t length = 512;
    std::optional<std::int64_t> url;
    std::optional<std::string> title;
    std::string method = "classic";
    Colour colour = Colour::red;
    std::optional<Colour> maybe;
    bool all = false;
    std::optional<bool> notes;
    bool wide = false;
};

std::shared_ptr<Arguments> made; ///< those of the last call

Command everyKind() {
    const auto given = made = std::make_shared<Arguments>();
    const std::vector<std::pair<std::string, Colour>> colours = {{"red", Colour::red},
                                                                 {"green", Colour::green}};
    return {
        .name = "try",
        .what = "Tries",
        .arguments =
            {value("WORD", given->word, "A word").required(),
             value("--more", given->more, "Texts").separatedByCommas(),
             value("--ids", given->ids, "Numbers"), value("--page", given->page, "A page").from1(),
             value("--length", given->length, "Bytes").showingDefault(),
             value("--url", given->url, "A row"), value("--title", given->title, "A title"),
             value("--method", given->method, "A way").oneOf({"classic", "exact"}).showingDefault(),
             choice<Colour>("--colour", given->colour, colours, "A colour"),
             choice<Colour>("--maybe", given->maybe, colours, "A colour or none"),
             flag("--all", given->all, "All"), flag("--notes,!--no-notes", given->notes, "Notes"),
             flag("--wide", given->wide, "Wide").needing("--url")},
        .run = [](Session &) { return Exit::ok; }};
}

constexpr std::array<MakeCommand, 1> kTable = {everyKind};

Arguments parsed(std::vector<std::string> words) {
    words.insert(words.begin(), {"try", "w"});
    const Call call = callOf(words, kTable);
    EXPECT_EQ(call.refusal, "");
    EXPECT_TRUE(call.run);
    return *made;
}

std::string refusal(std::vector<std::string> words) {
    words.insert(words.begin(), {"try", "w"});
    const Call call = callOf(words, kTable);
    EXPECT_FALSE(call.run);
    EXPECT_EQ(call.exit, Exit::usage);
    return call.refusal;
}

TEST(Grammar, leavesWhatIsNotSaidAsItWas) {
    const Arguments given = parsed({});
    EXPECT_EQ(given.word, "w");
    EXPECT_TRUE(given.more.empty());
    EXPECT_THAT(given.ids, ElementsAre(7));
    EXPECT_EQ(given.page, 1);
    EXPECT_EQ(given.length, 512);
    EXPECT_EQ(given.url, std::nullopt);
    EXPECT_EQ(given.title, std::nullopt);
    EXPECT_EQ(given.method, "classic");
    EXPECT_EQ(given.colour, Colour::red);
    EXPECT_EQ(given.maybe, std::nullopt);
    EXPECT_FALSE(given.all);
    EXPECT_EQ(given.notes, std::nullopt);
}

TEST(Grammar, takesEachKindOfArgument) {
    const Arguments given =
        parsed({"--more", "a,b",     "--ids", "1",       "2",       "--page",   "3",     "--length",
                "4",      "--url",   "5",     "--title", "t",       "--method", "EXACT", "--colour",
                "Green",  "--maybe", "red",   "--all",   "--notes", "--wide"});
    EXPECT_THAT(given.more, ElementsAre("a", "b"));
    EXPECT_THAT(given.ids, ElementsAre(1, 2));
    EXPECT_EQ(given.page, 3);
    EXPECT_EQ(given.length, 4);
    EXPECT_EQ(given.url, 5);
    EXPECT_EQ(given.title, "t");
    EXPECT_EQ(given.method, "exact");
    EXPECT_EQ(given.colour, Colour::green);
    EXPECT_EQ(given.maybe, Colour::red);
    EXPECT_TRUE(given.all);
    EXPECT_EQ(given.notes, true);
    EXPECT_TRUE(given.wide);
    EXPECT_EQ(parsed({"--no-notes"}).notes, false);
}

TEST(Grammar, refusesWhatAnArgumentDoesNotTake) {
    EXPECT_THAT(refusal({"--page", "0"}), HasSubstr("\"0\" is no number from 1 on"));
    EXPECT_THAT(refusal({"--length", "x"}), HasSubstr("--length: \"x\" is no number"));
    EXPECT_THAT(refusal({"--method", "x"}), HasSubstr("\"x\" is none of classic and exact"));
    EXPECT_THAT(refusal({"--colour", "blue"}), HasSubstr("\"blue\" is none of red and green"));
    EXPECT_THAT(refusal({"--wide"}), HasSubstr("--url"));
    EXPECT_THAT(refusal({"more"}), HasSubstr("\"more\" is one word too many for try"));
}

TEST(Grammar, showsTypesAndDefaultsInTheHelp) {
    const std::string help = callOf({"try", "--help"}, kTable).answer;
    EXPECT_THAT(help, HasSubstr("--length INT=512 "));
    EXPECT_THAT(help, HasSubstr("--method TEXT=classic "));
    EXPECT_THAT(help, HasSubstr("--colour ENUM=red "));
    EXPECT_THAT(help, HasSubstr("--maybe ENUM "));
    EXPECT_THAT(help, HasSubstr("WORD TEXT REQUIRED"));
}

} // namespace
} // namespace nv::cli
