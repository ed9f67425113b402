#include "ui/parts/RowMenuPart.h"

#include "base/Text.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "views/rows/CellText.h"

#include <QAction>
#include <QMenu>

namespace nv {

namespace {

/// Texts of evidence may hold "&", which menus take for a mnemonic, and be of any length.
QString literal(const std::string &text) {
    constexpr std::size_t kMost = 60; // characters
    return toQt(displayText(text, kMost)).replace(u'&', QStringLiteral("&&"));
}

/// Cells that name the cached file.
bool isOfFile(UrlColumn column) {
    return column == UrlColumn::CacheFolder || column == UrlColumn::FileName ||
           column == UrlColumn::CacheFileName || column == UrlColumn::FileRelativePath;
}

} // namespace

RowMenuPart::RowMenuPart(Workbench &bench)
    : m_bench(bench), m_menu(new QMenu(&bench.table->grid())) {
    m_menu->setObjectName(QStringLiteral("PopupMenuURLs"));
    m_menu->setToolTipsVisible(true);
    UrlGrid &grid = bench.table->grid();
    grid.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&grid, &QWidget::customContextMenuRequested, this, &RowMenuPart::open);
    // A pane may run a task, which locks the grid that has the key.
    connect(&grid, &UrlGrid::pageWanted, this, &RowMenuPart::enterPage, Qt::QueuedConnection);
    connect(&grid, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex &cell) { openCell(UrlModel::columnOf(cell.column())); });
}

std::size_t RowMenuPart::row() const {
    return static_cast<std::size_t>(m_bench.table->grid().currentIndex().row());
}

UrlColumn RowMenuPart::column() const {
    return UrlModel::columnOf(m_bench.table->grid().currentIndex().column());
}

/// The menu key asks at a place of its own: the menu is of the current cell then.
void RowMenuPart::open(const QPoint &place) {
    UrlGrid &grid = m_bench.table->grid();
    if (const QModelIndex cell = grid.indexAt(place); cell.isValid())
        grid.selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
    if (!m_bench.table->table() || !grid.currentIndex().isValid())
        return;
    const MainActions &actions = m_bench.actions;
    m_menu->clear();
    qDeleteAll(m_menu->findChildren<QMenu *>());
    addOfCell(*m_menu, column());
    m_menu->addActions({actions.copyCell, actions.copyRows});
    QMenu *copies = m_menu->addMenu(tr("Copy A&s"));
    copies->setToolTipsVisible(true);
    copies->addActions(
        {actions.copyCsv, actions.copyMarkdown, actions.copyJson, actions.copyDefanged});
    m_menu->addAction(actions.selectAll);
    m_menu->addSeparator();
    m_menu->addAction(actions.tag);
    m_menu->addMenu(m_bench.tags);
    m_menu->addActions(
        {actions.rebuild, actions.rebuildPage, actions.rebuildExactly, actions.rebuildByClassic});
    addViewers(*m_menu);
    m_menu->addSeparator();
    addOfHost(*m_menu);
    m_menu->addActions({actions.filters, actions.columns});
    m_menu->addSeparator();
    m_menu->addActions({actions.createReport, actions.exportRows});
    m_menu->popup(grid.viewport()->mapToGlobal(place));
}

void RowMenuPart::addOfCell(QMenu &menu, UrlColumn column) {
    const auto add = [&](const char *name, const QString &text, auto command) {
        menu.addAction(text, this, command)->setObjectName(QLatin1String(name));
    };
    if (isOfFile(column)) {
        add("actShowText", tr("Show Cached Content as Te&xt"), [this] { showPane("TextPane"); });
        add("actShowBytes", tr("Show Its &Bytes"), [this] { showPane("HexPane"); });
    } else if (column == UrlColumn::Linked) {
        add("actShowLinks", tr("Show Its &Links"), [this] { showPane("LinksPane"); });
    } else if (column == UrlColumn::Rebuilt) {
        if (table().cell(row(), column) == "Yes")
            add("actShowRebuilt", tr("Show &Page"), [this] { showPane("BrowserPane"); });
    }
    menu.addSeparator();
}

/// What a double click does is the first entry of the cell's menu.
void RowMenuPart::openCell(UrlColumn column) {
    if (!m_bench.table->table() || !m_bench.table->grid().currentIndex().isValid())
        return;
    if (isOfFile(column))
        showPane("TextPane");
    else if (column == UrlColumn::Linked)
        showPane("LinksPane");
    else if (column == UrlColumn::Rebuilt && table().cell(row(), column) == "Yes")
        showPane("BrowserPane");
}

void RowMenuPart::enterPage() {
    if (!m_bench.table->grid().currentUrl())
        return;
    m_bench.actions.viewers->setChecked(true);
    if (!m_bench.viewers->enterBest())
        m_bench.showNotice(tr("No page to show: this record has no cached content"));
}

void RowMenuPart::addOfHost(QMenu &menu) {
    const std::string host(trim(table().fullText(row(), UrlColumn::Host)));
    if (!host.empty())
        menu.addAction(icon("hosts"), tr("Show Only &Host \"%1\"").arg(literal(host)), this,
                       [this, host] { m_bench.table->filterByHost(toQt(host)); })
            ->setObjectName(QStringLiteral("actFilterByHost"));
    if (table().choice.filterByHostEnabled)
        menu.addAction(tr("Show &All Hosts"), this, [this] { m_bench.table->filterByHost({}); })
            ->setObjectName(QStringLiteral("actAllHosts"));
}

void RowMenuPart::addViewers(QMenu &menu) {
    QMenu *views = menu.addMenu(tr("&View as"));
    views->setObjectName(QStringLiteral("menuViewAs"));
    for (int place = 0; place < m_bench.viewers->count(); ++place)
        views->addAction(m_bench.viewers->tabText(place), this, [this, place] {
            m_bench.actions.viewers->setChecked(true);
            m_bench.viewers->setCurrentIndex(place);
        });
}

void RowMenuPart::showPane(const char *name) const {
    auto *pane = m_bench.viewers->findChild<QWidget *>(QLatin1String(name));
    if (!pane)
        return;
    m_bench.actions.viewers->setChecked(true);
    m_bench.viewers->setCurrentWidget(pane);
}

} // namespace nv
