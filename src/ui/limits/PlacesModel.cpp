#include "ui/limits/PlacesModel.h"

#include "platform/qt/QtText.h"
#include "ui/table/TagPills.h"

#include <QFont>
#include <QLocale>

#include <algorithm>

namespace nv {

namespace {

/// In the order in which they stand; hash sets come last, since they may be missing.
enum Heading { kEvidence, kHosts, kKinds, kTags, kHashSets, kHeadings };

} // namespace

void PlacesModel::setPlaces(Places places) {
    beginResetModel();
    m_rows.clear();
    m_tagRows.clear();
    m_tagNodes.clear();
    m_places = std::move(places);
    if (m_places.records > 0) {
        for (int place = 0; place < headings(); ++place)
            m_rows.push_back({nullptr, nullptr, place, {}});
        addRows(m_rows[kEvidence], m_places.evidence);
        addRows(m_rows[kHosts], m_places.hosts);
        addRows(m_rows[kKinds], m_places.kinds);
        putTags(m_places.tags);
        if (!m_places.hashSets.empty())
            addRows(m_rows[kHashSets], m_places.hashSets);
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

QModelIndex PlacesModel::tagsHeading() const {
    return m_rows.empty() ? QModelIndex() : createIndex(kTags, 0, &m_rows[kTags]);
}

/// Rows come and go at the end, and then all of them may be others.
void PlacesModel::putTags(const std::vector<PlaceNode> &nodes) {
    Row &heading = m_rows[kTags];
    while (m_tagRows.size() > nodes.size()) {
        heading.children.pop_back();
        m_tagRows.pop_back();
        m_tagNodes.pop_back();
    }
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        if (at < m_tagNodes.size()) {
            m_tagNodes[at] = nodes[at];
            continue;
        }
        m_tagNodes.push_back(nodes[at]);
        m_tagRows.push_back({&m_tagNodes.back(), &heading, static_cast<int>(at), {}});
        heading.children.push_back(&m_tagRows.back());
    }
}

void PlacesModel::setTags(std::vector<NamedTag> tags, const std::vector<PlaceNode> &nodes) {
    m_tags = std::move(tags);
    m_tagIcons.clear();
    for (const NamedTag &tag : m_tags)
        m_tagIcons.push_back(tagIcon(tag));
    const QModelIndex heading = tagsHeading();
    if (!heading.isValid())
        return;
    const int before = rowCount(heading);
    const auto now = static_cast<int>(nodes.size());
    if (now > before)
        beginInsertRows(heading, before, now - 1);
    else if (now < before)
        beginRemoveRows(heading, now, before - 1);
    putTags(nodes);
    if (now > before)
        endInsertRows();
    else if (now < before)
        endRemoveRows();
    if (now > 0)
        emit dataChanged(index(0, 0, heading), index(now - 1, kColumns - 1, heading));
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

void PlacesModel::setTagLimit(const TagLimit &limit) {
    m_tagLimit = limit;
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

/// Who has no hash sets isn't shown an empty tree of them.
int PlacesModel::headings() const {
    return m_places.hashSets.empty() ? kHashSets : kHeadings;
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
    case kEvidence:
        return tr("Evidence");
    case kHosts:
        return tr("Hosts");
    case kKinds:
        return tr("Kinds");
    case kTags:
        return tr("Tags");
    default:
        return tr("Hash Sets");
    }
}

bool PlacesModel::isChosen(const PlaceLimit &limit) const {
    if (isOfTags(limit))
        return hasAll(m_tagLimit, tagLimitOf(m_tags, limit.terms.back().value));
    if (!isOfHashSets(limit))
        return std::ranges::find(m_choice.only, limit) != m_choice.only.end();
    return hasTerm(m_hashLimit, limit.terms.back());
}

PlaceChoice PlacesModel::chosenWith(const PlaceLimit &limit) const {
    if (!isChosen(limit))
        return {{limit}, {}};
    if (!isOfTags(limit) && !isOfHashSets(limit))
        return {m_choice.only, {}};
    PlaceChoice places;
    const auto add = [&](const Row &row) {
        const PlaceLimit other = row.node == nullptr ? PlaceLimit() : limitOf(row);
        const bool isAlike = row.node != nullptr && isOfTags(other) == isOfTags(limit) &&
                             isOfHashSets(other) == isOfHashSets(limit);
        if (isAlike && isChosen(other))
            places.only.push_back(other);
    };
    std::ranges::for_each(m_rows, add);
    std::ranges::for_each(m_tagRows, add);
    return places;
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

/// A tag's colour; those without any have none.
QIcon PlacesModel::iconOf(const Row &row) const {
    const auto place = static_cast<std::size_t>(row.place);
    const bool isTag = row.node != nullptr && row.node->term.field == PlaceField::Tag;
    return isTag && place < m_tagIcons.size() ? m_tagIcons[place] : QIcon();
}

QVariant PlacesModel::data(const QModelIndex &index, int role) const {
    const Row *row = rowAt(index);
    if (row == nullptr)
        return {};
    if (role == Qt::FontRole || (role == Qt::AccessibleTextRole && index.column() == kPlace))
        return lookOf(*row, role);
    if (role == Qt::DecorationRole && index.column() == kPlace) {
        const QIcon icon = iconOf(*row);
        return icon.isNull() ? QVariant() : QVariant(icon);
    }
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
