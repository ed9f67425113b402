#include "cli/CommandHints.h"

#include "base/Text.h"
#include "cli/RowWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv::cli {

namespace {

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
        return fmt::format("there is no option \"{}\"{}{}", shown, of, meant(word, place.options));
    if (place.commands.empty())
        return fmt::format("\"{}\" is one word too many{}", shown,
                           place.words.empty() ? "" : " for " + place.words);
    return fmt::format("there is no command \"{}{}{}\"{}", place.words,
                       place.words.empty() ? "" : " ", shown, meant(word, place.commands));
}

std::string reasonOf(const Understood &place, Mistake mistake, const std::string &what) {
    if (mistake == Mistake::wordWithoutPlace && !place.left.empty())
        // A word behind an unknown option was meant as its value.
        return unknownWord(place, *std::ranges::max_element(place.left, {}, isOption));
    if (mistake == Mistake::noCommand)
        return place.left.empty() ? "a command was expected"
                                  : unknownWord(place, place.left.front());
    constexpr std::string_view kNotConverted = "Could not convert: ";
    if (const auto is = what.find(" = ");
        what.starts_with(kNotConverted) && is != std::string::npos)
        return fmt::format("{}: \"{}\" is no number that can be taken",
                           what.substr(kNotConverted.size(), is - kNotConverted.size()),
                           what.substr(is + 3));
    return what;
}

} // namespace

std::optional<std::size_t> placeAmong(std::string_view word,
                                      const std::vector<std::string> &words) {
    const auto found =
        std::ranges::find_if(words, [&](const auto &each) { return equalsNoCase(word, each); });
    if (found == words.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - words.begin());
}

std::string noneOf(std::string_view word, const std::vector<std::string> &words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? " and " : ", ") + words[i];
    return fmt::format("\"{}\" is none of {}", printable(word), text);
}

std::string notFrom1(std::string_view word) {
    int number = 0;
    const char *end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && stop == end && number > 0
               ? std::string()
               : fmt::format("\"{}\" is no number from 1 on", printable(word));
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

std::string explained(const Understood &place, Mistake mistake, const std::string &what) {
    return fmt::format("norvelane-cli: {}\nSee: norvelane-cli{}{} --help\n",
                       printable(reasonOf(place, mistake, what)), place.words.empty() ? "" : " ",
                       place.words);
}

} // namespace nv::cli
