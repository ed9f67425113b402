#pragma once

#include "base/TaskMonitor.h"
#include "db/marks/RecordTags.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace nv {

/// What was done to tags of rows since the project was opened, so that it can be taken back and
/// done again. It writes nothing to the project but what RecordTags writes.
class TagHistory {
  public:
    /// What was done last. What was taken back before can't be done again any more.
    void add(TagChange change);
    void clear();

    bool canUndo() const { return m_done > 0; }
    bool canRedo() const { return m_done < m_changes.size(); }
    /// The change that the next undo() takes back, or redo() does again; null for none.
    const TagChange *next() const { return canUndo() ? &m_changes[m_done - 1] : nullptr; }
    const TagChange *nextAgain() const { return canRedo() ? &m_changes[m_done] : nullptr; }
    /// False after a cancel, and when there is nothing. Throws what RecordTags throws; the project
    /// is as it was then.
    bool undo(SQLite::Database &project, TaskMonitor &task);
    bool redo(SQLite::Database &project, TaskMonitor &task);

  private:
    void dropOldest();

    std::vector<TagChange> m_changes; ///< the oldest first
    std::size_t m_done = 0;           ///< those after it were taken back
};

} // namespace nv
