#include "ui/parts/NetworkPart.h"

#include "app/messages/NetworkMessages.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"

#include <QAction>
#include <QMenu>

namespace nv {

NetworkPart::NetworkPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.network, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.toggleNetwork()", [this] { toggle(); }); });
    // The menus are made before the parts: the state is looked up each time theirs opens.
    if (auto *tools = bench.window.findChild<QMenu *>(QStringLiteral("menuTools")))
        connect(tools, &QMenu::aboutToShow, this, &NetworkPart::showState);
}

void NetworkPart::toggle() {
    Program &program = m_bench.program;
    const bool isUp = networkConnectionStatus(program) == "ENABLED";
    const ConnectionState wanted = isUp ? ConnectionState::disabled : ConnectionState::enabled;
    const std::string &name = program.state.networkConnectionName;
    if (m_bench.examiner().ask(messages::switchNetwork(wanted, name)) != Answer::Yes)
        return;
    const bool done = toggleNetworkConnection(program, wanted, Quiet::no);
    if (done && isUp)
        m_bench.examiner().tell(messages::networkDisabled());
    showState();
}

void NetworkPart::showState() {
    const std::string status = networkConnectionStatus(m_bench.program);
    QAction &action = *m_bench.actions.network;
    const bool isDown = status == "DISABLED";
    action.setText(isDown ? tr("Enable &Network") : tr("Disable &Network"));
    action.setIconText(tr("Network"));
    action.setIcon(icon(isDown ? "network-off" : "network"));
    const QString name = toQt(m_bench.program.state.networkConnectionName);
    action.setToolTip(status.empty() ? tr("Network Connection Not Found")
                                     : tr("The network connection \"%1\"").arg(name));
}

} // namespace nv
