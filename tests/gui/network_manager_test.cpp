#include "platform/qt/NetworkManagerNetwork.h"

#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusMetaType>
#include <QProcess>
#include <QTest>

namespace nv {

namespace {

/// What is asked when NetworkManager doesn't know.
struct Otherwise final : Network {
    std::string networkConnectionStatus(std::string_view) const override { return "otherwise"; }
    Switched switchConnection(std::string_view, ConnectionState) override {
        return Switched::noFolder;
    }
};

using Settings = QMap<QString, QVariantMap>;

const QString kService = QStringLiteral("org.freedesktop.NetworkManager");
const QString kPath = QStringLiteral("/org/freedesktop/NetworkManager");
const QString kMock = QStringLiteral("org.freedesktop.DBus.Mock");

} // namespace

/// Against a mock of NetworkManager on a bus of its own.
class NetworkManagerTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();
    void anUnknownNameIsAskedElsewhere();
    void aConnectionGoesDownAndUp();
    void caseMakesNoDifference();
    void withoutTheServiceNothingIsSwitched();

  private:
    QProcess m_daemon;
    QProcess m_mock;
    QString m_address;
    Otherwise m_otherwise;
    QDBusConnection m_bus{QString()};
};

void NetworkManagerTest::initTestCase() {
    qDBusRegisterMetaType<Settings>();
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"),
                    QStringLiteral("--print-address")});
    if (!m_daemon.waitForStarted() || !m_daemon.waitForReadyRead())
        QSKIP("dbus-daemon is not installed");
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    m_bus = QDBusConnection::connectToBus(m_address, QStringLiteral("network-manager-test"));
    QVERIFY(m_bus.isConnected());
}

void NetworkManagerTest::cleanupTestCase() {
    m_daemon.kill();
    m_daemon.waitForFinished();
}

/// One cable, and a connection "Lab Net" that is down.
void NetworkManagerTest::init() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_address);
    m_mock.setProcessEnvironment(environment);
    m_mock.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--template"),
                  QStringLiteral("networkmanager")});
    if (!QTest::qWaitFor(
            [this] {
                return m_bus.interface()->isServiceRegistered(kService) ||
                       m_mock.state() == QProcess::NotRunning;
            },
            10'000) ||
        m_mock.state() == QProcess::NotRunning)
        QSKIP("python3-dbusmock is not installed");
    QDBusInterface mock(kService, kPath, kMock, m_bus);
    const QDBusMessage device = mock.call(QStringLiteral("AddEthernetDevice"),
                                          QStringLiteral("cable"), QStringLiteral("eth0"), 30);
    QVERIFY2(device.type() == QDBusMessage::ReplyMessage, qPrintable(device.errorMessage()));
    const Settings settings = {{QStringLiteral("connection"),
                                {{QStringLiteral("id"), QStringLiteral("Lab Net")},
                                 {QStringLiteral("uuid"), QStringLiteral("0f6a-1")},
                                 {QStringLiteral("type"), QStringLiteral("802-3-ethernet")}}}};
    QDBusInterface list(kService, kPath + QStringLiteral("/Settings"),
                        kService + QStringLiteral(".Settings"), m_bus);
    const QDBusMessage added =
        list.call(QStringLiteral("AddConnection"), QVariant::fromValue(settings));
    QVERIFY2(added.type() == QDBusMessage::ReplyMessage, qPrintable(added.errorMessage()));
}

void NetworkManagerTest::cleanup() {
    m_mock.kill();
    m_mock.waitForFinished();
    QVERIFY(QTest::qWaitFor([this] { return !m_bus.interface()->isServiceRegistered(kService); }));
}

void NetworkManagerTest::anUnknownNameIsAskedElsewhere() {
    NetworkManagerNetwork network(m_otherwise, m_bus);
    QCOMPARE(network.networkConnectionStatus("Local Area Connection"), std::string("otherwise"));
    QCOMPARE(network.switchConnection("Local Area Connection", ConnectionState::disabled),
             Switched::noItem);
}

void NetworkManagerTest::aConnectionGoesDownAndUp() {
    NetworkManagerNetwork network(m_otherwise, m_bus);
    QCOMPARE(network.networkConnectionStatus("Lab Net"), std::string("DISABLED"));
    QCOMPARE(network.switchConnection("Lab Net", ConnectionState::disabled), Switched::alreadySo);
    QCOMPARE(network.switchConnection("Lab Net", ConnectionState::enabled), Switched::done);
    QCOMPARE(network.networkConnectionStatus("Lab Net"), std::string("ENABLED"));
    QCOMPARE(network.switchConnection("Lab Net", ConnectionState::enabled), Switched::alreadySo);
    QCOMPARE(network.switchConnection("Lab Net", ConnectionState::disabled), Switched::done);
    QCOMPARE(network.networkConnectionStatus("Lab Net"), std::string("DISABLED"));
}

void NetworkManagerTest::caseMakesNoDifference() {
    NetworkManagerNetwork network(m_otherwise, m_bus);
    QCOMPARE(network.networkConnectionStatus("lab NET"), std::string("DISABLED"));
}

void NetworkManagerTest::withoutTheServiceNothingIsSwitched() {
    cleanup();
    NetworkManagerNetwork network(m_otherwise, m_bus);
    QCOMPARE(network.networkConnectionStatus("Lab Net"), std::string("otherwise"));
    QCOMPARE(network.switchConnection("Lab Net", ConnectionState::disabled), Switched::noFolder);
}

} // namespace nv

QTEST_GUILESS_MAIN(nv::NetworkManagerTest)
#include "network_manager_test.moc"
