#pragma once

#include "platform/Network.h"

#include <filesystem>

namespace nv {

/// Reads the state of the network interfaces where the kernel shows it. A connection name that is
/// an interface's asks for that one; any other name, as the default is one of another system, asks
/// for all of them but the loopback.
class SysfsNetwork final : public Network {
  public:
    explicit SysfsNetwork(std::filesystem::path interfaces = "/sys/class/net");

    std::string networkConnectionStatus(std::string_view connectionName) const override;
    /// The kernel's files can't switch anything.
    Switched switchConnection(std::string_view, ConnectionState) override {
        return Switched::noFolder;
    }

  private:
    std::filesystem::path m_interfaces;
};

} // namespace nv
