#pragma once

#include "platform/ChildProcess.h"

#include <filesystem>
#include <string>

namespace nv {

/// A folder for all that a drawing process and the web engine write, removed at the end. Throws
/// StorageFailure when it can't be made.
class DrawFolder {
  public:
    explicit DrawFolder(const std::filesystem::path &scratch);
    ~DrawFolder();
    DrawFolder(const DrawFolder &) = delete;
    DrawFolder &operator=(const DrawFolder &) = delete;

    const std::filesystem::path &path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

/// The command that runs `program` for the jobs of a file or a pipe with a name.
ChildCommand drawCommand(const std::filesystem::path &program, const DrawFolder &folder,
                         const std::filesystem::path &jobs);

/// Why a process drew nothing at all.
std::string whyNothingWasDrawn(const ChildResult &result);
/// What ended the drawing of the job at hand.
std::string whatEndedTheDrawing(const ChildResult &result);

} // namespace nv
