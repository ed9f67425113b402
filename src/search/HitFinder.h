#pragma once

#include "search/RowMatch.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// The hits of one search in a record, as all viewers look for them: the places of a text, and
/// where there is no text but bytes or a drawn page, the spellings that are looked for in it.
class HitFinder {
  public:
    static constexpr std::size_t kMostMarks = 2000; ///< of a text
    static constexpr std::size_t kMostForms = 32;
    static constexpr std::size_t kLongestForm =
        256; ///< bytes; of a longer one its beginning counts

    explicit HitFinder(RowMatch match) : m_match(std::move(match)) {}

    SearchScope scope() const { return m_match.scope(); }
    /// Where the row shows the first of the texts that it was found by.
    std::optional<FieldMark> firstMark(const SearchedRow &row) { return m_match.firstMark(row); }
    /// From the left, none in another, at most `kMostMarks`.
    std::vector<TextSpan> marksIn(std::string_view text) {
        return m_match.marksIn(text, kMostMarks);
    }
    /// What stands at the marks, each once, whatever its letters' case; none is a part of another,
    /// since whoever finds the part finds both.
    std::vector<std::string> formsIn(std::string_view text);
    /// Those of all texts of the row, and what was asked for as it was written.
    std::vector<std::string> formsOf(const SearchedRow &row);

  private:
    RowMatch m_match;
};

/// What viewers are told: the search that is in force, and what it looks for in the record.
struct RecordHits {
    std::shared_ptr<HitFinder> finder = nullptr; ///< null for none
    std::vector<std::string> forms = {};
};

} // namespace nv
