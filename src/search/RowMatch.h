#pragma once

#include "search/Expression.h"
#include "search/FoldedText.h"
#include "search/FoundIds.h"
#include "search/SearchQuery.h"
#include "search/SearchedRow.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// What is looked through: all, or the values alone, as while a search is typed.
enum class SearchScope : std::uint8_t { all, values };

/// A place of a row's texts.
struct FieldMark {
    SearchField field = SearchField::address;
    TextSpan span;
};

/// Compares rows and texts with a search, one by one: the meaning of a search, which the index only
/// makes quick. One object serves many rows.
class RowMatch {
  public:
    explicit RowMatch(SearchQuery query, SearchScope scope = SearchScope::all);

    const SearchQuery &query() const { return m_query; }
    SearchScope scope() const { return m_scope; }
    /// The rows that the tag: or hashset: condition of this place names. These stand in no text of
    /// a row and change at any time, so that they are told before each search; no row has them
    /// until then.
    void setMarked(std::size_t clause, FoundIds ids) { m_marked.at(clause) = std::move(ids); }
    const FoundIds &marked(std::size_t clause) const { return m_marked.at(clause); }
    /// Meets all conditions.
    bool meets(const SearchedRow &row);
    /// What the condition of this place asks, whether it is excluded or not.
    bool meetsClause(std::size_t clause, const SearchedRow &row);
    /// Where the row shows the first of the texts that it was found by.
    std::optional<FieldMark> firstMark(const SearchedRow &row);
    /// All places of a text that a viewer marks, at most `most`, from the left and none in another.
    std::vector<TextSpan> marksIn(std::string_view text, std::size_t most);

  private:
    /// A text that is looked for, ready to be compared.
    struct Sought {
        std::vector<std::string> forms; ///< codedForms()
        std::vector<std::string> words; ///< none for one that has only signs
    };

    std::optional<TextSpan> find(std::size_t clause, SearchField field, const SearchedRow &row);
    std::optional<TextSpan> findPart(const Sought &sought, std::string_view text);
    bool isMarked(std::size_t clause) const;
    void gather(std::size_t clause, std::string_view text, std::size_t most,
                std::vector<TextSpan> &into);

    SearchQuery m_query;
    SearchScope m_scope;
    std::vector<Sought> m_sought;   ///< of each clause
    std::vector<FoundIds> m_marked; ///< of each clause; empty for those of other kinds
    FoldedText m_folded;
};

/// The first place from the left at which these words follow each other; of the last one its
/// beginning is enough with `anyEnd`.
std::optional<TextSpan> findWords(const std::vector<std::string> &words, bool anyEnd,
                                  std::string_view text);

/// What before: and after: mean: a second earlier than the one asked for, or that one and later.
/// Without a date a row is neither.
bool liesInTime(Date date, const SearchClause &clause);

// What host:, browser: and kind: mean. `asked` has its letters folded.
/// Coded names ("xn--...") are those that they are coded from, too.
bool isOfHost(std::string_view host, std::string_view asked);
/// The name of the browser; where a row names none, that of the family that its kind tells of.
bool isOfBrowser(std::string_view browser, std::string_view cacheType, std::string_view asked);
/// "cache", "history", "cookies", "bookmarks", "other" for a group; else a part of the type's word.
bool isOfKind(std::string_view cacheType, std::string_view asked);

} // namespace nv
