#pragma once

#include "views/rows/DateIndex.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <optional>

namespace nv {

/// Makes `URLTickIndex`, which holds the ticked rows alone, when the project has none. As the
/// narrow indexes it serves no statement that doesn't name it. A cancel leaves the project without.
/// Throws what the database says.
IndexState ensureTickIndex(SQLite::Database &project, TaskMonitor &task);

/// How many rows are ticked, in the project and in a list of it. Without the index reading that
/// takes a look at each row of the project, so what was read serves until a tick changes.
class TickCount {
  public:
    std::int64_t all() const { return m_all; }
    std::int64_t shown() const { return m_shown; }

    /// Of these rows. Throws what the database says, and leaves the counts as they were.
    void count(SQLite::Database &project, const RowIds &ids);
    /// A row was ticked or unticked; `isShown` when it is one of those that were counted.
    void note(bool tagged, bool isShown);
    /// Others may have changed ticks.
    void forget() { m_ticked.reset(); }

  private:
    std::int64_t m_all = 0;
    std::int64_t m_shown = 0;
    std::optional<RowIds> m_ticked; ///< ascending
};

} // namespace nv
