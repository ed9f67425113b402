#pragma once

#include "readers/EvidenceFile.h"

#include <filesystem>
#include <mutex>
#include <set>

namespace nv {

/// Notes which files of the evidence are opened, on whichever thread: so no reader can take values
/// from a file that nobody hashes.
class OpenedFiles final : public EvidenceWatch {
  public:
    int errorBefore(Step step, const std::filesystem::path &path) override;
    /// Counts as opened, since it could be read any time.
    void add(const std::filesystem::path &path);
    /// Those since the last call.
    [[nodiscard]] std::set<std::filesystem::path> take();

  private:
    std::mutex m_lock;
    std::set<std::filesystem::path> m_files;
};

} // namespace nv
