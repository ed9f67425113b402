#include "ui/widgets/GrowingGrid.h"

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

namespace nv {

namespace {

/// Offers the choices of a cell in a box, whose choice is taken at once.
class ChoiceDelegate final : public QStyledItemDelegate {
  public:
    ChoiceDelegate(GrowingGrid::Choices choices, GrowingGrid &grid)
        : QStyledItemDelegate(&grid), m_choices(std::move(choices)), m_grid(grid) {}

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override {
        const QStringList offered = m_choices(index.row(), index.column());
        if (offered.isEmpty())
            return QStyledItemDelegate::createEditor(parent, option, index);
        auto *box = new QComboBox(parent);
        box->setObjectName(QStringLiteral("cbCell"));
        box->setAccessibleName(
            index.model()->headerData(index.column(), Qt::Horizontal).toString());
        box->addItems(offered);
        connect(box, &QComboBox::activated, &m_grid, [this, box] { m_grid.takeChoice(box); });
        return box;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override {
        if (auto *box = qobject_cast<QComboBox *>(editor))
            return box->setCurrentIndex(std::max(0, box->findText(index.data().toString())));
        QStyledItemDelegate::setEditorData(editor, index);
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override {
        if (auto *box = qobject_cast<QComboBox *>(editor)) {
            model->setData(index, box->currentText());
            return;
        }
        QStyledItemDelegate::setModelData(editor, model, index);
    }

  private:
    GrowingGrid::Choices m_choices;
    GrowingGrid &m_grid;
};

} // namespace

GrowingGrid::GrowingGrid(const char *name, const QStringList &headings, Choices choices,
                         QWidget *parent)
    : QTableWidget(0, static_cast<int>(headings.size()), parent) {
    setObjectName(QLatin1String(name));
    setHorizontalHeaderLabels(headings);
    setItemDelegate(new ChoiceDelegate(std::move(choices), *this));
    // A click edits its cell; choosing a row by its number doesn't, so that Delete removes the row.
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    connect(this, &QTableWidget::clicked, this,
            [this](const QModelIndex &index) { QTableWidget::edit(index); });
    setAlternatingRowColors(true);
    setTabKeyNavigation(true);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 12);
    verticalHeader()->setToolTip(tr("Click a number to select its row; Delete removes it"));
    auto *removal = new QAction(tr("&Remove Row"), this);
    removal->setObjectName(QStringLiteral("actRemoveRow"));
    connect(removal, &QAction::triggered, this, &GrowingGrid::removeSelected);
    addAction(removal);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(this, &QTableWidget::itemChanged, this, &GrowingGrid::takeChange);
    addBlankRow();
}

bool GrowingGrid::isBlank(int row) const {
    for (int column = 0; column < columnCount(); ++column)
        if (item(row, column) && !item(row, column)->text().trimmed().isEmpty())
            return false;
    return true;
}

void GrowingGrid::addBlankRow() {
    const QSignalBlocker quiet(this); // a blank row is no change of the query
    const int row = rowCount();
    insertRow(row);
    for (int column = 0; column < columnCount(); ++column)
        setItem(row, column, new QTableWidgetItem);
}

void GrowingGrid::takeChange(QTableWidgetItem *item) {
    // The last row is always blank, to be written into.
    if (item->row() == rowCount() - 1 && !isBlank(item->row()))
        addBlankRow();
    emit changed();
}

QList<QStringList> GrowingGrid::filledRows() const {
    QList<QStringList> rows;
    for (int row = 0; row < rowCount() - 1; ++row) {
        QStringList cells;
        for (int column = 0; column < columnCount(); ++column)
            cells += item(row, column)->text();
        rows += cells;
    }
    return rows;
}

void GrowingGrid::clearRows() {
    setRowCount(0);
    addBlankRow();
}

void GrowingGrid::takeChoice(QWidget *editor) {
    commitData(editor);
}

void GrowingGrid::removeSelected() {
    std::set<int, std::greater<>> rows;
    for (const QModelIndex &index : selectedIndexes())
        rows.insert(index.row());
    rows.erase(rowCount() - 1); // the waiting one
    if (rows.empty())
        return;
    for (const int row : rows)
        removeRow(row);
    emit changed();
}

void GrowingGrid::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Delete && state() != EditingState)
        return removeSelected();
    QTableWidget::keyPressEvent(event);
}

} // namespace nv
