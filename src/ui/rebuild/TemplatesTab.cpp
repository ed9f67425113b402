#include "ui/rebuild/TemplatesTab.h"

#include "ui/rebuild/TemplateModel.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/widgets/FlowLayout.h"
#include "ui/widgets/GridCopy.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTableView>
#include <QToolButton>

namespace nv {

namespace {

constexpr int kRowPadding = 6; ///< pixels

QToolButton *newButton(const char *name, QAction *action) {
    auto *button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

TemplatesTab::TemplatesTab(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("TemplatesTab"));
    m_model = new TemplateModel(this);
    m_grid = newGrid();
    makeActions();
    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("templatePages"));
    m_pages->addWidget(newEmptyPage());
    m_pages->addWidget(m_grid);
    m_splitter = new QSplitter;
    m_splitter->setObjectName(QStringLiteral("templateSplitter"));
    m_splitter->addWidget(m_pages);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(newBar());
    column->addWidget(m_splitter, 1);
    connect(m_model, &TemplateModel::tagsChanged, this, &TemplatesTab::showState);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
        closePreview();
        showState();
    });
    connect(m_grid, &QTableView::doubleClicked, this, [this](const QModelIndex &cell) {
        if (cell.column() != TemplateModel::tagColumn)
            emit viewWanted();
    });
    showState();
}

QTableView *TemplatesTab::newGrid() {
    auto *grid = new QTableView;
    grid->setObjectName(QStringLiteral("TemplateGrid"));
    grid->setAccessibleName(tr("Templates"));
    grid->setModel(m_model);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setAlternatingRowColors(true);
    grid->setShowGrid(false);
    grid->setWordWrap(false);
    grid->setTabKeyNavigation(false);
    grid->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    grid->setContextMenuPolicy(Qt::ActionsContextMenu);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + kRowPadding);
    constexpr int kChars[TemplateModel::Count] = {6, 26, 44, 8, 14, 22, 60};
    QHeaderView *header = grid->horizontalHeader();
    header->setObjectName(QStringLiteral("TemplateGridHeader"));
    header->setHighlightSections(false);
    header->setStretchLastSection(true);
    for (int column = 0; column < TemplateModel::Count; ++column)
        header->resizeSection(column, kChars[column] * grid->fontMetrics().horizontalAdvance(u'0'));
    grid->installEventFilter(this);
    return grid;
}

QAction *TemplatesTab::newAction(const char *name, const QString &text, const QString &tip,
                                 void (TemplatesTab::*wanted)()) {
    auto *action = new QAction(text, this);
    action->setObjectName(QLatin1String(name));
    action->setToolTip(tip);
    // Keys work where the list has the focus: elsewhere they have other meanings.
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, wanted);
    m_grid->addAction(action);
    return action;
}

void TemplatesTab::makeActions() {
    m_view = newAction("actTemplateView", tr("&View Template"),
                       tr("Show the template's page beside the list (Enter; Esc closes it)"),
                       &TemplatesTab::viewWanted);
    m_apply = newAction("actTemplateApply", tr("&Apply to Pages"),
                        tr("Lay the ticked templates, or the current one, over the ticked pages of "
                           "the table, or over its current page"),
                        &TemplatesTab::applyWanted);
    m_create = newAction("actTemplateCreate", tr("&Create from Pages"),
                         tr("Make a template of each ticked page of the table, or of its current "
                            "page; it has to be rebuilt first"),
                         &TemplatesTab::createWanted);
    m_rename =
        newAction("actTemplateRename", tr("&Rename Template..."),
                  tr("Give the template's file another name (F2)"), &TemplatesTab::renameWanted);
    m_delete = newAction("actTemplateDelete", tr("&Delete Template..."),
                         tr("Delete the template's file (Del)"), &TemplatesTab::deleteWanted);
    m_rename->setShortcut(Qt::Key_F2);
    m_delete->setShortcut(QKeySequence::Delete);
    letCopy(*m_grid);
}

QWidget *TemplatesTab::newBar() {
    m_matchByTitle = new QCheckBox(tr("&Only pages of the template's title"));
    m_matchByTitle->setObjectName(QStringLiteral("chkTemplateMatchByTitle"));
    m_matchByTitle->setToolTip(tr("A template is laid only over pages that have the same title"));
    connect(m_matchByTitle, &QCheckBox::toggled, this, &TemplatesTab::matchByTitleChosen);
    m_count = new QLabel;
    m_count->setObjectName(QStringLiteral("labTemplates"));
    auto *bar = new QWidget;
    bar->setObjectName(QStringLiteral("templateBar"));
    auto *row = new FlowLayout(bar);
    row->setContentsMargins(6, 4, 6, 4);
    row->addWidget(newButton("btnTemplateCreate", m_create));
    row->addWidget(newButton("btnTemplateApply", m_apply));
    row->addWidget(m_matchByTitle);
    row->addWidget(newButton("btnTemplateView", m_view));
    row->addWidget(newButton("btnTemplateRename", m_rename));
    row->addWidget(newButton("btnTemplateDelete", m_delete));
    row->addWidget(m_count);
    return bar;
}

QWidget *TemplatesTab::newEmptyPage() {
    auto *text = new QLabel(tr("There are no templates yet.\n\n"
                               "A template keeps a rebuilt page with its parts, so that it can be "
                               "laid over other pages of the site.\n"
                               "Go to a web page in the table, or tick some, rebuild it, and make "
                               "its template here."));
    text->setObjectName(QStringLiteral("labNoTemplates"));
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    auto *button = new QPushButton(tr("&Create from Pages"));
    button->setObjectName(QStringLiteral("btnEmptyTemplateCreate"));
    button->setToolTip(m_create->toolTip());
    connect(button, &QPushButton::clicked, this, &TemplatesTab::createWanted);
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    column->addStretch();
    column->addWidget(text);
    column->addSpacing(12);
    column->addWidget(button, 0, Qt::AlignHCenter);
    column->addStretch();
    return page;
}

void TemplatesTab::setTemplates(std::vector<TemplateRow> rows) {
    const auto before = current();
    m_model->setRows(std::move(rows));
    if (before)
        select(*before);
    if (!current() && m_model->rowCount() > 0)
        m_grid->setCurrentIndex(m_model->index(0, TemplateModel::nameColumn));
    if (current() != before)
        closePreview();
    showState();
}

void TemplatesTab::select(const std::filesystem::path &file) {
    if (const auto place = m_model->placeOf(file))
        m_grid->setCurrentIndex(m_model->index(*place, TemplateModel::nameColumn));
}

std::optional<std::filesystem::path> TemplatesTab::current() const {
    const QModelIndex cell = m_grid->currentIndex();
    if (!cell.isValid())
        return std::nullopt;
    return m_model->row(cell.row()).file;
}

std::vector<std::filesystem::path> TemplatesTab::chosen() const {
    std::vector<std::filesystem::path> files = m_model->tagged();
    if (const auto file = current(); files.empty() && file)
        files.push_back(*file);
    return files;
}

void TemplatesTab::showPreview(const std::filesystem::path &page) {
    if (!m_preview) {
        m_preview = new BrowserPane;
        m_preview->setObjectName(QStringLiteral("templatePreview"));
        m_splitter->addWidget(m_preview);
        m_splitter->setSizes({1, 1});
    }
    m_preview->show();
    m_preview->showPage(page, tr("Template"));
}

void TemplatesTab::closePreview() {
    if (!m_preview || m_preview->isHidden())
        return;
    m_preview->clear();
    m_preview->hide();
}

void TemplatesTab::setMatchByTitle(bool on) {
    m_matchByTitle->setChecked(on);
}

void TemplatesTab::showState() {
    const auto all = static_cast<qint64>(m_model->rowCount());
    const bool some = all > 0 && m_grid->currentIndex().isValid();
    for (QAction *action : {m_apply, m_view, m_rename, m_delete})
        action->setEnabled(some);
    m_pages->setCurrentIndex(all > 0 ? 1 : 0);
    m_count->setText(tr("Templates: %L1. Ticked: %L2.")
                         .arg(all)
                         .arg(static_cast<qint64>(m_model->tagged().size())));
}

void TemplatesTab::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    emit shown();
}

bool TemplatesTab::eventFilter(QObject *watched, QEvent *event) {
    if (watched != m_grid || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    return takeKey(static_cast<QKeyEvent *>(event)->key()) || QWidget::eventFilter(watched, event);
}

/// Keys that the grid would keep for its cells.
bool TemplatesTab::takeKey(int key) {
    const QModelIndex cell = m_grid->currentIndex();
    switch (key) {
    case Qt::Key_Space:
        if (cell.isValid())
            m_model->flipTag(cell.row());
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (cell.isValid())
            emit viewWanted();
        return true;
    case Qt::Key_Escape:
        closePreview();
        return true;
    default:
        return false;
    }
}

} // namespace nv
