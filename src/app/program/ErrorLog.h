#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// The log of trapped failures, a text file that is opened and closed for each entry and whose
/// dates are the machine's local time. Support staff read it by its fixed layout.
class ErrorLog final : public FailureLog {
  public:
    ErrorLog(std::filesystem::path path, const Clock &clock);

    void write(const Failure &failure) override;
    /// Begins anew: the window's log holds only the current run, and from its opening only that of
    /// a project.
    void remove();
    /// Goes on after what earlier commands left. The first entry of this one stands below a line
    /// that names it and its time. A log of more than kMostBytes is turned over: it goes to
    /// olderPath(), and what lay there is lost.
    void goOnFor(std::string_view command);
    static constexpr std::uintmax_t kMostBytes = std::uintmax_t{1} << 20;
    std::filesystem::path olderPath() const { return m_path.native() + ".old"; }
    const std::filesystem::path &path() const { return m_path; }

  private:
    std::string now() const;
    void turnOver();

    std::filesystem::path m_path;
    const Clock &m_clock;
    std::string m_heading; ///< of the command; empty for the window
    bool m_isHeaded = false;
};

} // namespace nv
