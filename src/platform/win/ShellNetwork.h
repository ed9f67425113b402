#pragma once

#include "platform/Network.h"

namespace nv {

/// The connections as the Windows shell shows them in its folder "Network Connections". They are
/// known by the words of their menus, so this works only in a system language that uses "En&able"
/// and "Disa&ble". The thread must have initialised COM.
class ShellNetwork final : public Network {
  public:
    std::string NetworkConnectionStatus(std::string_view connectionName) const override;
    Switched switchConnection(std::string_view connectionName, ConnectionState state) override;
};

} // namespace nv
