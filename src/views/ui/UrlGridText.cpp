// What leaves the grid as text: copying and finding.
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

int UrlGrid::selectedRowCount() const {
    int count = 0;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        count += range.height();
    return count;
}

QString UrlGrid::copyText(std::size_t place, UrlColumn column) const {
    UrlTable &table = *m_model.table();
    if (column == UrlColumn::Tag)
        return table.isTagged(place) ? QStringLiteral("Yes") : QStringLiteral("No");
    const std::string shown = table.cell(place, column);
    const bool whole = factsOf(column).rule != CellRule::Text || shown.size() < kCellChars;
    return oneLine(toQt(whole ? shown : table.fullText(place, column)));
}

QString UrlGrid::currentCellText() const {
    const QModelIndex current = currentIndex();
    if (!m_model.table() || !current.isValid())
        return {};
    return copyText(static_cast<std::size_t>(current.row()), UrlModel::columnOf(current.column()));
}

std::optional<QString> UrlGrid::selectedRowsText(TaskMonitor &task) const {
    if (!m_model.table())
        return QString();
    const std::vector<UrlColumn> columns = m_layout.shownColumns();
    QString text = headingsOf(*m_model.table(), columns) + u'\n';
    const double all = std::max(1, selectedRowCount());
    int done = 0;
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (!selectionModel()->isRowSelected(row))
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

FindResult UrlGrid::find(const QString &text, int fromRow, TaskMonitor &task) const {
    if (!m_model.table())
        return {};
    return m_model.table()->find({fromQt(text), m_layout.shownColumns()},
                                 static_cast<std::size_t>(fromRow), task);
}

QModelIndex UrlGrid::cellOf(const FindResult &found) const {
    return m_model.index(static_cast<int>(found.place), UrlModel::sectionOf(found.column));
}

} // namespace nv
