#pragma once

#include "app/program/Front.h"
#include "base/FileHold.h"
#include "base/TaskMonitor.h"

#include <filesystem>

namespace nv {

/// A folder of this process's own below a Temp folder. What a window leaves in it, such as a report
/// that isn't published, is there until another window starts. A marked file in it is locked while
/// the process lives, so that others know which folders are given up.
class ScratchFolder {
  public:
    /// Throws StorageFailure when it can't be made.
    ScratchFolder(const std::filesystem::path &tempFolder, Front owner);

    const std::filesystem::path &path() const { return m_path; }
    std::filesystem::path tempFolder() const { return m_path.parent_path(); }
    /// With all that is in it; what can't be removed stays for the next start.
    void remove() const;

  private:
    std::filesystem::path m_path;
    FileHold m_mark;
};

/// Removes the scratch folders below `tempFolder` whose processes are gone, and nothing else: those
/// of both kinds for a window, those of command lines for a command line. Links in them are
/// removed, not followed. Throws std::filesystem::filesystem_error.
void emptyTempFolder(const std::filesystem::path &tempFolder, Front whoStarts, TaskMonitor &task);

} // namespace nv
