#pragma once

#include "readers/EvidenceFile.h"

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <mutex>

namespace nv::test {

/// Counts the steps in which evidence is listed, opened and read, and lets one of them fail as a
/// disk with a bad sector does.
class FailingReads final : public EvidenceWatch {
  public:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    /// `failing` counts from 0.
    explicit FailingReads(std::size_t failing = kNone) : m_failing(failing) {}

    int errorBefore(Step step, const std::filesystem::path &path) override {
        const std::lock_guard guard(m_lock); // folders are hashed on several threads
        if (steps++ != m_failing)
            return 0;
        failed = path;
        failedStep = step;
        return EIO;
    }

    std::size_t steps = 0;
    std::filesystem::path failed; ///< empty as long as none has
    Step failedStep = Step::list;

  private:
    std::size_t m_failing;
    std::mutex m_lock;
};

} // namespace nv::test
