#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// Lets the index beside a project hold on while the program writes what no search looks at: its
/// notes in the trail. Made before such a write, when nothing is open in the
/// connection; keep() after it moves the stamp of an index that held just before to the project as
/// it is now, unless anybody else has written meanwhile. Where it can't be sure it does nothing,
/// and the next search compares all rows. Throws nothing.
class IndexMark {
  public:
    /// `project` writes, and must outlive this.
    explicit IndexMark(SQLite::Database &project);
    void keep();

  private:
    void moveOn();

    SQLite::Database &m_project;
    std::filesystem::path m_file;
    std::string m_stamp;                   ///< of the index; empty when it doesn't hold
    std::optional<std::int64_t> m_version; ///< of the project, counted up by others' writes
};

} // namespace nv
