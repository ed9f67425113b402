#pragma once

#include "platform/Network.h"

#include <QDBusConnection>

namespace nv {

/// The connections of NetworkManager, over D-Bus. Where it doesn't run, or has no connection of
/// that name, another source tells the state.
class NetworkManagerNetwork final : public Network {
  public:
    /// `otherwise` must outlive it. `bus` is the system's but in tests.
    explicit NetworkManagerNetwork(Network &otherwise,
                                   QDBusConnection bus = QDBusConnection::systemBus())
        : m_bus(std::move(bus)), m_otherwise(otherwise) {}

    std::string networkConnectionStatus(std::string_view connectionName) const override;
    Switched switchConnection(std::string_view connectionName, ConnectionState state) override;

  private:
    QDBusConnection m_bus;
    Network &m_otherwise;
};

} // namespace nv
