#pragma once

#include <optional>
#include <string>

namespace nv {

/// How long a task will still take, from what it has done so far. It says nothing as long as it
/// can't know: at the beginning, while nothing moves, when the total is unknown or the task begins
/// anew more than once. What it says moves slowly, so that one slow file doesn't frighten anybody.
class TimeLeft {
  public:
    /// All times are seconds of one clock that counts up steadily.
    void start(double now);
    /// `fraction` of the task done, 0 to 1. Anything else is passed over.
    void advance(double fraction, double now);
    /// Nothing while it isn't known. Never negative.
    std::optional<double> seconds() const { return m_left; }
    /// "about 3 minutes left"; empty while it isn't known.
    std::string text() const;

  private:
    void restart(double fraction, double now);
    bool isStalled(double now) const;
    /// Fractions a second.
    double speed(double now) const;
    void settle(double now);

    double m_begin = 0;         ///< when it began, for the last time
    double m_beginFraction = 0; ///< how much was done by then
    double m_now = 0;           ///< of the last call
    double m_fraction = 0;
    double m_moved = 0;       ///< when the fraction grew last
    double m_recentSpeed = 0; ///< of the last half minute or so, 0 when nothing was measured
    double m_sampleTime = 0;
    double m_sampleFraction = 0;
    int m_restarts = 0;
    std::optional<double> m_left;
};

/// "a few seconds left", "about 3 minutes left", "about 1 hour 30 minutes left": the longer, the
/// rounder.
std::string timeLeftText(double seconds);

} // namespace nv
