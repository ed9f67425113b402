#include "ui/viewers/LinksPane.h"

#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "ui/viewers/LinksModel.h"
#include "ui/widgets/GridCopy.h"
#include "ui/widgets/NoRow.h"
#include "views/rows/CellText.h"

#include <QAction>
#include <QBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>

#include <algorithm>

namespace nv {

namespace {

constexpr int kRowPadding = 6; ///< pixels

void setWidths(QTableView &table) {
    constexpr int kChars[LinksModel::Count] = {9, 11, 11, 12, 8, 70, 36};
    QHeaderView *header = table.horizontalHeader();
    header->setObjectName(QStringLiteral("LinksGridHeader"));
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (int column = 0; column < LinksModel::Count; ++column)
        header->resizeSection(column, kChars[column] * table.fontMetrics().horizontalAdvance(u'0'));
    header->setStretchLastSection(true);
}

} // namespace

LinksPane::LinksPane(Source source, QWidget *parent)
    : QWidget(parent), m_source(std::move(source)) {
    setObjectName(QStringLiteral("LinksPane"));
    m_summary = new QLabel;
    m_summary->setObjectName(QStringLiteral("labLinks"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    m_summary->setContentsMargins(8, 6, 8, 6);
    m_analyse = new QPushButton(icon("links"), tr("&Run Link Analysis..."));
    m_analyse->setObjectName(QStringLiteral("btnRunLinkAnalysis"));
    m_analyse->setToolTip(tr("Find the cached pages that hold a link to each record"));
    connect(m_analyse, &QPushButton::clicked, this, &LinksPane::analysisWanted);
    m_model = new LinksModel(this);
    buildTable();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_summary);
    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(8, 4, 8, 0);
    buttons->addWidget(m_analyse);
    buttons->addStretch();
    column->addLayout(buttons);
    column->addWidget(m_table, 1);
    column->addStretch();
    clear();
}

void LinksPane::buildTable() {
    m_table = new QTableView;
    m_table->setObjectName(QStringLiteral("LinksGrid"));
    m_table->setAccessibleName(tr("Links of the record"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + kRowPadding);
    setWidths(*m_table);
    m_table->installEventFilter(this);
    addTableActions();
    connect(m_table, &QTableView::doubleClicked, this, &LinksPane::goToOther);
}

void LinksPane::addTableActions() {
    const auto add = [this](const char *name, const QString &text, auto command) {
        auto *action = new QAction(text, m_table);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, command);
        m_table->addAction(action);
    };
    add("actGoToLinked", tr("&Go to Record in Table"), &LinksPane::goToOther);
    letCopy(*m_table, LinksModel::kWholeText);
}

void LinksPane::showRecord(UrlId id) {
    LinkList links = m_source.links(id);
    if (!links.failure.empty())
        showReason(toQt(displayText(links.failure)), false);
    else if (!links.rows.empty())
        showRows(std::move(links.rows));
    else if (m_source.isAnalysed())
        showReason(tr("Link analysis found no page that links to this record, and no record that "
                      "this one links to. Records that were imported since are compared by the "
                      "next run."),
                   true);
    else
        showReason(tr("Link analysis has not been run on this project, or found nothing. It finds "
                      "the cached pages that link to a record; the import must have been made "
                      "with the 'Parse Advanced Metadata' option."),
                   true);
}

void LinksPane::showRows(std::vector<LinkRow> rows) {
    const auto parents = static_cast<qint64>(std::count_if(
        rows.begin(), rows.end(), [](const LinkRow &row) { return row.end == LinkEnd::parent; }));
    const auto all = static_cast<qint64>(rows.size());
    m_summary->setText(tr("Pages that link to this record: %L1. Records that it links to: %L2.")
                           .arg(parents)
                           .arg(all - parents));
    m_analyse->hide();
    m_model->setRows(std::move(rows));
    m_table->show();
    m_table->setCurrentIndex(m_model->index(0, LinksModel::Url));
    m_table->horizontalScrollBar()->setValue(0); // a row is read from its begin
}

void LinksPane::showReason(const QString &text, bool offersAnalysis) {
    m_model->setRows({});
    m_table->hide();
    m_summary->setText(text);
    m_analyse->setVisible(offersAnalysis);
}

void LinksPane::clear() {
    showReason(noRowText(), false);
}

void LinksPane::goToOther() {
    if (const QModelIndex current = m_table->currentIndex(); current.isValid())
        emit recordWanted(number(m_model->otherOf(current.row())));
}

/// The table would keep the key for its cells.
bool LinksPane::eventFilter(QObject *watched, QEvent *event) {
    if (watched != m_table || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    goToOther();
    return true;
}

} // namespace nv
