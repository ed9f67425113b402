#include "ui/table/GridText.h"

#include "address/DefangedAddress.h"
#include "platform/qt/QtText.h"
#include "ui/table/UrlGrid.h"
#include "views/rows/CellText.h"

#include <algorithm>
#include <utility>
#include <vector>

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

/// The tick has no heading; that of the zone's dates has two lines.
std::string headingOf(const UrlTable &table, UrlColumn column) {
    const std::string heading = fromQt(oneLine(toQt(table.header(column))));
    return heading.empty() ? "Ticked" : heading;
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

bool GridText::forEachSelected(TaskMonitor &task,
                               const std::function<void(std::size_t)> &take) const {
    const double all = std::max(1, m_grid.selectedRowCount());
    int done = 0;
    for (int row = 0; row < m_grid.model()->rowCount(); ++row) {
        if (!m_grid.selectionModel()->isRowSelected(row))
            continue;
        if (!task.advance(done++ / all))
            return false;
        take(static_cast<std::size_t>(row));
    }
    return true;
}

std::optional<QString> GridText::selectedRows(TaskMonitor &task) const {
    const std::vector<UrlColumn> columns = m_grid.tableLayout().shownColumns();
    QString text = headingsOf(m_table, columns) + u'\n';
    const bool whole = forEachSelected(task, [&](std::size_t place) {
        QStringList cells;
        for (const UrlColumn column : columns)
            cells += copyText(place, column);
        text += cells.join(u'\t') + u'\n';
    });
    return whole ? std::optional(text) : std::nullopt;
}

std::optional<QString> GridText::selectedRowsAs(CopyForm form, TaskMonitor &task) const {
    std::vector<UrlColumn> columns = m_grid.tableLayout().shownColumns();
    std::erase(columns, UrlColumn::Icon); // a picture
    std::vector<std::string> headings;
    headings.reserve(columns.size());
    for (const UrlColumn column : columns)
        headings.push_back(headingOf(m_table, column));
    CopiedRows rows(form, std::move(headings));
    const bool whole = forEachSelected(task, [&](std::size_t place) {
        std::vector<Cell> cells;
        cells.reserve(columns.size());
        for (const UrlColumn column : columns)
            cells.push_back(m_table.machineCell(place, column));
        rows.add(cells);
    });
    return whole ? std::optional(toQt(rows.take())) : std::nullopt;
}

std::optional<QString> GridText::defangedAddresses(TaskMonitor &task) const {
    QStringList lines;
    const bool whole = forEachSelected(task, [&](std::size_t place) {
        lines += oneLine(toQt(defangedAddress(m_table.fullText(place, UrlColumn::Value))));
    });
    return whole ? std::optional(lines.join(u'\n')) : std::nullopt;
}

} // namespace nv
