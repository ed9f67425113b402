#include "views/rows/TickCount.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "search/IdBits.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace nv {

namespace {

/// No query of an examiner's says both.
constexpr std::string_view kTicked = "Tagged <> 0 AND URL_ID <> 0.5";

RowIds readTicked(SQLite::Database &project, std::string_view how) {
    RowIds ticked;
    SQLite::Statement rows(
        project, fmt::format("SELECT URL_ID FROM URLs {} WHERE {} ORDER BY URL_ID", how, kTicked));
    while (rows.executeStep())
        ticked.push_back(rows.getColumn(0).getInt());
    return ticked;
}

/// Ascending.
RowIds tickedRows(SQLite::Database &project) {
    RowIds ticked;
    NoLog unheard; // without the index, or with a damaged one, the rows themselves tell
    if (failureOf(unheard, {}, [&] { ticked = readTicked(project, "INDEXED BY URLTickIndex"); }))
        ticked = readTicked(project, "NOT INDEXED");
    return ticked;
}

/// How many of `ids` are ticked. Of millions a bit each is asked.
std::int64_t countShown(const RowIds &ticked, const RowIds &ids) {
    if (ticked.empty())
        return 0;
    const IdRange range{ticked.front(), ticked.back()};
    if (range.isWideFor(ticked.size()))
        return std::ranges::count_if(
            ids, [&](std::int32_t id) { return std::ranges::binary_search(ticked, id); });
    const IdBits bits(ticked, range);
    return std::ranges::count_if(ids, [&](std::int32_t id) { return bits.has(id); });
}

} // namespace

IndexState ensureTickIndex(SQLite::Database &project, TaskMonitor &task) {
    return ensureIndex(project, task, "URLTickIndex",
                       fmt::format("URLs(Tagged) WHERE {}", kTicked));
}

void TickCount::count(SQLite::Database &project, const RowIds &ids) {
    if (!m_ticked)
        m_ticked = tickedRows(project);
    m_all = static_cast<std::int64_t>(m_ticked->size());
    m_shown = countShown(*m_ticked, ids);
}

void TickCount::note(bool tagged, bool isShown) {
    forget();
    m_all += tagged ? 1 : -1;
    if (isShown)
        m_shown += tagged ? 1 : -1;
}

} // namespace nv
