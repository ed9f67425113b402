#pragma once

#include <string>

namespace nv {

/// What the examiner's machine says of its own time zone.
struct MachineZone {
    int biasMinutes = 0;      ///< standard time, west of Greenwich positive
    std::string standardName; ///< such as "Eastern Standard Time"; empty when the system has none
};

/// The seam to the operating system's zone; the present offset comes from nv::Clock.
class SystemTime {
  public:
    virtual ~SystemTime() = default;
    virtual MachineZone zone() const = 0;
};

} // namespace nv
