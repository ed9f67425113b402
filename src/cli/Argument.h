#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace nv::cli {

/// A value that one of some words stands for: `take` is told the word's place among them.
struct Choice {
    std::function<void(std::size_t)> take;
};

/// Where what was said goes. It has to outlive the parsing.
using Target =
    std::variant<bool *, std::optional<bool> *, int *, std::int64_t *,
                 std::optional<std::int64_t> *, std::vector<std::int64_t> *, std::string *,
                 std::optional<std::string> *, std::vector<std::string> *, Choice>;

/// A word or an option of a command. What isn't said leaves its target as it is.
struct Argument {
    std::string name; ///< "PROJECT" for a word at its place, "--host" for an option
    Target target;
    std::string_view what; ///< its line in the help

    bool isRequired = false;
    bool isFrom1 = false;     ///< of numbers: 0 and less are refused
    bool hasCommas = false;   ///< several values may stand in one word
    bool isSaidAgain = false; ///< of several values: the option is said for each of them
    std::vector<std::string> choices = {}; ///< in any case; empty when each word will do
    std::string standard = {};             ///< the default as the help shows it; may be empty
    std::string_view needs = {}; ///< an earlier option of the command that must be there too

    Argument required() &&;
    Argument from1() &&;
    Argument separatedByCommas() &&;
    Argument saidForEach() &&;
    Argument oneOf(std::vector<std::string> words) &&;
    /// What the target holds is shown as the default.
    Argument showingDefault() &&;
    Argument needing(std::string_view option) &&;
};

template <class Value>
concept FlagTarget = std::same_as<Value, bool> || std::same_as<Value, std::optional<bool>>;

/// A word, or an option with a value.
template <class Value>
Argument value(std::string_view name, Value &target, std::string_view what) {
    static_assert(!FlagTarget<Value>, "a flag takes no value");
    return {.name = std::string(name), .target = &target, .what = what};
}

/// An option without a value. "--notes,!--no-notes" can be said both ways.
template <FlagTarget Flag>
Argument flag(std::string_view name, Flag &target, std::string_view what) {
    return {.name = std::string(name), .target = &target, .what = what};
}

/// An option whose words stand for values of an enumeration.
template <class Value, class Assigned>
Argument choice(std::string_view name, Assigned &target,
                const std::vector<std::pair<std::string, Value>> &words, std::string_view what) {
    Argument made{.name = std::string(name), .target = Choice(), .what = what};
    std::vector<Value> values;
    for (const auto &[word, value] : words) {
        made.choices.push_back(word);
        values.push_back(value);
        if (target == value)
            made.standard = word;
    }
    made.target = Choice{[&target, values](std::size_t place) { target = values.at(place); }};
    return made;
}

/// "TEXT", "INT" or "ENUM", as the help says what is expected; empty for a flag.
std::string_view typeName(const Argument &argument);
/// Takes more than one value.
bool isList(const Argument &argument);
/// Stands at its place, without a name before it.
bool isWord(const Argument &argument);

} // namespace nv::cli
