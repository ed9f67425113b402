#include "platform/qt/NetworkManagerNetwork.h"

#include "platform/qt/QtText.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>

#include <optional>
#include <stdexcept>

namespace nv {

namespace {

const QString kService = QStringLiteral("org.freedesktop.NetworkManager");
const QString kManagerPath = QStringLiteral("/org/freedesktop/NetworkManager");
const QString kSettingsPath = QStringLiteral("/org/freedesktop/NetworkManager/Settings");
const QString kSettings = kService + QStringLiteral(".Settings");
const QString kConnection = kSettings + QStringLiteral(".Connection");
const QString kActive = kService + QStringLiteral(".Connection.Active");
constexpr int kTimeout = 10'000; // milliseconds: a switch may ask for a password

using Settings = QMap<QString, QVariantMap>; ///< a connection's, by section and key

/// An object of the service.
struct Remote final : QDBusInterface {
    Remote(const QDBusConnection &bus, const QString &path, const QString &interface)
        : QDBusInterface(kService, path, interface, bus) {
        setTimeout(kTimeout);
    }
};

bool runs(const QDBusConnection &bus) {
    return bus.isConnected() && bus.interface()->isServiceRegistered(kService);
}

QString nameOf(const QDBusConnection &bus, const QDBusObjectPath &connection) {
    qDBusRegisterMetaType<Settings>();
    const QDBusReply<Settings> settings =
        Remote(bus, connection.path(), kConnection).call(QStringLiteral("GetSettings"));
    return settings.value()
        .value(QStringLiteral("connection"))
        .value(QStringLiteral("id"))
        .toString();
}

std::optional<QDBusObjectPath> connectionNamed(const QDBusConnection &bus, const QString &name) {
    const QDBusReply<QList<QDBusObjectPath>> all =
        Remote(bus, kSettingsPath, kSettings).call(QStringLiteral("ListConnections"));
    for (const QDBusObjectPath &connection : all.value())
        if (nameOf(bus, connection).toLower() == name.toLower())
            return connection;
    return std::nullopt;
}

/// The way in which a connection is up; nothing when it is down.
std::optional<QDBusObjectPath> activeOf(const QDBusConnection &bus,
                                        const QDBusObjectPath &connection) {
    const Remote manager(bus, kManagerPath, kService);
    const auto all = qdbus_cast<QList<QDBusObjectPath>>(manager.property("ActiveConnections"));
    for (const QDBusObjectPath &active : all) {
        const Remote found(bus, active.path(), kActive);
        if (found.property("Connection").value<QDBusObjectPath>() == connection)
            return active;
    }
    return std::nullopt;
}

void check(const QDBusMessage &reply) {
    if (reply.type() == QDBusMessage::ErrorMessage)
        throw std::runtime_error(fromQt(reply.errorMessage()));
}

} // namespace

std::string NetworkManagerNetwork::networkConnectionStatus(std::string_view connectionName) const {
    const auto connection =
        runs(m_bus) ? connectionNamed(m_bus, toQt(connectionName)) : std::nullopt;
    if (!connection)
        return m_otherwise.networkConnectionStatus(connectionName);
    return activeOf(m_bus, *connection) ? "ENABLED" : "DISABLED";
}

Switched NetworkManagerNetwork::switchConnection(std::string_view connectionName,
                                                 ConnectionState state) {
    if (!runs(m_bus))
        return Switched::noFolder;
    const auto connection = connectionNamed(m_bus, toQt(connectionName));
    if (!connection)
        return Switched::noItem;
    const auto active = activeOf(m_bus, *connection);
    if (active.has_value() == (state == ConnectionState::enabled))
        return Switched::alreadySo;
    Remote manager(m_bus, kManagerPath, kService);
    const QVariant any = QVariant::fromValue(QDBusObjectPath(QStringLiteral("/")));
    if (active)
        check(manager.call(QStringLiteral("DeactivateConnection"), QVariant::fromValue(*active)));
    else
        check(manager.call(QStringLiteral("ActivateConnection"), QVariant::fromValue(*connection),
                           any, any));
    return Switched::done;
}

} // namespace nv
