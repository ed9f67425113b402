#include "ui/viewers/AuditModel.h"

#include "platform/qt/QtText.h"
#include "time/DateFormat.h"
#include "ui/widgets/ShownSigns.h"
#include "views/record/PartAlternatives.h"
#include "views/rows/CellText.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTextDocument>

#include <array>

namespace nv {

namespace {

using Column = AuditModel::Column;

constexpr std::array kClassic = {AuditModel::Number,    AuditModel::Original, AuditModel::New,
                                 AuditModel::Extension, AuditModel::State,    AuditModel::Score,
                                 AuditModel::PartUrl,   AuditModel::Others};

constexpr std::array kExact = {AuditModel::Number,  AuditModel::Element, AuditModel::Original,
                               AuditModel::Address, AuditModel::State,   AuditModel::Rule,
                               AuditModel::Record,  AuditModel::Time,    AuditModel::Apart,
                               AuditModel::Score,   AuditModel::PartUrl, AuditModel::Others,
                               AuditModel::Hash,    AuditModel::Cache,   AuditModel::Document};

bool isDark() {
    return QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
}

// Colours that stand out from the table's ground by 4.5:1 or more, light or dark.
QColor missingInk() {
    return isDark() ? QColor(0xff, 0x8a, 0x80) : QColor(0xb3, 0x1b, 0x1b);
}

/// Of a part that may be another one than the page meant.
QColor doubtfulInk() {
    return isDark() ? QColor(0xff, 0xb7, 0x4d) : QColor(0x8a, 0x4b, 0x00);
}

bool isRight(Column column) {
    return column == AuditModel::Number || column == AuditModel::Record ||
           column == AuditModel::Document;
}

QString shown(const std::string &text) {
    return shownSigns(toQt(displayText(text)));
}

QString idText(UrlId id) {
    return id == UrlId::none ? QString() : QString::number(number(id));
}

QString exactText(const PartNote &note, Column column) {
    switch (column) {
    case AuditModel::Element:
        return shown(note.element.empty() ? note.attribute : note.element + " " + note.attribute);
    case AuditModel::Address:
        return shown(note.address);
    case AuditModel::Rule:
        return shown(note.rule);
    case AuditModel::Record:
        return idText(note.part);
    case AuditModel::Time:
        return toQt(isoUtc(note.time));
    case AuditModel::Apart:
        return note.seconds ? toQt(timeApart(*note.seconds)) : QString();
    case AuditModel::Hash:
        return toQt(note.sha256);
    default:
        return idText(note.document);
    }
}

} // namespace

void AuditModel::setRows(std::vector<AuditRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    m_isExact = !m_rows.empty() && m_rows.front().note;
    endResetModel();
}

int AuditModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int AuditModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_isExact ? kExact.size() : kClassic.size());
}

AuditModel::Column AuditModel::columnAt(int section) const {
    const auto place = static_cast<std::size_t>(section);
    return m_isExact ? kExact.at(place) : kClassic.at(place);
}

QString AuditModel::textOf(const AuditRow &row, Column column) {
    switch (column) {
    case Number:
        return QString::number(row.number);
    case Original:
        return shown(row.originalValue);
    case New:
        return shown(row.newValue);
    case Extension:
        return shown(row.extension);
    case State:
        return shown(row.state);
    case Score:
        return toQt(displayText(row.score));
    case PartUrl:
        return shown(row.partUrl());
    case Others:
        return shown(row.otherCandidates());
    case Cache:
        return shown(row.cache);
    default:
        return row.note ? exactText(*row.note, column) : QString();
    }
}

/// The candidates stand below one another there.
QString AuditModel::toolTipOf(const AuditRow &row, Column column) {
    return column == Others
               ? textOf(row, column).replace(QStringLiteral(" | "), QStringLiteral("\n"))
               : textOf(row, column);
}

QVariant AuditModel::inkOf(const AuditRow &row) {
    if (!row.isReplaced())
        return missingInk();
    return row.note && isOfAnotherAddress(*row.note) ? QVariant(doubtfulInk()) : QVariant();
}

QVariant AuditModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const AuditRow &row = rowAt(index.row());
    const Column column = columnAt(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return textOf(row, column);
    case Qt::ToolTipRole:
        // Tooltips guess whether they are rich text: evidence is escaped, so that it never is.
        return Qt::convertFromPlainText(toolTipOf(row, column));
    case Qt::ForegroundRole:
        return inkOf(row);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (isRight(column) ? Qt::AlignRight : Qt::AlignLeft));
    default:
        return {};
    }
}

QVariant AuditModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const Column column = columnAt(section);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (isRight(column) ? Qt::AlignRight : Qt::AlignLeft));
    return role == Qt::DisplayRole ? headingOf(column) : QVariant();
}

QString AuditModel::headingOf(Column column) {
    switch (column) {
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
    case Element:
        return tr("Element");
    case Address:
        return tr("Address");
    case Rule:
        return tr("Found By");
    case Record:
        return tr("Record");
    case Time:
        return tr("Part's Time [UTC]");
    case Apart:
        return tr("From the Page");
    case Hash:
        return tr("SHA-256");
    case Cache:
        return tr("Part's Cache");
    case Document:
        return tr("Stands In");
    default:
        return tr("Other Candidates");
    }
}

} // namespace nv
