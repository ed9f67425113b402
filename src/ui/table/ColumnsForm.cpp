#include "ui/table/ColumnsForm.h"

#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace nv {

QString columnTitle(UrlColumn column) {
    switch (column) {
    case UrlColumn::Tag:
        return ColumnsForm::tr("Tick");
    case UrlColumn::FileId:
        return ColumnsForm::tr("Source File ID");
    case UrlColumn::LastVisited:
        return ColumnsForm::tr("Last Visited");
    default:
        return toQt(factsOf(column).header);
    }
}

ColumnsForm::ColumnsForm(const TableLayout &layout, const TableLayout &defaults, QWidget *parent)
    : QDialog(parent), m_layout(layout), m_defaults(defaults) {
    setObjectName(QStringLiteral("ColumnsForm"));
    setWindowTitle(tr("Columns"));
    resizeWithinScreen(*this, {420, 560});

    m_search = new QLineEdit;
    m_search->setObjectName(QStringLiteral("txtColumnSearch"));
    m_search->setAccessibleName(tr("Search columns"));
    m_search->setPlaceholderText(tr("Search columns"));
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, this, &ColumnsForm::search);

    m_columns = new QListWidget;
    m_columns->setObjectName(QStringLiteral("lstColumns"));
    m_columns->setAccessibleName(tr("Columns"));
    m_columns->setDragDropMode(QAbstractItemView::InternalMove);
    m_columns->setAlternatingRowColors(true);

    auto *middle = new QHBoxLayout;
    middle->addWidget(m_columns, 1);
    middle->addWidget(newSideButtons());

    auto *hint = new QLabel(tr("Ticked columns are shown. Drag a column to its place."));
    hint->setObjectName(QStringLiteral("labColumnsHint"));
    hint->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *column = new QVBoxLayout(this);
    column->addWidget(m_search);
    column->addLayout(middle, 1);
    column->addWidget(hint);
    column->addWidget(buttons);
    fill(m_layout);
}

QWidget *ColumnsForm::newSideButtons() {
    auto *side = new QWidget;
    auto *column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char *name, const QString &text, auto act) {
        auto *button = new QPushButton(text);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        column->addWidget(button);
    };
    add("btnColumnUp", tr("Move &Up"), [this] { moveCurrent(-1); });
    add("btnColumnDown", tr("Move &Down"), [this] { moveCurrent(1); });
    column->addSpacing(12);
    add("btnColumnsAll", tr("&Show All"), [this] { tickAll(Qt::Checked); });
    add("btnColumnsNone", tr("&Hide All"), [this] { tickAll(Qt::Unchecked); });
    add("btnColumnsDefault", tr("De&faults"), [this] { fill(m_defaults); });
    column->addStretch();
    return side;
}

void ColumnsForm::fill(const TableLayout &layout) {
    m_columns->clear();
    for (const UrlColumn column : layout.order()) {
        auto *item = new QListWidgetItem(columnTitle(column), m_columns);
        item->setData(Qt::UserRole, static_cast<int>(column));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable |
                       Qt::ItemIsDragEnabled);
        item->setCheckState(layout.hidden(column) ? Qt::Unchecked : Qt::Checked);
    }
    m_columns->setCurrentRow(0);
    search(m_search->text());
}

void ColumnsForm::search(const QString &text) {
    for (int row = 0; row < m_columns->count(); ++row) {
        QListWidgetItem *item = m_columns->item(row);
        item->setHidden(!item->text().contains(text, Qt::CaseInsensitive));
    }
}

void ColumnsForm::moveCurrent(int by) {
    const int from = m_columns->currentRow();
    const int to = from + by;
    if (from < 0 || to < 0 || to >= m_columns->count())
        return;
    m_columns->insertItem(to, m_columns->takeItem(from));
    m_columns->setCurrentRow(to);
}

/// Only what the search shows, so that "Hide All" after a search is what it seems to be.
void ColumnsForm::tickAll(Qt::CheckState state) {
    for (int row = 0; row < m_columns->count(); ++row) {
        if (!m_columns->item(row)->isHidden())
            m_columns->item(row)->setCheckState(state);
    }
}

TableLayout ColumnsForm::tableLayout() const {
    TableLayout result = m_layout;
    for (int row = 0; row < m_columns->count(); ++row) {
        const QListWidgetItem *item = m_columns->item(row);
        const auto column = static_cast<UrlColumn>(item->data(Qt::UserRole).toInt());
        result.move(column, row);
        result.setHidden(column, item->checkState() != Qt::Checked);
    }
    return result;
}

} // namespace nv
