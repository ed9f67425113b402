#pragma once

#include "base/Files.h"

#include <filesystem>
#include <memory>

namespace SQLite {
class Database;
}

namespace nv {

/// Keeps other programs from writing to a closed project while it is read and replaced. What a
/// crash left beside the file is brought into it first.
class ProjectLock {
  public:
    /// Throws StorageFailure when somebody has the project open or it can't be written.
    explicit ProjectLock(const std::filesystem::path &project);
    ~ProjectLock();
    ProjectLock(const ProjectLock &) = delete;
    ProjectLock &operator=(const ProjectLock &) = delete;

    /// The file's bytes. Use nothing else to read them: the system drops a process's locks when
    /// any of its descriptors of the file is closed.
    const FileReader &bytes() const { return *m_bytes; }

  private:
    std::unique_ptr<SQLite::Database> m_lock;
    std::unique_ptr<FileReader> m_bytes; ///< goes before the lock does
};

} // namespace nv
