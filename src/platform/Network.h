#pragma once

#include <string>
#include <string_view>

namespace nv {

/// "ENABLED", "DISABLED", or empty when no such connection is found or the system can't tell.
class Network {
  public:
    virtual ~Network() = default;
    /// `connectionName` is the setting "NetworkConnectionName".
    virtual std::string NetworkConnectionStatus(std::string_view connectionName) const = 0;
};

} // namespace nv
