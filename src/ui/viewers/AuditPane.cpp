#include "ui/viewers/AuditPane.h"

#include "ui/viewers/AuditModel.h"
#include "ui/widgets/GridCopy.h"
#include "ui/widgets/NoRow.h"
#include "views/record/Audit.h"
#include "views/record/PartAlternatives.h"

#include <QAction>
#include <QBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QTableView>

#include <algorithm>
#include <array>

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

/// Of the columns, in characters of the table's font, which are all of one width.
constexpr std::array<int, AuditModel::Count> kChars = {7,  32, 20, 12, 26, 8,  44, 60, 20,
                                                       44, 26, 9,  23, 22, 68, 44, 11};

QString classicSummary(const std::vector<AuditRow> &rows) {
    const auto missing =
        std::count_if(rows.begin(), rows.end(), [](const AuditRow &row) { return !row.isThere; });
    const auto replaced = std::count_if(rows.begin(), rows.end(),
                                        [](const AuditRow &row) { return row.isReplaced(); });
    const auto all = static_cast<qint64>(rows.size());
    QString text = AuditPane::tr("References: %L1. Replaced by a cached part: %L2. Missing: %L3.")
                       .arg(all)
                       .arg(replaced)
                       .arg(missing);
    if (all > replaced + missing)
        text += AuditPane::tr(" Found and not rewritten: %L1.").arg(all - replaced - missing);
    return text;
}

QString exactSummary(const std::vector<AuditRow> &rows) {
    const auto there = std::count_if(rows.begin(), rows.end(),
                                     [](const AuditRow &row) { return row.isReplaced(); });
    const auto others = std::count_if(rows.begin(), rows.end(), [](const AuditRow &row) {
        return row.isReplaced() && row.note && isOfAnotherAddress(*row.note);
    });
    QString text = AuditPane::tr("Rebuilt exactly. References: %L1. Shown by a cached part: %L2. "
                                 "Marked places: %L3.")
                       .arg(static_cast<qint64>(rows.size()))
                       .arg(there)
                       .arg(static_cast<qint64>(rows.size()) - there);
    if (others > 0)
        text += AuditPane::tr(" Of the parts, cached under another address: %L1.").arg(others);
    return text;
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
    m_table->installEventFilter(this);
    addTableActions();
    letCopy(*m_table);
    setWidths();
    connect(m_table, &QTableView::doubleClicked, this, &AuditPane::goToPart);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &AuditPane::offerActions);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_summary);
    column->addWidget(m_table, 1);
    column->addStretch();
    clear();
}

void AuditPane::addTableActions() {
    const auto add = [this](const char *name, const QString &text, auto command) {
        auto *action = new QAction(text, m_table);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, command);
        m_table->addAction(action);
        return action;
    };
    m_goToPart = add("actGoToPart", tr("&Go to Part's Record in Table"), &AuditPane::goToPart);
    m_goToDocument =
        add("actGoToDocument", tr("Go to the &Document That Names It"), &AuditPane::goToDocument);
    m_chooseOther =
        add("actChooseOtherPart", tr("&Choose Another Part..."), &AuditPane::chooseOther);
}

void AuditPane::setWidths() {
    QHeaderView *header = m_table->horizontalHeader();
    header->setObjectName(QStringLiteral("AuditGridHeader"));
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const int width = m_table->fontMetrics().horizontalAdvance(u'0');
    for (int section = 0; section < m_model->columnCount(); ++section)
        header->resizeSection(
            section, kChars.at(static_cast<std::size_t>(m_model->columnAt(section))) * width);
    header->setStretchLastSection(true);
}

void AuditPane::showAudit(std::vector<AuditRow> rows) {
    const bool isExact = !rows.empty() && rows.front().note;
    const int columns = m_model->columnCount();
    m_summary->setText(isExact ? exactSummary(rows) : classicSummary(rows));
    const bool isEmpty = rows.empty();
    m_model->setRows(std::move(rows));
    if (m_model->columnCount() != columns)
        setWidths();
    m_table->setVisible(true);
    if (!isEmpty)
        m_table->setCurrentIndex(m_model->index(0, AuditModel::Original));
    offerActions();
}

const AuditRow *AuditPane::currentRow() const {
    const QModelIndex current = m_table->currentIndex();
    return current.isValid() ? &m_model->rowAt(current.row()) : nullptr;
}

void AuditPane::offerActions() const {
    const AuditRow *row = currentRow();
    m_goToPart->setEnabled(row && row->tagURLID > 0);
    m_goToDocument->setEnabled(row && row->note);
    m_chooseOther->setEnabled(row && row->note && !row->note->address.empty());
}

void AuditPane::goToPart() {
    if (const AuditRow *row = currentRow(); row && row->tagURLID > 0)
        emit recordWanted(row->tagURLID);
}

void AuditPane::goToDocument() {
    if (const AuditRow *row = currentRow(); row && row->note)
        emit recordWanted(number(row->note->document));
}

/// The page is rebuilt then, and the rows go: whoever listens gets a copy.
void AuditPane::chooseOther() {
    if (const AuditRow *row = currentRow()) {
        const AuditRow chosen = *row;
        emit otherPartWanted(chosen);
    }
}

/// The table would keep the key for its cells.
bool AuditPane::eventFilter(QObject *watched, QEvent *event) {
    if (watched != m_table || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    goToPart();
    return true;
}

void AuditPane::showReason(const QString &text) {
    m_model->setRows({});
    m_table->setVisible(false);
    m_summary->setText(text.isEmpty() ? noRowText() : text);
}

} // namespace nv
