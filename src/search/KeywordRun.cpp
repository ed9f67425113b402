#include "search/KeywordRun.h"

#include "search/KeywordTexts.h"
#include "search/SearchedRowReader.h"

#include <algorithm>

namespace nv {

namespace {

/// Counts a term's rows once for each.
class RowCounts {
  public:
    explicit RowCounts(KeywordFound &found, std::size_t terms, std::size_t mostHits)
        : m_found(found), m_last(terms, 0), m_inAddress(terms, 0), m_mostHits(mostHits) {
        found.rows.assign(terms, 0);
        found.times.assign(terms, 0);
    }

    /// What stands in the address stands in the raw one again, and is no second hit.
    void add(std::int32_t row, SearchField field, const TermInText &term) {
        if (field == SearchField::address)
            m_inAddress[term.term] = row;
        if (field == SearchField::rawAddress && m_inAddress[term.term] == row)
            return;
        if (m_last[term.term] != row) {
            m_last[term.term] = row;
            ++m_found.rows[term.term];
        }
        m_found.times[term.term] += term.hits;
        if (m_found.hits.size() < m_mostHits)
            m_found.hits.push_back({row, term.term, field, term.hits, term.first});
        else
            m_found.isCut = true;
    }

  private:
    KeywordFound &m_found;
    std::vector<std::int32_t> m_last;      ///< the row of each term that was counted last
    std::vector<std::int32_t> m_inAddress; ///< the same of those in its address
    std::size_t m_mostHits;
};

} // namespace

KeywordFound findKeywords(SQLite::Database &project, KeywordTexts &terms, TaskMonitor &task,
                          std::size_t mostHits) {
    KeywordFound found;
    RowCounts counts(found, terms.count(), mostHits);
    SearchedRowReader reader(project);
    while (!found.isCancelled && reader.next()) {
        ++found.rowsLooked;
        const SearchedRow &row = reader.row();
        bool isFound = false;
        for (std::size_t at = 0; at < kSearchFields; ++at) {
            const auto field = static_cast<SearchField>(at);
            const std::vector<TextSpan> values = row.valuesOf(field);
            for (const TermInText &term : terms.in(row.at(field), values)) {
                counts.add(row.id, field, term);
                isFound = true;
            }
        }
        found.rowsFound += isFound ? 1 : 0;
        found.isCancelled = !task.advance(reader.fraction());
    }
    found.unread = reader.unread();
    found.outside = reader.outside();
    return found;
}

} // namespace nv
