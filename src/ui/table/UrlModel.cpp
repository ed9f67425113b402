#include "ui/table/UrlModel.h"

#include "base/DisplayText.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "ui/widgets/ShownSigns.h"
#include "views/rows/IconKey.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTextDocument>

#include <algorithm>
#include <limits>

namespace nv {

namespace {

bool isNumber(UrlColumn column) {
    const CellRule rule = factsOf(column).rule;
    return rule == CellRule::Number || rule == CellRule::Linked;
}

} // namespace

void UrlModel::setTable(UrlTable *table) {
    m_table = table;
    rowsChanged();
}

void UrlModel::rowsChanged() {
    constexpr std::size_t kMost = std::numeric_limits<int>::max();
    beginResetModel();
    m_rows = m_table ? static_cast<int>(std::min(m_table->rowCount(), kMost)) : 0;
    endResetModel();
    emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void UrlModel::ticksChanged() {
    const int section = sectionOf(UrlColumn::Tag);
    if (m_rows > 0)
        emit dataChanged(index(0, section), index(m_rows - 1, section), {Qt::CheckStateRole});
}

void UrlModel::cellsChanged() {
    if (m_rows > 0)
        emit dataChanged(index(0, 0), index(m_rows - 1, columnCount() - 1));
}

bool UrlModel::flipTag(int row) {
    const auto place = static_cast<std::size_t>(row);
    if (!m_table || !m_table->setTagged(place, !m_table->isTagged(place)))
        return false;
    const QModelIndex cell = index(row, sectionOf(UrlColumn::Tag));
    emit dataChanged(cell, cell, {Qt::CheckStateRole});
    return true;
}

int UrlModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_rows;
}

int UrlModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kTableColumnCount);
}

QString UrlModel::cellText(std::size_t place, UrlColumn column) const {
    return shownSigns(toQt(m_table->cell(place, column)));
}

/// A line for each tag, with why the row has it.
QString UrlModel::tagTip(std::size_t place) const {
    QStringList lines;
    for (const RowTag &each : m_table->tagsOf(place)) {
        QString line = shownSigns(toQt(displayText(each.tag.name)));
        if (!each.note.empty())
            line += QStringLiteral(": ") + shownSigns(toQt(displayText(each.note)));
        lines += line;
    }
    return lines.join(u'\n');
}

/// An empty cell of the local date would be taken for a record without a date.
QString UrlModel::tipText(std::size_t place, UrlColumn column) const {
    if (column == UrlColumn::TagNames)
        return tagTip(place);
    const QString text = cellText(place, column);
    const bool leftOut = column == UrlColumn::ActionDateLocal && text.isEmpty() &&
                         !m_table->cell(place, UrlColumn::ActionDateUtc).empty();
    return leftOut ? tr("This column leaves out dates of more than ten years ago. "
                        "The date stands in the column Action Date [UTC].")
                   : text;
}

/// What a screen reader says of what is drawn.
QString UrlModel::spokenText(std::size_t place, UrlColumn column) const {
    if (column == UrlColumn::Tag)
        return m_table->isTagged(place) ? tr("Ticked") : tr("Not ticked");
    if (column == UrlColumn::Icon)
        return toQt(familyName(iconFamily(m_table->iconKey(place)))).replace(u'-', u' ');
    return cellText(place, column);
}

bool UrlModel::isRebuilt(std::size_t place, UrlColumn column) const {
    return column == UrlColumn::Rebuilt && m_table->cell(place, column) == "Yes";
}

QVariant UrlModel::data(const QModelIndex &index, int role) const {
    if (!m_table || !index.isValid() || index.row() >= m_rows)
        return {};
    const auto place = static_cast<std::size_t>(index.row());
    const UrlColumn column = columnOf(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return column == UrlColumn::Tag || column == UrlColumn::Icon ? QString()
                                                                     : cellText(place, column);
    case Qt::AccessibleTextRole:
        return spokenText(place, column);
    case Qt::ToolTipRole:
        // Tooltips guess whether they are rich text: evidence is escaped, so that it never is.
        return Qt::convertFromPlainText(tipText(place, column));
    case Qt::CheckStateRole:
        if (column == UrlColumn::Tag)
            return m_table->isTagged(place) ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::DecorationRole:
        if (column == UrlColumn::Icon)
            return icon(familyName(iconFamily(m_table->iconKey(place))));
        return {};
    case Qt::ForegroundRole:
        return isRebuilt(place, column) ? QGuiApplication::palette().brush(QPalette::Link)
                                        : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (isNumber(column) ? Qt::AlignRight : Qt::AlignLeft));
    default:
        return {};
    }
}

/// Clicks and keys set the tick by the grid, which knows the other chosen rows: nothing is stored
/// through the model.
Qt::ItemFlags UrlModel::flags(const QModelIndex &index) const {
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return columnOf(index.column()) == UrlColumn::Tag ? flags | Qt::ItemIsUserCheckable : flags;
}

QVariant UrlModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    const UrlColumn column = columnOf(section);
    if (role == Qt::DisplayRole)
        return toQt(m_table ? m_table->header(column) : std::string(factsOf(column).header));
    if (role == Qt::ToolTipRole) // a heading is cut where its column is narrow
        return Qt::convertFromPlainText(
            headerData(section, orientation, Qt::DisplayRole).toString().simplified());
    if (role == Qt::DecorationRole && column == UrlColumn::Tag)
        return icon("tag");
    if (role == Qt::AccessibleTextRole && column == UrlColumn::Tag)
        return tr("Tick");
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter | Qt::AlignLeft);
    return {};
}

} // namespace nv
