#include "ui/options/SafetyTab.h"

#include "platform/qt/QtText.h"
#include "ui/options/OptionsWidgets.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace nv {

namespace {

constexpr TextKey kDefaultConnection = "NetworkConnectionName";

} // namespace

SafetyTab::SafetyTab(Program &program, const Options &start, SettingBoxes &settings)
    : m_program(program) {
    auto *column = new QVBoxLayout(this);
    for (const FlagKey &key : {FlagKey("DisableScriptTags"), FlagKey("VerifyFileSignatures"),
                               FlagKey("DisableFileVersionCheck")})
        settings.add(*column, key.row());
    column->addWidget(newConnection(start.networkConnectionName));
    column->addStretch(1);
    showConnection();
}

QGroupBox *SafetyTab::newConnection(const std::string &inForce) {
    auto *frame = new QGroupBox(tr("Network connection"));
    auto *grid = new QGridLayout(frame);
    m_connection = new QButtonGroup(this);
    auto *usual =
        named(new QRadioButton(toQt(kDefaultConnection->byDefault)), "optLocalAreaConnection0");
    auto *other = named(new QRadioButton(tr("&Other:")), "optLocalAreaConnection1");
    m_connection->addButton(usual, 0);
    m_connection->addButton(other, 1);
    (inForce == kDefaultConnection->byDefault ? usual : other)->setChecked(true);
    usual->setToolTip(tr("The connection that is taken when no other one is named"));
    other->setToolTip(tr("A connection of another name"));
    m_connectionName = named(new QLineEdit(toQt(inForce)), "txtLocalAreaConnection");
    m_connectionName->setAccessibleName(tr("Name of the connection"));
    m_connectionName->setToolTip(tr("As the system names it, such as eth0"));
    m_switch = named(new QPushButton, "btnLocalAreaConnection");
    m_switch->setAutoDefault(false);
    m_switch->setToolTip(tr("Cut the network before pages are looked at; it happens at once"));
    m_status = named(new QLabel, "labConnectionStatus");
    grid->addWidget(usual, 0, 0, 1, 2);
    grid->addWidget(other, 1, 0);
    grid->addWidget(m_connectionName, 1, 1);
    grid->addWidget(m_switch, 2, 0);
    grid->addWidget(m_status, 2, 1);
    connect(m_connection, &QButtonGroup::idClicked, this, &SafetyTab::showConnection);
    connect(m_connectionName, &QLineEdit::editingFinished, this, &SafetyTab::showConnection);
    connect(m_switch, &QPushButton::clicked, this, &SafetyTab::btnLocalAreaConnectionClick);
    return frame;
}

std::string SafetyTab::connectionName() const {
    const std::string name = fromQt(m_connectionName->text().trimmed());
    return m_connection->checkedId() == 0 || name.empty()
               ? std::string(kDefaultConnection->byDefault)
               : name;
}

void SafetyTab::showConnection() {
    m_connectionName->setEnabled(m_connection->checkedId() == 1);
    const std::string status = connectionStatus(m_program, connectionName());
    m_switch->setText(status == "DISABLED" ? tr("Enable") : tr("Disable"));
    m_switch->setEnabled(!status.empty());
    m_status->setText(status.empty()        ? tr("Network Connection Not Found")
                      : status == "ENABLED" ? tr("The connection is up.")
                                            : tr("The connection is down."));
}

void SafetyTab::btnLocalAreaConnectionClick() {
    const std::string before = connectionStatus(m_program, connectionName());
    const std::string after = switchConnectionOver(m_program, connectionName());
    if (after != before)
        m_offline = after == "DISABLED";
    showConnection();
}

void SafetyTab::putInto(Options &options) const {
    options.networkConnectionName = connectionName();
    options.switchedOffline = m_offline;
}

} // namespace nv
