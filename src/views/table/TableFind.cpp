#include "views/table/TableFind.h"

#include <algorithm>

namespace nv {

namespace {

/// The next rows are looked at first: most often the text stands in one of them.
constexpr std::size_t kNearRows = 1000;

} // namespace

FindResult TableFind::next(const FindText &what, std::size_t from, TaskMonitor &task) {
    if (what != m_sought)
        m_holding.reset();
    m_sought = what;
    const std::size_t near = std::min(kNearRows, m_ids.size());
    if (!m_holding) {
        RowIds next;
        for (std::size_t step = 0; step < near; ++step)
            next.push_back(m_ids[(from + step) % m_ids.size()]);
        const auto rows = rowsWith(what, next, m_project, m_cells, task);
        if (!rows)
            return {.end = FindEnd::cancelled, .unread = {}};
        if (auto result = foundAmong(*rows, what, from, near))
            return *result;
        m_holding = rowsWith(what, m_ids, m_project, m_cells, task);
    }
    if (!m_holding)
        return {.end = FindEnd::cancelled, .unread = {}};
    if (auto result = foundAmong(*m_holding, what, from, m_ids.size()))
        return *result;
    return {.end = FindEnd::notThere, .unread = m_holding->unread};
}

/// The first of `count` places from `from` on whose row is one of `rows`.
std::optional<FindResult> TableFind::foundAmong(const FoundTexts &rows, const FindText &what,
                                                std::size_t from, std::size_t count) {
    if (rows.ids.empty())
        return std::nullopt;
    for (std::size_t step = 0; step < count; ++step) {
        const std::size_t place = (from + step) % m_ids.size();
        if (!std::ranges::binary_search(rows.ids, m_ids[place]))
            continue;
        if (const auto column = columnWith(what, place))
            return FindResult{FindEnd::found, place, *column, {}};
    }
    return std::nullopt;
}

/// The first column, as they are shown, that holds the text.
std::optional<UrlColumn> TableFind::columnWith(const FindText &what, std::size_t place) {
    const FindPattern pattern(what.text);
    for (const UrlColumn column : what.columns) {
        const bool isText = factsOf(column).rule == CellRule::Text;
        if (isText) {
            const auto text = fullTextOf(m_project, UrlId{m_ids[place]}, column);
            if (text && pattern.isIn(*text))
                return column;
        }
        m_pager.need(column);
        const UrlRow *row = m_pager.row(place);
        if (row && pattern.isInShown(m_cells.text(*row, column)))
            return column;
    }
    return std::nullopt;
}

} // namespace nv
