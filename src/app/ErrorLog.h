#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"

#include <filesystem>

namespace nv {

/// The log of trapped failures, a text file that is opened and closed for each entry and whose
/// dates are the machine's local time. Support staff read it by its fixed layout.
class ErrorLog final : public FailureLog {
  public:
    ErrorLog(std::filesystem::path path, const Clock &clock);

    void write(const Failure &failure) override;
    /// Begins anew: the log holds only the current run, and from its opening only that of a
    /// project.
    void remove();
    const std::filesystem::path &path() const { return m_path; }

  private:
    std::filesystem::path m_path;
    const Clock &m_clock;
};

} // namespace nv
