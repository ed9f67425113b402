#include "views/ui/GridText.h"

#include "platform/qt/QtText.h"
#include "views/CellText.h"
#include "views/ui/UrlGrid.h"

namespace nv {

namespace {

/// One cell of a text that is divided by tabs.
QString oneLine(QString text) {
    for (const QChar divider : {u'\t', u'\n', u'\r'})
        text.replace(divider, u' ');
    return text;
}

QString headingsOf(const UrlTable &table, const std::vector<UrlColumn> &columns) {
    QStringList headings;
    for (const UrlColumn column : columns)
        headings += oneLine(toQt(table.header(column)));
    return headings.join(u'\t');
}

} // namespace

QString GridText::copyText(std::size_t place, UrlColumn column) const {
    if (column == UrlColumn::Tag)
        return m_table.isTagged(place) ? QStringLiteral("Yes") : QStringLiteral("No");
    const std::string shown = m_table.cell(place, column);
    const bool whole = factsOf(column).rule != CellRule::Text || shown.size() < kCellChars;
    return oneLine(toQt(whole ? shown : m_table.fullText(place, column)));
}

QString GridText::currentCell() const {
    const QModelIndex current = m_grid.currentIndex();
    if (!current.isValid())
        return {};
    return copyText(static_cast<std::size_t>(current.row()), UrlModel::columnOf(current.column()));
}

std::optional<QString> GridText::selectedRows(TaskMonitor &task) const {
    const std::vector<UrlColumn> columns = m_grid.tableLayout().shownColumns();
    QString text = headingsOf(m_table, columns) + u'\n';
    const double all = std::max(1, m_grid.selectedRowCount());
    int done = 0;
    for (int row = 0; row < m_grid.model()->rowCount(); ++row) {
        if (!m_grid.selectionModel()->isRowSelected(row))
            continue;
        if (!task.advance(done++ / all))
            return std::nullopt;
        QStringList cells;
        for (const UrlColumn column : columns)
            cells += copyText(static_cast<std::size_t>(row), column);
        text += cells.join(u'\t') + u'\n';
    }
    return text;
}

} // namespace nv
