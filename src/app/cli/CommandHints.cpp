#include "app/cli/CommandHints.h"

#include "app/cli/RowWriter.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv::cli {

namespace {

/// "a, b and c".
std::string listed(const std::vector<std::pair<std::string, int>> &words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? " and " : ", ") + words[i].first;
    return text;
}

/// "template apply" of the words that were understood; empty for the program itself.
struct Understood {
    const CLI::App *command;
    std::string words;
};
Understood understood(const CLI::App &app) {
    Understood found{&app, {}};
    while (!found.command->get_subcommands().empty()) {
        found.command = found.command->get_subcommands().front();
        found.words += (found.words.empty() ? "" : " ") + found.command->get_name();
    }
    return found;
}

std::vector<std::string> commandsOf(const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::App *each : app.get_subcommands([](const CLI::App *) { return true; }))
        names.push_back(each->get_name());
    return names;
}

std::vector<std::string> optionsOf(const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::Option *option : app.get_options())
        for (const std::string &name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

std::string meant(const std::string &word, const std::vector<std::string> &known) {
    const std::string near = nearest(word, known);
    return near.empty() ? "" : fmt::format("; was \"{}\" meant?", near);
}

bool isOption(const std::string &word) {
    return word.starts_with("-");
}

/// Of a word that has no place in the call.
std::string unknownWord(const Understood &place, const std::string &word) {
    const std::string shown = printable(word);
    const std::string of = place.words.empty() ? "" : " of " + place.words;
    if (isOption(word))
        return fmt::format("there is no option \"{}\"{}{}", shown, of,
                           meant(word, optionsOf(*place.command)));
    const auto commands = commandsOf(*place.command);
    if (commands.empty())
        return fmt::format("\"{}\" is one word too many{}", shown,
                           place.words.empty() ? "" : " for " + place.words);
    return fmt::format("there is no command \"{}{}{}\"{}", place.words,
                       place.words.empty() ? "" : " ", shown, meant(word, commands));
}

std::string reasonOf(const Understood &place, const CLI::Error &error) {
    const std::string what = error.what();
    const auto left = place.command->remaining();
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError) && !left.empty())
        // A word behind an unknown option was meant as its value.
        return unknownWord(place, *std::ranges::max_element(left, {}, isOption));
    if (what == CLI::RequiredError::Subcommand(1).what())
        return left.empty() ? "a command was expected" : unknownWord(place, left.front());
    constexpr std::string_view kNotConverted = "Could not convert: ";
    if (const auto is = what.find(" = ");
        what.starts_with(kNotConverted) && is != std::string::npos)
        return fmt::format("{}: \"{}\" is no number that can be taken",
                           what.substr(kNotConverted.size(), is - kNotConverted.size()),
                           what.substr(is + 3));
    return what;
}

} // namespace

CLI::Validator numberOf(std::vector<std::pair<std::string, int>> words) {
    return CLI::Validator(
        [words = std::move(words)](std::string &input) -> std::string {
            for (const auto &[word, value] : words) {
                if (equalsNoCase(input, word)) {
                    input = std::to_string(value);
                    return {};
                }
            }
            return fmt::format("\"{}\" is none of {}", printable(input), listed(words));
        },
        "");
}

CLI::Validator oneOf(const std::vector<std::string> &words) {
    std::vector<std::pair<std::string, int>> numbered;
    numbered.reserve(words.size());
    for (const std::string &word : words)
        numbered.emplace_back(word, static_cast<int>(numbered.size()));
    return CLI::Validator(
        [words, choose = numberOf(numbered)](std::string &input) -> std::string {
            std::string number = input;
            std::string refusal = choose(number);
            if (refusal.empty())
                input = words.at(std::stoul(number));
            return refusal;
        },
        "");
}

CLI::Validator atLeastOne() {
    return CLI::Validator(
        [](std::string &input) -> std::string {
            int number = 0;
            const char *end = input.data() + input.size();
            const auto [stop, error] = std::from_chars(input.data(), end, number);
            return error == std::errc() && stop == end && number > 0
                       ? ""
                       : fmt::format("\"{}\" is no number from 1 on", printable(input));
        },
        "");
}

std::string nearest(std::string_view word, const std::vector<std::string> &known) {
    std::string best;
    // Half the word must be right.
    std::size_t closest = std::min<std::size_t>(3, word.size() / 2 + 1);
    for (const std::string &each : known) {
        const std::size_t away = editDistance(toLower(word), each);
        if (away < closest) {
            closest = away;
            best = each;
        }
    }
    return best;
}

std::string explained(const CLI::App &app, const CLI::Error &error) {
    const Understood place = understood(app);
    return fmt::format("norvelane-cli: {}\nSee: norvelane-cli{}{} --help\n",
                       printable(reasonOf(place, error)), place.words.empty() ? "" : " ",
                       place.words);
}

} // namespace nv::cli
