#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

enum class KeyStep { Row, End, Stopped };

/// Goes over rows of table URLs and on after those that damage hides. The statement gives urlID
/// first, in its order, from the one in its parameter 1 on. It must outlive this.
class KeyWalk {
  public:
    /// `lost` is told each number up to the greatest that lies where nothing can be read; false
    /// from it stops the walk.
    KeyWalk(SQLite::Database &database, SQLite::Statement &rows,
            std::function<bool(std::int64_t)> lost);
    ~KeyWalk();
    KeyWalk(const KeyWalk &) = delete;
    KeyWalk &operator=(const KeyWalk &) = delete;

    /// Throws what the database says of anything but damage, and when nothing tells how many rows
    /// there were.
    KeyStep next();

  private:
    std::int64_t greatest();

    SQLite::Database &m_database;
    SQLite::Statement &m_rows;
    std::function<bool(std::int64_t)> m_lost;
    std::optional<std::int64_t> m_greatest;
    std::int64_t m_from = 1; ///< the least number that wasn't met yet
    bool m_isSet = false;    ///< the statement goes on from there
};

} // namespace nv
