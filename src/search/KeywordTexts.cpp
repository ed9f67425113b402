#include "search/KeywordTexts.h"

#include "search/ExpressionOptions.h"

#include <algorithm>
#include <limits>
#include <map>
#include <re2/set.h>
#include <utility>

namespace nv {

namespace {

/// So often is an expression counted in one text. There are some that look at the rest of the text
/// after each place where they match.
constexpr std::uint32_t kMostOfExpression = 1'000;

} // namespace

/// "tide" and its whole word are one to the automaton.
struct KeywordTexts::FoldedTerms {
    explicit FoldedTerms(const KeywordList &list) {
        std::map<std::string, std::size_t> places;
        for (std::size_t term = 0; term < list.terms.size(); ++term) {
            if (list.terms[term].isExpression)
                continue;
            for (const std::string &text : codedForms(list.terms[term].text)) {
                const auto [at, isNew] = places.try_emplace(text, folded.size());
                if (isNew) {
                    folded.push_back(text);
                    terms.emplace_back();
                }
                terms[at->second].push_back(static_cast<std::uint32_t>(term));
            }
        }
    }
    std::vector<std::string> folded;               ///< each once
    std::vector<std::vector<std::uint32_t>> terms; ///< of each: those of the list
};

struct ExpressionSet::Set {
    explicit Set(const re2::RE2::Options &options) : set(options, re2::RE2::UNANCHORED) {}
    re2::RE2::Set set;
};

ExpressionSet::ExpressionSet(const KeywordList &list) {
    constexpr std::int64_t kMostBytes = std::int64_t{256} << 20;
    m_set = std::make_unique<Set>(expressionOptions(kMostBytes));
    for (std::size_t term = 0; term < list.terms.size(); ++term) {
        const Keyword &keyword = list.terms[term];
        if (!keyword.isExpression)
            continue;
        m_expressions.emplace_back(keyword.text);
        m_terms.push_back(static_cast<std::uint32_t>(term));
        if (m_set && m_set->set.Add(keyword.text, nullptr) < 0)
            m_set.reset();
    }
    if (m_set && (m_expressions.empty() || !m_set->set.Compile()))
        m_set.reset();
}

ExpressionSet::~ExpressionSet() = default;

void ExpressionSet::matching(std::string_view text, std::vector<int> &places) const {
    places.clear();
    re2::RE2::Set::ErrorInfo error{};
    const auto none = re2::RE2::Set::kNoError;
    if (m_set &&
        (m_set->set.Match({text.data(), text.size()}, &places, &error) || error.kind == none)) {
        std::ranges::sort(places);
        return;
    }
    places.clear(); // they needed too much memory together
    for (std::size_t place = 0; place < m_expressions.size(); ++place)
        if (m_expressions[place].isIn(text))
            places.push_back(static_cast<int>(place));
}

KeywordTexts::KeywordTexts(const KeywordList &list) : KeywordTexts(list, FoldedTerms(list)) {}

KeywordTexts::KeywordTexts(const KeywordList &list, FoldedTerms &&plain)
    : m_terms(std::move(plain.terms)), m_automaton(plain.folded), m_expressions(list),
      m_placeOf(list.terms.size(), 0) {
    m_lengths.reserve(plain.folded.size());
    for (const std::string &folded : plain.folded)
        m_lengths.push_back(folded.size());
    m_isWholeWord.reserve(list.terms.size());
    for (const Keyword &term : list.terms)
        m_isWholeWord.push_back(term.isWholeWord);
}

TextSpan KeywordTexts::originOf(std::size_t at, std::size_t end) const {
    const std::size_t from = m_folded.origin(at);
    return {from, m_folded.origin(end) - from};
}

bool KeywordTexts::count(std::uint32_t term, const TextSpan &where, std::uint32_t most) {
    std::uint32_t &place = m_placeOf[term];
    if (place == 0) {
        m_found.push_back({term, 0, where});
        place = static_cast<std::uint32_t>(m_found.size());
    }
    std::uint32_t &hits = m_found[place - 1].hits;
    const bool fits = hits < most;
    hits += fits ? 1 : 0;
    return fits;
}

/// `at` and `end` are bytes of the folded text.
void KeywordTexts::note(std::uint32_t term, std::size_t at, std::size_t end) {
    if (!m_isWholeWord[term] ||
        (!isWithinWord(m_folded.text(), at) && !isWithinWord(m_folded.text(), end)))
        count(term, originOf(at, end), std::numeric_limits<std::uint32_t>::max());
}

void KeywordTexts::addExpressions(std::string_view text, const TextSpan &value) {
    const std::string_view piece = text.substr(value.at, value.length);
    m_expressions.matching(piece, m_places);
    for (const int place : m_places) {
        const auto number = static_cast<std::size_t>(place);
        const Expression &expression = m_expressions.expression(number);
        const std::uint32_t term = m_expressions.term(number);
        for (auto span = expression.firstIn(piece); span;
             span = expression.firstIn(piece, span->at + span->length))
            if (!count(term, {value.at + span->at, span->length}, kMostOfExpression))
                break;
    }
}

const std::vector<TermInText> &KeywordTexts::in(std::string_view text,
                                                std::span<const TextSpan> values) {
    m_found.clear();
    if (!m_terms.empty()) {
        m_folded.fold(text);
        m_automaton.eachIn(m_folded.text(), [this](std::uint32_t plain, std::size_t end) {
            for (const std::uint32_t term : m_terms[plain])
                note(term, end - m_lengths[plain], end);
        });
    }
    if (!m_expressions.empty())
        for (const TextSpan &value : values)
            addExpressions(text, value);
    for (const TermInText &found : m_found)
        m_placeOf[found.term] = 0;
    return m_found;
}

} // namespace nv
