#include "ui/widgets/GridCopy.h"

#include "platform/qt/Icons.h"

#include <QAbstractItemView>
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableView>
#include <QTreeView>

#include <algorithm>

namespace nv {

namespace {

constexpr auto kRowsKey = Qt::CTRL | Qt::SHIFT | Qt::Key_C;

/// One cell of a text that is divided by tabs.
QString oneLine(QString text) {
    for (const QChar divider : {u'\t', u'\n', u'\r'})
        text.replace(divider, u' ');
    return text;
}

const QHeaderView *headerOf(const QAbstractItemView &grid) {
    if (const auto *table = qobject_cast<const QTableView *>(&grid))
        return table->horizontalHeader();
    const auto *tree = qobject_cast<const QTreeView *>(&grid);
    return tree ? tree->header() : nullptr;
}

class GridCopy final : public QObject {
  public:
    GridCopy(QAbstractItemView &grid, int textRole)
        : QObject(&grid), m_grid(grid), m_textRole(textRole) {
        add("actCopyGridCell", tr("Copy Ce&ll"), QKeySequence::Copy, &GridCopy::copyCell);
        if (headerOf(grid))
            add("actCopyGridRows", tr("Copy Ro&ws"), kRowsKey, &GridCopy::copyRows);
        if (grid.contextMenuPolicy() == Qt::DefaultContextMenu)
            grid.setContextMenuPolicy(Qt::ActionsContextMenu);
        grid.installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override {
        const auto type = event->type();
        if (type != QEvent::ShortcutOverride && type != QEvent::KeyPress)
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool ofRows = QKeySequence(key->keyCombination()) == QKeySequence(kRowsKey);
        if (!ofRows && !key->matches(QKeySequence::Copy))
            return false;
        event->accept();
        if (type == QEvent::KeyPress)
            ofRows ? copyRows() : copyCell();
        return true;
    }

  private:
    /// The key is the filter's: as a shortcut of its own it would be ambiguous beside the window's.
    void add(const char *name, const QString &text, const QKeySequence &key,
             void (GridCopy::*command)()) {
        auto *action = new QAction(icon("copy"), text, &m_grid);
        action->setObjectName(QLatin1String(name));
        action->setText(text + u'\t' + key.toString(QKeySequence::NativeText));
        connect(action, &QAction::triggered, this, [this, command] { (this->*command)(); });
        m_grid.addAction(action);
    }

    void copyCell() {
        QGuiApplication::clipboard()->setText(m_grid.currentIndex().data(m_textRole).toString());
    }

    /// The shown columns in their order, divided by tabs, with the headings above.
    void copyRows() {
        const QHeaderView *header = headerOf(m_grid);
        const QAbstractItemModel *model = m_grid.model();
        if (!header || !model || !m_grid.selectionModel())
            return;
        QStringList lines(
            line([&](int column) { return model->headerData(column, Qt::Horizontal).toString(); }));
        QModelIndexList rows = m_grid.selectionModel()->selectedRows();
        std::sort(rows.begin(), rows.end());
        for (const QModelIndex &row : rows)
            lines += line([&](int column) {
                return row.siblingAtColumn(column).data(m_textRole).toString();
            });
        QGuiApplication::clipboard()->setText(lines.join(u'\n'));
    }

    template <class Text>
    QString line(Text text) const {
        const QHeaderView *header = headerOf(m_grid);
        QStringList cells;
        for (int place = 0; place < header->count(); ++place)
            if (const int column = header->logicalIndex(place); !header->isSectionHidden(column))
                cells += oneLine(text(column));
        return cells.join(u'\t');
    }

    QAbstractItemView &m_grid;
    int m_textRole;
};

} // namespace

void letCopy(QAbstractItemView &grid, int textRole) {
    new GridCopy(grid, textRole);
}

} // namespace nv
