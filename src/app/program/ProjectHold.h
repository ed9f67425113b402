#pragma once

#include "app/program/Front.h"
#include "base/Clock.h"
#include "base/FileHold.h"

#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// Tells others that a project is open for writing, and keeps them from it while it lives: a file
/// "-open" beside the project, locked, says who has it since when. A window holds its project
/// alone, since it writes back what it keeps in memory (zone, columns, notes that are being typed).
/// Command lines hold it together: each change of theirs is the database's to order.
class ProjectHold {
  public:
    /// Throws StorageFailure that says who has it. Where nothing can be locked, as in a folder that
    /// can't be written, nobody is kept from anything.
    ProjectHold(const std::filesystem::path &project, Front front, const Clock &clock);
    ~ProjectHold();
    ProjectHold(const ProjectHold &) = delete;
    ProjectHold &operator=(const ProjectHold &) = delete;

  private:
    std::filesystem::path m_file;
    FileHold m_hold;
};

/// Who keeps a program of that kind from writing to the project, and since when; nothing when
/// nobody does.
std::optional<std::string> holderOf(const std::filesystem::path &project, Front front);

} // namespace nv
