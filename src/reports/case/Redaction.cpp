#include "reports/case/Redaction.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::size_t kShortest = 3; ///< characters of a word that is looked for everywhere
constexpr std::size_t kLongest = 1000;
constexpr std::string_view kLeaveOut = "leave out ";
constexpr std::string_view kBlur = "blur ";

struct ThingFacts {
    RedactedThing thing;
    std::string_view word;
    std::string_view many;
};
constexpr std::array<ThingFacts, 4> kThings = {{{RedactedThing::host, "host", "hosts"},
                                                {RedactedThing::person, "person", "people"},
                                                {RedactedThing::value, "value", "values"},
                                                {RedactedThing::picture, "picture", "pictures"}}};

const ThingFacts &factsOf(RedactedThing thing) {
    return kThings.at(static_cast<std::size_t>(thing));
}

void check(const RedactionRule &rule, std::string_view text) {
    if (rule.thing == RedactedThing::picture) {
        const bool isId =
            !rule.what.empty() && rule.what.size() <= 10 && rule.what != "0" &&
            std::ranges::all_of(rule.what, [](char c) { return c >= '0' && c <= '9'; });
        if (!isId)
            throw std::invalid_argument(
                fmt::format("\"{}\": the id of a picture's row was expected", text));
        return;
    }
    if (charCount(rule.what) < kShortest)
        throw std::invalid_argument(
            fmt::format("\"{}\": at least {} characters were expected: they go wherever they stand",
                        text, kShortest));
    if (rule.what.size() > kLongest)
        throw std::invalid_argument(fmt::format("a redaction of {} bytes: at most {} were expected",
                                                rule.what.size(), kLongest));
}

} // namespace

RedactionRule redactionRule(RedactionWay way, std::string_view text) {
    const std::size_t equals = text.find('=');
    const std::string_view word = trim(text.substr(0, equals));
    const auto known = std::ranges::find_if(
        kThings, [word](const ThingFacts &each) { return equalsNoCase(word, each.word); });
    if (equals == std::string_view::npos || known == kThings.end())
        throw std::invalid_argument(fmt::format(
            "\"{}\": host=NAME, person=NAME, value=TEXT or picture=ROW was expected", text));
    RedactionRule rule{way, known->thing, decodeText(trim(text.substr(equals + 1)))};
    check(rule, text);
    return rule;
}

std::string textOf(const RedactionRule &rule) {
    return fmt::format("{}{}={}", rule.way == RedactionWay::leaveOut ? kLeaveOut : kBlur,
                       factsOf(rule.thing).word, rule.what);
}

std::string linesOf(const RedactionRules &rules) {
    std::string lines;
    for (const RedactionRule &rule : rules)
        lines += textOf(rule) + "\n";
    return lines;
}

RedactionRules redactionRules(std::string_view lines) {
    RedactionRules rules;
    for (const std::string_view each : split(lines, '\n')) {
        const std::string_view line = trim(each);
        if (line.empty())
            continue;
        const bool isLeftOut = startsWithNoCase(line, kLeaveOut);
        if (!isLeftOut && !startsWithNoCase(line, kBlur))
            throw std::invalid_argument(
                fmt::format("\"{}\": \"leave out ...\" or \"blur ...\" was expected", line));
        rules.push_back(redactionRule(isLeftOut ? RedactionWay::leaveOut : RedactionWay::blur,
                                      line.substr(isLeftOut ? kLeaveOut.size() : kBlur.size())));
        if (rules.size() > kMostRedactions)
            throw std::invalid_argument(fmt::format("more than {} redactions", kMostRedactions));
    }
    return rules;
}

std::string chosenText(const RedactionRules &rules) {
    std::string text;
    for (const ThingFacts &each : kThings) {
        const auto count = static_cast<std::uint64_t>(std::ranges::count(
            rules, each.thing, [](const RedactionRule &rule) { return rule.thing; }));
        if (count > 0)
            text +=
                fmt::format("{}{}", text.empty() ? "" : ", ", counted(count, each.word, each.many));
    }
    return text;
}

std::string redactedText(const RedactionCounts &counts) {
    std::string text;
    const auto tell = [&text](std::uint64_t count, std::string_view one, std::string_view what) {
        if (count > 0)
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", counted(count, one), what);
    };
    tell(counts.rowsLeftOut, "row", "left out");
    tell(counts.placesBlurred, "place", "in texts blurred");
    tell(counts.picturesBlurred, "picture", "blurred");
    tell(counts.picturesLeftOut, "picture", "left out");
    tell(counts.filesChanged, "content", "changed");
    tell(counts.filesLeftOut, "content", "left out");
    return text;
}

} // namespace nv
