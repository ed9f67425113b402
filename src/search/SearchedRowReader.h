#pragma once

#include "db/sql/KeyWalk.h"
#include "db/sql/RowWalk.h"
#include "search/SearchedRow.h"

#include <SQLiteCpp/Statement.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// Which texts of a row are wanted: pages and headers take most of the time.
enum class RowTexts : std::uint8_t { all, values };

/// The facts of rows, asked for by ascending ids.
class FactLines {
  public:
    explicit FactLines(SQLite::Database &project);
    /// Gives the row a line for each of its facts, but for those that tell where the record lies:
    /// the name of a table is no finding. False when they can't be read.
    bool fill(SearchedRow &row);

  private:
    bool step();
    void addLine(SearchedRow &row);

    std::optional<SQLite::Statement> m_rows; ///< none in a project of an earlier build
    bool m_hasRow = false;
    bool m_isDamaged = false;
    std::int64_t m_id = -1;    ///< of the row in hand
    std::int64_t m_asked = -1; ///< all rows before it were passed
};

/// Reads the rows of a project, one after the other, as they are searched. What damage hides is
/// passed over and remembered. Must be gone before the connection is closed.
class SearchedRowReader {
  public:
    explicit SearchedRowReader(SQLite::Database &project, RowTexts which = RowTexts::all);

    /// Goes to the next row. Throws what the database says of anything but damage.
    bool next();
    /// Goes to a row, which lies behind the one before. False when it isn't there or can't be read.
    bool goTo(std::int32_t id);
    const SearchedRow &row() const { return m_row; }

    /// How far a walk by next() is, 0 to 1.
    double fraction() const;
    /// Rows that couldn't be read, or not whole.
    const std::set<std::int32_t> &unread() const { return m_unread; }
    /// Rows of other programs whose ids no list can hold.
    std::int64_t outside() const { return m_outside; }

  private:
    void take();

    SQLite::Statement m_rows;
    FactLines m_facts;
    SearchedRow m_row;
    std::set<std::int32_t> m_unread;
    std::int64_t m_outside = 0;
    std::int64_t m_greatest = 0;
    std::optional<KeyWalk> m_walk; ///< of next()
    std::optional<RowWalk> m_look; ///< of goTo()
};

} // namespace nv
