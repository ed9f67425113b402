#pragma once

#include "platform/Drawing.h"

#include <filesystem>
#include <optional>

namespace nv {

/// Has norvelane-draw do the drawing, some hundred jobs a process. What crashes or holds up such a
/// process costs one job and its start anew.
/// Throws StorageFailure when its scratch folder or the targets can't be written.
class DrawProgram final : public Drawing {
  public:
    /// `program` is usually companionProgram("norvelane-draw"); without one each job fails and says
    /// so. In `scratch`, which must exist, the program keeps a folder while it draws.
    DrawProgram(std::optional<std::filesystem::path> program, std::filesystem::path scratch);

    void draw(std::span<const DrawJob> jobs, std::chrono::seconds timeout,
              const std::function<bool(std::size_t job, const Drawn &)> &take,
              const std::function<bool()> &goOn) override;

    /// What starting the program may take besides the drawing.
    std::chrono::seconds longestStart{15};

  private:
    std::optional<std::filesystem::path> m_program;
    std::filesystem::path m_scratch;
};

} // namespace nv
