#include "ui/viewers/LinksModel.h"

#include "platform/qt/QtText.h"
#include "ui/widgets/ShownSigns.h"
#include "views/rows/CellText.h"

#include <QTextDocument>
#include <fmt/format.h>

namespace nv {

namespace {

QString titleOf(int column) {
    switch (column) {
    case LinksModel::Record:
        return LinksModel::tr("URL ID");
    case LinksModel::Direction:
        return LinksModel::tr("Direction");
    case LinksModel::Kind:
        return LinksModel::tr("Kind");
    case LinksModel::VisitCount:
        return LinksModel::tr("Visit Count");
    case LinksModel::Visits:
        return LinksModel::tr("Visits");
    case LinksModel::Url:
        return LinksModel::tr("URL");
    default:
        return LinksModel::tr("Hashed URL");
    }
}

QString meaningOf(int column) {
    switch (column) {
    case LinksModel::Record:
        return LinksModel::tr("The record at the other end of the link");
    case LinksModel::Direction:
        return LinksModel::tr("Parent: the page that holds the link. Child: the record that the "
                              "link leads to");
    case LinksModel::Kind:
        return LinksModel::tr("What the other record is");
    case LinksModel::VisitCount:
        return LinksModel::tr("How many rows with that number count visits: 1 for each record "
                              "that does. It is no number of visits");
    case LinksModel::Visits:
        return LinksModel::tr("How often the other record says that it was visited; empty where "
                              "it doesn't say");
    case LinksModel::Url:
        return LinksModel::tr("The text of the link");
    default:
        return LinksModel::tr("The value that both ends have in common");
    }
}

} // namespace

void LinksModel::setRows(std::vector<LinkRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

int LinksModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int LinksModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : Count;
}

std::string LinksModel::textOf(const LinkRow &row, int column) {
    switch (column) {
    case Record:
        return fmt::format("{}", row.other);
    case Direction:
        return row.end == LinkEnd::parent ? "Parent" : "Child";
    case Kind:
        return row.kind;
    case VisitCount:
        return std::to_string(row.visitCount);
    case Visits:
        return row.visits ? std::to_string(*row.visits) : std::string();
    case Url:
        return row.url;
    default:
        return row.hashedURL;
    }
}

QVariant LinksModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const LinkRow &row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return shownSigns(toQt(displayText(textOf(row, index.column()))));
    case kWholeText: {
        const std::string text = textOf(row, index.column());
        return toQt(displayText(text, text.size()));
    }
    case Qt::ToolTipRole:
        // Tooltips guess whether they are rich text: evidence is escaped, so that it never is.
        return Qt::convertFromPlainText(shownSigns(toQt(displayText(textOf(row, index.column())))));
    default:
        return {};
    }
}

QVariant LinksModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return titleOf(section);
    case Qt::ToolTipRole:
        return meaningOf(section);
    default:
        return {};
    }
}

} // namespace nv
