#include "base/TimeLeft.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace nv {

namespace {

// All in seconds but for the fractions.
constexpr double kFirst = 5;            ///< nothing is said before
constexpr double kFirstFraction = 0.02; ///< nor before so much is done
constexpr double kSample = 1;           ///< the recent speed is measured so often
constexpr double kMemory = 30;          ///< what is longer ago hardly counts
constexpr double kStalled = 30;         ///< nothing is said after so long without a step
constexpr double kBackwards = 0.005;    ///< a smaller step back is one of rounding
constexpr int kMostRestarts = 1;        ///< what begins anew more often has no known total
constexpr double kDrift = 0.03; ///< the most that an estimate changes by, of itself a second

constexpr double kMinute = 60;
constexpr double kHour = 60 * kMinute;
constexpr double kDay = 24 * kHour;

std::uint64_t roundedTo(double value, double step) {
    return static_cast<std::uint64_t>(std::lround(value / step) * std::lround(step));
}

std::string minutesText(double seconds) {
    constexpr double kExact = 10; // minutes that are told one by one
    const double minutes = seconds / kMinute;
    const std::uint64_t told = minutes < kExact ? roundedTo(minutes, 1) : roundedTo(minutes, 5);
    return fmt::format("about {} left", counted(std::max<std::uint64_t>(told, 1), "minute"));
}

std::string hoursText(double seconds) {
    constexpr double kHalf = 30; // minutes
    const std::uint64_t minutes = roundedTo(seconds / kMinute, kHalf);
    std::string text = "about " + counted(minutes / 60, "hour");
    if (minutes % 60 > 0)
        text += fmt::format(" {} minutes", minutes % 60);
    return text + " left";
}

} // namespace

std::string timeLeftText(double seconds) {
    constexpr double kFewSeconds = 10;
    constexpr double kLessThanMinute = 45;
    constexpr double kMinutes = 57.5 * kMinute; // what is more is rounded to an hour
    constexpr double kHalfHours = 5.75 * kHour;
    if (seconds < kFewSeconds)
        return "a few seconds left";
    if (seconds < kLessThanMinute)
        return "less than a minute left";
    if (seconds < kMinutes)
        return minutesText(seconds);
    if (seconds < kHalfHours)
        return hoursText(seconds);
    if (seconds < 2 * kDay)
        return fmt::format("about {} left", counted(roundedTo(seconds / kHour, 1), "hour"));
    return "more than 2 days left";
}

void TimeLeft::start(double now) {
    *this = TimeLeft();
    restart(0, now);
}

void TimeLeft::restart(double fraction, double now) {
    m_begin = m_now = m_moved = m_sampleTime = now;
    m_beginFraction = m_fraction = m_sampleFraction = fraction;
    m_recentSpeed = 0;
    m_left.reset();
}

void TimeLeft::advance(double fraction, double now) {
    if (!std::isfinite(fraction) || fraction < 0 || fraction > 1 || now < m_now)
        return;
    if (fraction < m_fraction - kBackwards) {
        ++m_restarts;
        restart(fraction, now);
        return;
    }
    if (fraction > m_fraction)
        m_moved = now;
    m_fraction = std::max(fraction, m_fraction);
    if (const double passed = now - m_sampleTime; passed >= kSample) {
        const double speed = (m_fraction - m_sampleFraction) / passed;
        const double weight = 1 - std::exp(-passed / kMemory);
        m_recentSpeed =
            m_recentSpeed > 0 ? m_recentSpeed + weight * (speed - m_recentSpeed) : speed;
        m_sampleTime = now;
        m_sampleFraction = m_fraction;
    }
    settle(now);
    m_now = now;
}

/// A quarter of the time so far without a step may well be one long file.
bool TimeLeft::isStalled(double now) const {
    return now - m_moved > std::max(kStalled, (now - m_begin) / 4);
}

/// Half of the whole task's speed, which is steady, and half of the recent one, which knows of
/// what came last.
double TimeLeft::speed(double now) const {
    const double overall = (m_fraction - m_beginFraction) / (now - m_begin);
    return m_recentSpeed > 0 ? (overall + m_recentSpeed) / 2 : overall;
}

void TimeLeft::settle(double now) {
    const bool isKnown = m_restarts <= kMostRestarts && now - m_begin >= kFirst &&
                         m_fraction - m_beginFraction >= kFirstFraction && m_fraction < 1 &&
                         !isStalled(now);
    if (!isKnown) {
        m_left.reset();
        return;
    }
    const double measured = (1 - m_fraction) / speed(now);
    if (!m_left) {
        m_left = measured;
        return;
    }
    const double passed = now - m_now;
    const double expected = std::max(0.0, *m_left - passed);
    const double most = std::max(1.0, *m_left) * std::min(0.5, kDrift * passed);
    m_left = std::clamp(measured, std::max(0.0, expected - most), expected + most);
}

std::string TimeLeft::text() const {
    return m_left ? timeLeftText(*m_left) : std::string();
}

} // namespace nv
