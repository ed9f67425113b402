#pragma once

#include <chrono>

namespace nv {

/// The machine's clock. Tests set their own, so that nothing depends on the day or the zone.
class Clock {
  public:
    using TimePoint = std::chrono::system_clock::time_point;

    virtual ~Clock() = default;
    virtual TimePoint now() const = 0;
    /// Minutes that the machine's local time is ahead of UTC at this moment, daylight included.
    virtual std::chrono::minutes localOffset() const = 0;
};

} // namespace nv
