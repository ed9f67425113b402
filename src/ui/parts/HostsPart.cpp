#include "ui/parts/HostsPart.h"

#include "app/settings/Settings.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/frame/StatusSign.h"
#include "ui/gallery/GalleryTab.h"
#include "ui/limits/HostsPane.h"
#include "views/rows/CellText.h"

#include <QAction>
#include <QLabel>
#include <QSplitter>
#include <SQLiteCpp/Database.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::int64_t kNotListed = -1;

} // namespace

HostsPart::HostsPart(Workbench &bench)
    : m_bench(bench), m_pane(new HostsPane), m_gallery(bench.dataTabs->findChild<GalleryTab *>()),
      m_sign(newStatusSign(bench.window, "labHostFilter")) {
    bench.dataArea->insertWidget(0, m_pane);
    bench.dataArea->setStretchFactor(0, 0);
    bench.dataArea->setStretchFactor(1, 1);
    bench.dataArea->setSizes({280, 1000});
    bench.actions.hosts->setChecked(readFlag(bench.program.settings, "ShowHosts"));
    m_pane->setVisible(bench.actions.hosts->isChecked());
    connectPane();
    connect(bench.table, &TableTab::hostEntered, this, &HostsPart::takeEntered);
    connect(bench.table, &TableTab::statusChanged, this, [this] {
        fillIfStale();
        showSign();
    });
    // The table is loaded by it too: the gallery shows no others than its rows.
    connect(m_gallery, &GalleryTab::hostEntered, this, [this](const QString &host) {
        takeEntered(host);
        m_bench.reload();
    });
    connect(bench.dataTabs, &QTabWidget::currentChanged, this, &HostsPart::reloadStaleTable);
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_pane->setHosts({}, Walk::Finished);
        m_listedTo = kNotListed;
        m_sign->hide();
    });
    bench.limits.add(*this);
}

QVariant HostsPart::limit() const {
    const UrlTable *table = m_bench.table->table();
    return table && table->choice.filterByHostEnabled
               ? QVariant(toQt(table->choice.filterByHostValue))
               : QVariant();
}

std::vector<LimitChip> HostsPart::chips() const {
    const QVariant host = limit();
    if (!host.isValid())
        return {};
    return {{tr("Host: %1").arg(toQt(displayText(fromQt(host.toString())))), {}}};
}

void HostsPart::connectPane() {
    connect(m_bench.actions.hosts, &QAction::toggled, this, &HostsPart::showPane);
    // Comes before the rows are loaded anew, which then fills the list.
    connect(m_bench.actions.refresh, &QAction::triggered, this,
            [this] { m_listedTo = kNotListed; });
    connect(m_pane, &HostsPane::hostChosen, this, &HostsPart::choose);
    connect(m_pane, &HostsPane::unticked, this, &HostsPart::untick);
    connect(m_pane, &HostsPane::sortChosen, this, &HostsPart::fill);
}

void HostsPart::showPane(bool shown) {
    m_pane->setVisible(shown);
    rememberFlag(m_bench.program.settings, "ShowHosts", shown);
    fillIfStale();
}

/// Records only ever come in at the end, so a new highest one is what brings new hosts.
void HostsPart::fillIfStale() {
    if (!m_bench.isProjectOpen() || m_pane->isHidden())
        return;
    const std::int64_t atLeast = std::max(m_listedTo, std::int64_t{0}); // so that it lists once
    const std::int64_t last = trapped(m_bench.program.log, Severity::Low, "MainForm.fillHosts()",
                                      kNotSerious, atLeast, [this] {
                                          return m_bench.project()
                                              .execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs")
                                              .getInt64();
                                      });
    if (last == m_listedTo)
        return;
    m_listedTo = last;
    fill();
}

void HostsPart::fill() {
    if (!m_bench.isProjectOpen())
        return;
    std::vector<HostRow> hosts;
    UnreadRows unread;
    Walk listing = Walk::Cancelled; // which a failure leaves as it is
    m_bench.runTask({"LISTING HOSTS", "", "", ""}, [&](TaskMonitor &task) {
        listing = listHosts(m_bench.project(), m_pane->sort(), task, hosts, unread);
    });
    m_pane->setHosts(std::move(hosts), listing, unread);
}

/// Another row of the list. Without the tick the filter goes off, and what is shown stays until
/// the examiner asks for it.
void HostsPart::choose(const std::string &host) {
    ProgramState &state = m_bench.program.state;
    const bool ticked = m_pane->isTicked();
    state.filterByHostEnabled = ticked;
    if (ticked)
        state.filterByHostValue = host;
    showFilter();
    if (ticked)
        m_bench.reload();
}

void HostsPart::untick() {
    m_bench.program.state.filterByHostEnabled = false;
    showFilter();
}

/// From a box, whose tab loads itself.
void HostsPart::takeEntered(const QString &host) {
    ProgramState &state = m_bench.program.state;
    state.filterByHostEnabled = !host.isEmpty();
    state.filterByHostValue = fromQt(host);
    if (state.filterByHostEnabled)
        m_pane->setTicked(true);
    else
        m_pane->forgetChoice();
    showFilter();
}

std::string HostsPart::hostInForce() const {
    const ProgramState &state = m_bench.program.state;
    return state.filterByHostEnabled ? state.filterByHostValue : std::string();
}

void HostsPart::showFilter() {
    const QString host = toQt(hostInForce());
    m_bench.table->setHost(host);
    m_gallery->setHost(host);
    showSign();
}

/// A host that was chosen before another tab holds for the table too, once it is looked at.
void HostsPart::reloadStaleTable() {
    UrlTable *table = m_bench.table->table();
    if (table && m_bench.dataTabs->currentWidget() == m_bench.table &&
        table->choice.filterByHostValue != hostInForce())
        m_bench.reload();
}

/// Tells what the rows shown are filtered by, which isn't always what the next load will be.
void HostsPart::showSign() {
    const UrlTable *table = m_bench.table->table();
    const bool on = table && table->choice.filterByHostEnabled;
    m_sign->setVisible(on);
    if (!on)
        return;
    const std::string &host = table->choice.filterByHostValue;
    constexpr int kWidest = 320; // pixels: a host of 255 characters must not widen the window
    const QString whole = toQt(displayText(host));
    const QString text = m_sign->fontMetrics().elidedText(whole, Qt::ElideMiddle, kWidest);
    m_sign->setToolTip(Qt::convertFromPlainText(tr("Only hosts that contain %1").arg(whole)));
    m_sign->setText(host == hostInForce() ? tr("Host: %1").arg(text)
                                          : tr("Host: %1, until the next refresh").arg(text));
}

} // namespace nv
