#include "views/tags/TagHistory.h"

#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMostChanges = 1000;
constexpr std::size_t kMostRows = 10'000'000; // of all changes: 40 MB

std::size_t rowsIn(const TagChange &change) {
    return change.ids.size() + change.earlierNotes.size();
}

} // namespace

void TagHistory::add(TagChange change) {
    if (change.isNothing())
        return;
    m_changes.resize(m_done);
    m_changes.push_back(std::move(change));
    m_done = m_changes.size();
    dropOldest();
}

/// The last one stays, however many rows it has.
void TagHistory::dropOldest() {
    std::size_t rows = 0;
    for (const TagChange &change : m_changes)
        rows += rowsIn(change);
    std::size_t drop = 0;
    while (drop + 1 < m_changes.size() &&
           (m_changes.size() - drop > kMostChanges || rows > kMostRows))
        rows -= rowsIn(m_changes[drop++]);
    m_changes.erase(m_changes.begin(), m_changes.begin() + static_cast<std::ptrdiff_t>(drop));
    m_done = m_changes.size();
}

void TagHistory::clear() {
    m_changes.clear();
    m_done = 0;
}

bool TagHistory::undo(SQLite::Database &project, TaskMonitor &task) {
    if (!canUndo() || !RecordTags(project).undo(*next(), task))
        return false;
    --m_done;
    return true;
}

bool TagHistory::redo(SQLite::Database &project, TaskMonitor &task) {
    if (!canRedo() || !RecordTags(project).redo(*nextAgain(), task))
        return false;
    ++m_done;
    return true;
}

} // namespace nv
