#include "ui/views/AuditPane.h"

#include "ui/views/AuditModel.h"
#include "ui/views/GridCopy.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>

#include <algorithm>

namespace nv {

namespace {

constexpr int kRowPadding = 6; ///< pixels

QTableView *newTable(AuditModel &model) {
    auto *table = new QTableView;
    table->setObjectName(QStringLiteral("AuditGrid"));
    table->setAccessibleName(AuditPane::tr("References of the rebuilt page"));
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(table->font().pointSize());
    table->setFont(font);
    table->setModel(&model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + kRowPadding);
    return table;
}

/// In characters of the table's font, which are all of one width.
void setWidths(QTableView &table) {
    constexpr int kChars[AuditModel::Count] = {7, 32, 20, 12, 26, 8, 44, 60};
    QHeaderView *header = table.horizontalHeader();
    header->setObjectName(QStringLiteral("AuditGridHeader"));
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    for (int column = 0; column < AuditModel::Count; ++column)
        header->resizeSection(column, kChars[column] * table.fontMetrics().horizontalAdvance(u'0'));
    header->setStretchLastSection(true);
}

} // namespace

AuditPane::AuditPane(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("AuditPane"));
    m_summary = new QLabel;
    m_summary->setObjectName(QStringLiteral("labAudit"));
    m_summary->setTextFormat(Qt::PlainText);
    m_summary->setWordWrap(true);
    m_summary->setContentsMargins(8, 6, 8, 6);
    m_model = new AuditModel(this);
    m_table = newTable(*m_model);
    setWidths(*m_table);
    letCopy(*m_table);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_summary);
    column->addWidget(m_table, 1);
    column->addStretch();
    clear();
}

void AuditPane::showAudit(std::vector<AuditRow> rows) {
    const auto missing =
        std::count_if(rows.begin(), rows.end(), [](const AuditRow &row) { return !row.isThere; });
    const auto replaced = std::count_if(rows.begin(), rows.end(),
                                        [](const AuditRow &row) { return row.isReplaced(); });
    const auto all = static_cast<qint64>(rows.size());
    QString text = tr("References: %L1. Replaced by a cached part: %L2. Missing: %L3.")
                       .arg(all)
                       .arg(replaced)
                       .arg(missing);
    if (all > replaced + missing)
        text += tr(" Found and not rewritten: %L1.").arg(all - replaced - missing);
    m_summary->setText(text);
    m_model->setRows(std::move(rows));
    m_table->setVisible(true);
    if (all > 0)
        m_table->setCurrentIndex(m_model->index(0, AuditModel::Original));
}

void AuditPane::showReason(const QString &text) {
    m_model->setRows({});
    m_table->setVisible(false);
    m_summary->setText(text);
}

} // namespace nv
