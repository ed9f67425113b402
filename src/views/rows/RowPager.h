#pragma once

#include "base/FailureLog.h"
#include "base/Trap.h"
#include "views/rows/IdLoader.h"
#include "views/rows/UnreadRows.h"
#include "views/rows/UrlRow.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <vector>

namespace nv {

/// The rows that are looked at: read a page at a time by their keys, the least recently used page
/// goes first. Owns neither the list of keys nor the connection.
class RowPager {
  public:
    static constexpr std::size_t kPageRows = 64;
    static constexpr std::size_t kPages = 32;

    RowPager(SQLite::Database &database, FailureLog &log, const RowIds &ids);
    ~RowPager();
    RowPager(const RowPager &) = delete;
    RowPager &operator=(const RowPager &) = delete;

    /// The columns that rows are read with. Pages are read anew when one comes that they don't
    /// hold.
    void setColumns(std::span<const UrlColumn> columns);
    /// Adds a column that somebody asks for although it isn't shown.
    void need(UrlColumn column);
    /// Throws std::runtime_error when no row can be read with these columns: the project lacks one.
    void prepare();
    /// The row at the 0-based place of the list; null beyond its end. Valid until the next call.
    /// One that can't be read is logged and has no cells; the others are none the worse for it.
    const UrlRow *row(std::size_t place);
    /// Those that were asked for since forget() and couldn't be read.
    const UnreadRows &unread() const { return m_unread; }
    void noteUnread(UrlId id) { nv::noteUnread(m_unread, id); }
    /// The row only when its page is at hand: doesn't touch the database.
    const UrlRow *known(std::size_t place) const;
    void noteTagged(UrlId id, bool tagged);
    /// Reads everything anew. Call when the list or the project's rows have changed.
    void forget();
    std::size_t pagesRead() const { return m_pagesRead; }

  private:
    struct Page {
        std::size_t number = 0;
        std::vector<UrlRow> rows;
    };
    Page readPage(std::size_t number);
    void dropPages();

    SQLite::Database &m_database;
    FailureLog &m_log;
    const RowIds &m_ids;
    std::vector<UrlColumn> m_columns;
    std::array<bool, kTableColumnCount> m_held{};
    std::unique_ptr<RowReader> m_reader;
    std::list<Page> m_pages; ///< the most recently used first
    std::size_t m_pagesRead = 0;
    UnreadRows m_unread;
    RecordTrap m_trap;
};

} // namespace nv
