#include "search/IndexMatch.h"

#include "search/FoldedText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace nv {

namespace {

/// Shorter texts have no run of three letters.
constexpr std::size_t kLeastLetters = 3;

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::size_t lettersOf(std::string_view text) {
    constexpr unsigned kContinues = 0x80;
    constexpr unsigned kTop = 0xC0;
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & kTop) != kContinues; }));
}

std::string phrase(std::string_view text) {
    std::string match = "\"";
    for (const char c : text)
        match.append(c == '"' ? 2 : 1, c);
    return match + '"';
}

} // namespace

bool isTold(const SearchClause &clause) {
    return clause.kind == ClauseKind::text &&
           std::ranges::all_of(codedForms(clause.text), [](const std::string &form) {
               return lettersOf(form) >= kLeastLetters;
           });
}

std::string wordMatchOf(const SearchClause &clause) {
    const auto words = wordsOf(clause.text);
    return words.empty() ? "" : phrase(joined(words)) + (clause.anyEnd ? " *" : "");
}

std::string runMatchOf(const SearchClause &clause) {
    std::string match;
    for (const std::string &form : codedForms(clause.text))
        match += (match.empty() ? "" : " OR ") + phrase(form);
    return '(' + match + ')';
}

} // namespace nv
