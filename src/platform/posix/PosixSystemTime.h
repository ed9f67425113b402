#pragma once

#include "base/Clock.h"
#include "platform/SystemTime.h"

#include <string>
#include <utility>

namespace nv {

/// The zone of this machine, under the name that zone lists know it by ("Eastern Standard Time").
class PosixSystemTime final : public SystemTime {
  public:
    /// An IANA name such as "Europe/Berlin" stands in for the machine's own zone; empty asks the
    /// machine.
    explicit PosixSystemTime(std::string ianaName = {}) : m_ianaName(std::move(ianaName)) {}
    MachineZone zone() const override;

  private:
    std::string m_ianaName;
};

class SystemClock final : public Clock {
  public:
    TimePoint now() const override;
    std::chrono::minutes localOffset() const override;
};

} // namespace nv
