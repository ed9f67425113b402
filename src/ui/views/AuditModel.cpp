#include "ui/views/AuditModel.h"

#include "platform/qt/QtText.h"
#include "ui/views/ShownSigns.h"
#include "views/CellText.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTextDocument>

namespace nv {

namespace {

/// Red that stands out from the table's ground by 4.5:1 or more, light or dark.
QColor missingInk() {
    const bool dark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    return dark ? QColor(0xff, 0x8a, 0x80) : QColor(0xb3, 0x1b, 0x1b);
}

} // namespace

void AuditModel::setRows(std::vector<AuditRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int AuditModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int AuditModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : Count;
}

QString AuditModel::textOf(const AuditRow &row, int column) {
    switch (column) {
    case Number:
        return QString::number(row.number);
    case Original:
        return shownSigns(toQt(displayText(row.originalValue)));
    case New:
        return shownSigns(toQt(displayText(row.newValue)));
    case Extension:
        return shownSigns(toQt(displayText(row.extension)));
    case State:
        return shownSigns(toQt(displayText(row.state)));
    case Score:
        return toQt(displayText(row.score));
    case PartUrl:
        return shownSigns(toQt(displayText(row.partUrl())));
    default:
        return shownSigns(toQt(displayText(row.otherCandidates())));
    }
}

/// The candidates stand below one another there.
QString AuditModel::toolTipOf(const AuditRow &row, int column) {
    return column == Others
               ? textOf(row, column).replace(QStringLiteral(" | "), QStringLiteral("\n"))
               : textOf(row, column);
}

QVariant AuditModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const AuditRow &row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return textOf(row, index.column());
    case Qt::ToolTipRole:
        // Tooltips guess whether they are rich text: evidence is escaped, so that it never is.
        return Qt::convertFromPlainText(toolTipOf(row, index.column()));
    case Qt::ForegroundRole:
        return row.isReplaced() ? QVariant() : QVariant(missingInk());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (index.column() == Number ? Qt::AlignRight : Qt::AlignLeft));
    default:
        return {};
    }
}

QVariant AuditModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (section == Number ? Qt::AlignRight : Qt::AlignLeft));
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Number:
        return tr("No.");
    case Original:
        return tr("Original Value");
    case New:
        return tr("New Value");
    case Extension:
        return tr("Extension");
    case State:
        return tr("State");
    case Score:
        return tr("Score");
    case PartUrl:
        return tr("Part's URL");
    default:
        return tr("Other Candidates");
    }
}

} // namespace nv
