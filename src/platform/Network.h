#pragma once

#include <string>
#include <string_view>

namespace nv {

enum class ConnectionState { enabled, disabled };

/// How a request to switch a connection ended.
enum class Switched {
    done,      ///< the system has taken the request
    alreadySo, ///< nothing was asked of the system
    noFolder,  ///< the system has no list of connections
    noItem,    ///< the list has no connection of that name
};

/// The network connections of the system. `connectionName` is the setting "NetworkConnectionName";
/// case makes no difference.
class Network {
  public:
    virtual ~Network() = default;
    /// "ENABLED", "DISABLED", or empty when no such connection is found or the system can't tell.
    virtual std::string networkConnectionStatus(std::string_view connectionName) const = 0;
    /// Throws std::runtime_error with the system's reason when it refuses.
    virtual Switched switchConnection(std::string_view connectionName, ConnectionState state) = 0;
};

} // namespace nv
