#include "views/rows/TickCount.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <utility>

namespace nv {

void TickCount::count(SQLite::Database &project, const RowIds &ids) {
    if (!m_ticked) {
        RowIds ticked;
        SQLite::Statement rows(project,
                               "SELECT URL_ID FROM URLs WHERE Tagged <> 0 ORDER BY URL_ID");
        while (rows.executeStep())
            ticked.push_back(rows.getColumn(0).getInt());
        m_ticked = std::move(ticked);
    }
    m_all = static_cast<std::int64_t>(m_ticked->size());
    m_shown = std::ranges::count_if(
        ids, [this](std::int32_t id) { return std::ranges::binary_search(*m_ticked, id); });
}

void TickCount::note(bool tagged, bool isShown) {
    forget();
    m_all += tagged ? 1 : -1;
    if (isShown)
        m_shown += tagged ? 1 : -1;
}

} // namespace nv
