#pragma once

#include "search/Expression.h"
#include "time/Date.h"
#include "time/TimeZone.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

enum class ClauseKind : std::uint8_t {
    text,
    expression,
    host,
    browser,
    kind,
    before,
    after,
    tag,
    hashSet
};
/// Of tags and hash sets, which stand in no text of a row.
constexpr bool isOfMark(ClauseKind kind) {
    return kind == ClauseKind::tag || kind == ClauseKind::hashSet;
}

/// One condition of a search.
struct SearchClause {
    ClauseKind kind = ClauseKind::text;
    bool isExcluded = false; ///< rows that meet it are left out
    std::string text;        ///< what is looked for; of a date as it was written
    /// Of a text: in pages and headers too a part of a word is enough ("*tide*"), or its beginning
    /// ("tide*"). In whole values a part always is, and so it is everywhere of a text that
    /// isWithoutWords().
    bool anyPart = false;
    bool anyEnd = false;
    std::shared_ptr<const Expression> expression = nullptr;
    Date date = {}; ///< UTC; what was written, until goByClock()
};

/// All of its conditions have to be met.
struct SearchQuery {
    std::vector<SearchClause> clauses;
};

/// Reads what stands in the search box: words, "phrases", -word, host:, browser:, kind:, tag:,
/// hashset:, before:, after:, /expression/. A quotation mark that isn't closed goes on to the end,
/// since a search is made while it is typed. Throws SearchFailure for an operator without a value,
/// a date or an expression that can't be read, with its letter, and when there is nothing to look
/// for or too much.
SearchQuery parseSearch(std::string_view text);

/// Dates of before: and after: are those that the clock of this zone shows; once. Throws as
/// firstMoment() does.
void goByClock(SearchQuery &query, const TimeZone &zone, bool enableDSTChanges);
/// Whether any condition is of dates.
bool hasDates(const SearchQuery &query);

/// The index tells of it at once, so that it can be looked for letter by letter: it need not read
/// row by row.
bool isFoundAtOnce(const SearchQuery &query);

/// An operator in whose value somebody writes.
struct TypedOperator {
    ClauseKind kind = ClauseKind::host;
    std::string value;      ///< as far as it is there, without quotation marks
    std::size_t at = 0;     ///< of the value with its marks, in bytes
    std::size_t length = 0; ///< of the same
};
/// The operator whose value stands at this place of the box's text, in bytes; nothing elsewhere.
std::optional<TypedOperator> operatorAt(std::string_view text, std::size_t place);
/// A value as it is written behind an operator: in quotation marks where that is needed.
std::string operatorValue(std::string_view value);
/// "kind:"; empty for texts and expressions.
std::string_view operatorWord(ClauseKind kind);

/// "2011", "2011-03", "2011-03-01" or "2011-03-01T15:30[:00]": its first second. No date for
/// anything else.
Date searchDate(std::string_view text);

} // namespace nv
