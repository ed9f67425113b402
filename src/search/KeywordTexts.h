#pragma once

#include "search/Expression.h"
#include "search/FoldedText.h"
#include "search/KeywordList.h"
#include "search/TermAutomaton.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace re2 {
class RE2;
}

namespace nv {

/// Many expressions at once: which of them are in a text is found in one pass over it.
class ExpressionSet {
  public:
    /// Throws SearchFailure that names the term.
    explicit ExpressionSet(const KeywordList &list);
    ~ExpressionSet();
    ExpressionSet(const ExpressionSet &) = delete;
    ExpressionSet &operator=(const ExpressionSet &) = delete;

    bool empty() const { return m_expressions.empty(); }
    /// The places in `expressions()` of those that are in the text, ascending.
    void matching(std::string_view text, std::vector<int> &places) const;
    const Expression &expression(std::size_t place) const { return m_expressions.at(place); }
    /// Its number in the list.
    std::uint32_t term(std::size_t place) const { return m_terms.at(place); }

  private:
    struct Set;
    std::vector<Expression> m_expressions;
    std::vector<std::uint32_t> m_terms;
    std::unique_ptr<Set> m_set; ///< none when it would need too much memory
};

/// A term in a text.
struct TermInText {
    std::uint32_t term = 0;
    std::uint32_t hits = 0;
    TextSpan first;
};

/// The terms of a list, ready to be looked for in one text after the other.
class KeywordTexts {
  public:
    /// Throws SearchFailure for terms that need too much memory.
    explicit KeywordTexts(const KeywordList &list);

    /// The terms of the list.
    std::size_t count() const { return m_isWholeWord.size(); }

    /// Those that are in the text, in no order. Good until the next call. Expressions are looked
    /// for in each of its values.
    const std::vector<TermInText> &in(std::string_view text, std::span<const TextSpan> values);

  private:
    struct FoldedTerms;
    KeywordTexts(const KeywordList &list, FoldedTerms &&plain);
    void addExpressions(std::string_view text, const TextSpan &value);
    /// False when it was found so often before.
    bool count(std::uint32_t term, const TextSpan &where, std::uint32_t most);
    void note(std::uint32_t term, std::size_t at, std::size_t end);
    TextSpan originOf(std::size_t at, std::size_t end) const;

    std::vector<std::vector<std::uint32_t>>
        m_terms;                        ///< by term of the automaton: those of the list
    std::vector<std::size_t> m_lengths; ///< by term of the automaton, folded, in bytes
    std::vector<bool> m_isWholeWord;    ///< by term of the list
    TermAutomaton m_automaton;
    ExpressionSet m_expressions;
    FoldedText m_folded;
    std::vector<std::uint32_t> m_placeOf; ///< by term of the list: its place in m_found, from 1
    std::vector<TermInText> m_found;
    std::vector<int> m_places;
};

} // namespace nv
