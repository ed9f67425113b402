#include "rebuild/ReplacementIndex.h"

#include "base/Text.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace nv {

namespace {

bool isQuote(char c) {
    return c == '"' || c == '\'';
}

} // namespace

ReplacementIndex::ReplacementIndex(std::span<const Replacement> replacements) {
    using Spelling = std::pair<std::string_view, std::string_view>; // old and new value
    std::map<std::string, std::map<std::string, std::map<Spelling, Same>>> rules;
    for (std::size_t i = 0; i < replacements.size(); ++i) {
        const Replacement &one = replacements[i];
        rules[toLower(one.rule)][toLower(one.old)][{one.old, one.newValue}].numbers.push_back(i);
    }
    for (auto &[definition, olds] : rules) {
        Rule &rule = m_rules.emplace_back(Rule{definition, {}});
        for (auto &[text, sames] : olds) {
            Old &old = rule.olds.emplace_back(Old{text, kNone, {}});
            for (auto &[spelling, same] : sames)
                old.sames.push_back(std::move(same));
        }
        link(rule.olds);
    }
}

void ReplacementIndex::link(std::vector<Old> &olds) {
    for (std::size_t i = 1; i < olds.size(); ++i) {
        std::size_t shorter = i - 1; // in their order, the one before or one that it begins with
        while (shorter != kNone && !olds[i].text.starts_with(olds[shorter].text))
            shorter = olds[shorter].shorter;
        olds[i].shorter = shorter;
    }
}

std::size_t ReplacementIndex::longestIn(const std::vector<Old> &olds, std::string_view text) {
    const auto behind = std::ranges::upper_bound(
        olds, text, {}, [](const Old &old) { return std::string_view(old.text); });
    if (behind == olds.begin())
        return kNone;
    auto at = static_cast<std::size_t>(std::distance(olds.begin(), behind)) - 1;
    while (at != kNone && !text.starts_with(olds[at].text))
        at = olds[at].shorter;
    return at;
}

std::optional<ReplacementIndex::Found>
ReplacementIndex::firstIn(std::string_view text, std::size_t from,
                          const std::set<const Same *> &without) const {
    std::optional<Found> first;
    const auto take = [&](const Same &same) {
        if (without.contains(&same))
            return;
        const auto number = std::ranges::lower_bound(same.numbers, from);
        if (number != same.numbers.end() && (!first || *number < first->number))
            first = Found{*number, &same};
    };
    const std::string lower = toLower(text);
    const std::string_view whole = lower;
    for (const Rule &rule : m_rules)
        for (std::size_t hit = whole.find(rule.definition); hit != std::string_view::npos;
             hit = whole.find(rule.definition, hit + 1)) {
            std::string_view value = whole.substr(hit + rule.definition.size());
            if (!value.empty() && isQuote(value.front()))
                value.remove_prefix(1);
            for (std::size_t at = longestIn(rule.olds, value); at != kNone;
                 at = rule.olds[at].shorter)
                std::ranges::for_each(rule.olds[at].sames, take);
        }
    return first;
}

} // namespace nv
