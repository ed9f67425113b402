#include "ui/views/PlacesModel.h"

#include "platform/qt/QtText.h"

#include <QFont>
#include <QLocale>

#include <algorithm>

namespace nv {

void PlacesModel::setPlaces(Places places) {
    beginResetModel();
    m_rows.clear();
    m_places = std::move(places);
    if (m_places.records > 0) {
        for (int place = 0; place < headings(); ++place)
            m_rows.push_back({nullptr, nullptr, place, {}});
        addRows(m_rows[0], m_places.evidence);
        addRows(m_rows[1], m_places.hosts);
        addRows(m_rows[2], m_places.kinds);
        if (!m_places.hashSets.empty())
            addRows(m_rows[3], m_places.hashSets);
    }
    endResetModel();
}

/// As deep as the trees are: five levels.
void PlacesModel::addRows(Row &parent, const std::vector<PlaceNode> &nodes) {
    parent.children.reserve(nodes.size());
    for (const PlaceNode &node : nodes) {
        m_rows.push_back({&node, &parent, static_cast<int>(parent.children.size()), {}});
        Row &row = m_rows.back();
        parent.children.push_back(&row);
        addRows(row, node.children);
    }
}

void PlacesModel::setChoice(const PlaceChoice &choice) {
    m_choice = choice;
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

void PlacesModel::setHashLimit(const HashLimit &limit) {
    m_hashLimit = limit;
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

/// Who has no hash sets isn't shown an empty tree of them.
int PlacesModel::headings() const {
    return m_places.hashSets.empty() ? 3 : 4;
}

const PlacesModel::Row *PlacesModel::rowAt(const QModelIndex &index) const {
    return index.isValid() ? static_cast<const Row *>(index.constInternalPointer()) : nullptr;
}

PlaceLimit PlacesModel::limitOf(const Row &row) {
    PlaceLimit limit;
    for (const Row *at = &row; at != nullptr && at->node != nullptr; at = at->parent)
        limit.terms.push_back(at->node->term);
    std::ranges::reverse(limit.terms);
    return limit;
}

std::optional<PlaceLimit> PlacesModel::limitAt(const QModelIndex &index) const {
    const Row *row = rowAt(index);
    return row != nullptr && row->node != nullptr ? std::optional(limitOf(*row)) : std::nullopt;
}

std::uint64_t PlacesModel::recordsAt(const QModelIndex &index) const {
    const Row *row = rowAt(index);
    return row == nullptr || row->node == nullptr ? m_places.records : row->node->records;
}

QModelIndex PlacesModel::index(int row, int column, const QModelIndex &parent) const {
    if (row < 0 || row >= rowCount(parent) || column < 0 || column >= kColumns)
        return {};
    const auto place = static_cast<std::size_t>(row);
    const Row *above = rowAt(parent);
    return createIndex(row, column, above == nullptr ? &m_rows[place] : above->children[place]);
}

QModelIndex PlacesModel::parent(const QModelIndex &child) const {
    const Row *row = rowAt(child);
    if (row == nullptr || row->parent == nullptr)
        return {};
    return createIndex(row->parent->place, 0, row->parent);
}

int PlacesModel::rowCount(const QModelIndex &parent) const {
    if (parent.column() > 0 || m_rows.empty())
        return 0;
    const Row *row = rowAt(parent);
    return row == nullptr ? headings() : static_cast<int>(row->children.size());
}

int PlacesModel::columnCount(const QModelIndex &) const {
    return kColumns;
}

QString PlacesModel::nameOf(const Row &row) const {
    if (row.node != nullptr)
        return toQt(placeName(row.node->term));
    switch (row.place) {
    case 0:
        return tr("Evidence");
    case 1:
        return tr("Hosts");
    case 2:
        return tr("Kinds");
    default:
        return tr("Hash Sets");
    }
}

bool PlacesModel::isChosen(const PlaceLimit &limit) const {
    if (!isOfHashSets(limit))
        return std::ranges::find(m_choice.only, limit) != m_choice.only.end();
    return hasTerm(m_hashLimit, limit.terms.back());
}

bool PlacesModel::isLeftOut(const PlaceLimit &limit) const {
    if (!isOfHashSets(limit))
        return std::ranges::find(m_choice.without, limit) != m_choice.without.end();
    return m_hashLimit.withoutKnown && isKnownFiles(limit);
}

QVariant PlacesModel::lookOf(const Row &row, int role) const {
    QFont font;
    const bool isHeading = row.node == nullptr;
    const PlaceLimit limit = isHeading ? PlaceLimit() : limitOf(row);
    const bool chosen = !isHeading && isChosen(limit);
    const bool leftOut = !isHeading && isLeftOut(limit);
    if (role == Qt::FontRole) {
        font.setBold(isHeading || chosen);
        font.setStrikeOut(leftOut);
        return isHeading || chosen || leftOut ? QVariant(font) : QVariant();
    }
    // For those who hear the tree.
    const QString name = nameOf(row);
    return chosen ? tr("%1, chosen").arg(name) : leftOut ? tr("%1, left out").arg(name) : name;
}

QVariant PlacesModel::data(const QModelIndex &index, int role) const {
    const Row *row = rowAt(index);
    if (row == nullptr)
        return {};
    if (role == Qt::FontRole || (role == Qt::AccessibleTextRole && index.column() == kPlace))
        return lookOf(*row, role);
    if (role == Qt::TextAlignmentRole && index.column() == kRecords)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    const bool isText =
        role == Qt::DisplayRole || (role == Qt::ToolTipRole && index.column() == kPlace);
    if (!isText)
        return {};
    if (index.column() == kPlace)
        return nameOf(*row);
    return row->node == nullptr ? QVariant()
                                : QLocale().toString(static_cast<qulonglong>(row->node->records));
}

QVariant PlacesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractItemModel::headerData(section, orientation, role);
    return section == kPlace ? tr("Place") : tr("Records");
}

} // namespace nv
