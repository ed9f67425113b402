#include "ui/limits/HostsPane.h"

#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "ui/widgets/GridCopy.h"
#include "ui/widgets/TickHeader.h"
#include "views/rows/CellText.h"

#include <QAbstractScrollArea>
#include <QActionGroup>
#include <QBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QTableView>
#include <QTextDocument>
#include <QToolButton>

namespace nv {

namespace {

enum Column { kHost, kVisits, kRecords, kColumns };

} // namespace

void HostModel::setHosts(std::vector<HostRow> hosts) {
    beginResetModel();
    m_hosts = std::move(hosts);
    endResetModel();
}

const HostRow *HostModel::at(const QModelIndex &index) const {
    return checkIndex(index, CheckIndexOption::IndexIsValid)
               ? &m_hosts.at(static_cast<std::size_t>(index.row()))
               : nullptr;
}

int HostModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_hosts.size());
}

int HostModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QVariant HostModel::data(const QModelIndex &index, int role) const {
    const HostRow *host = at(index);
    if (!host)
        return {};
    if (role == Qt::TextAlignmentRole && index.column() != kHost)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    const bool isNone = host->host.empty() && index.column() == kHost;
    if (role == Qt::ToolTipRole && isNone)
        return tr("Records without a host. No filter finds just these: it shows all records");
    const bool isText =
        role == Qt::DisplayRole || (role == Qt::ToolTipRole && index.column() == kHost);
    if (!isText)
        return {};
    if (isNone)
        return tr("(no host)");
    if (index.column() == kHost) // the tooltip holds it where the column is too narrow
        return toQt(displayText(host->host));
    return QLocale().toString(index.column() == kVisits ? host->visits : host->records);
}

QVariant HostModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::ToolTipRole)
        return section == kHost ? tr("Ticked: going to a host shows its records only") : QString();
    if (role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return section == kHost ? tr("Host") : section == kVisits ? tr("Visits") : tr("Records");
}

HostsPane::HostsPane(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("HostsPane"));
    m_header = new TickHeader;
    m_header->setObjectName(QStringLiteral("HostHeader"));
    m_header->setAccessibleName(tr("Headings of the hosts"));
    m_header->setSectionsClickable(true);
    m_header->setTicked(true); // a click on a host shows it
    m_grid = new QTableView;
    m_grid->setObjectName(QStringLiteral("HostGrid"));
    m_grid->setAccessibleName(tr("Hosts"));
    m_grid->setHorizontalHeader(m_header);
    m_grid->setModel(&m_model);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setAlternatingRowColors(true);
    m_grid->setShowGrid(false);
    m_grid->setWordWrap(false);
    m_grid->setTabKeyNavigation(false);
    m_grid->verticalHeader()->hide();
    m_grid->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    m_header->setSectionResizeMode(kHost, QHeaderView::Stretch);
    m_header->setSectionResizeMode(kVisits, QHeaderView::ResizeToContents);
    m_header->setSectionResizeMode(kRecords, QHeaderView::ResizeToContents);
    m_header->setResizeContentsPrecision(200); // rows: a long list needn't be measured whole
    // Names of hosts are what the list is for: it never opens too narrow to read them.
    constexpr int kNarrowest = 40; // characters
    setMinimumWidth(kNarrowest * fontMetrics().averageCharWidth());
    letCopy(*m_grid);
    buildMenu();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto *order = new QToolButton;
    order->setObjectName(QStringLiteral("btnHostOrder"));
    order->setText(tr("Order"));
    order->setToolTip(tr("The order of the list"));
    order->setPopupMode(QToolButton::InstantPopup);
    order->setAutoRaise(true);
    order->setMenu(m_menu);
    m_unfinished = new QLabel;
    m_unfinished->setObjectName(QStringLiteral("labHostsUnfinished"));
    m_unfinished->setWordWrap(true);
    m_unfinished->hide();
    auto *top = new QHBoxLayout;
    top->addWidget(m_unfinished, 1);
    top->addStretch();
    top->addWidget(order);
    column->addLayout(top);
    column->addWidget(m_grid, 1);

    connect(m_header, &TickHeader::flipped, this, &HostsPane::takeFlip);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &row) {
                const HostRow *host = m_filling ? nullptr : m_model.at(row);
                if (host)
                    emit hostChosen(std::string(trim(host->host)));
            });
}

void HostsPane::buildMenu() {
    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("PopupMenuHosts"));
    auto *group = new QActionGroup(this);
    for (const HostSortFacts &facts : kHostSorts) {
        QAction *entry = m_menu->addAction(toQt(facts.label), this, [this, sort = facts.sort] {
            m_sort = sort;
            emit sortChosen();
        });
        entry->setCheckable(true);
        entry->setChecked(facts.sort == m_sort);
        group->addAction(entry);
    }
    m_menu->addSeparator();
    m_menu->addActions(m_grid->actions());
    const auto showOn = [this](QAbstractScrollArea *place) {
        place->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(place, &QWidget::customContextMenuRequested, this, [this, place](const QPoint &at) {
            m_menu->popup(place->viewport()->mapToGlobal(at));
        });
    };
    showOn(m_grid);
    showOn(m_header);
}

void HostsPane::takeFlip(bool ticked) {
    if (ticked)
        forgetChoice();
    else
        emit unticked();
}

void HostsPane::setHosts(std::vector<HostRow> hosts, Walk listing, const UnreadRows &unread) {
    const bool finished = listing == Walk::Finished;
    const bool none = finished && unread.empty() && hosts.empty();
    m_unfinished->setVisible(!finished || !unread.empty() || none);
    m_unfinished->setText(
        !finished ? tr("Not listed. Refresh (F5) tries again.")
        : none
            ? tr("No hosts: nothing is imported yet.")
            : tr("Without %1 that could not be read").arg(toQt(counted(unread.size(), "record"))));
    m_unfinished->setToolTip(finished ? Qt::convertFromPlainText(toQt(noteOf(unread))) : QString());
    m_filling = true;
    m_model.setHosts(std::move(hosts));
    m_filling = false;
}

void HostsPane::forgetChoice() {
    m_filling = true;
    m_grid->setCurrentIndex({});
    m_filling = false;
}

bool HostsPane::isTicked() const {
    return m_header->isTicked();
}

void HostsPane::setTicked(bool ticked) {
    m_header->setTicked(ticked);
}

} // namespace nv
