#include "ui/import/FoundFilesModel.h"

#include "base/Files.h"
#include "import/UntickedFiles.h"
#include "platform/qt/QtText.h"
#include "readers/Registry.h"
#include "views/rows/CellText.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

QString levelWord(PlaceField field) {
    switch (field) {
    case PlaceField::Evidence:
        return FoundFilesModel::tr("Evidence");
    case PlaceField::Person:
        return FoundFilesModel::tr("Person");
    case PlaceField::Browser:
        return FoundFilesModel::tr("Browser");
    case PlaceField::Profile:
        return FoundFilesModel::tr("Profile");
    default:
        return FoundFilesModel::tr("Kind of file");
    }
}

QString numberText(std::uint64_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

} // namespace

void FoundFilesModel::setFiles(const HistoryFiles &files, const FoundTree &tree) {
    beginResetModel();
    m_files.clear();
    m_files.reserve(files.count());
    for (const HistoryFile &file : files) {
        const Reader *reader = readerFor(file.historyFileType);
        m_files.push_back({file.fullPath, file.historyFileType, file.fileSize,
                           toQt(displayText(file.fileName)), reader && reader->read});
    }
    m_nodes.clear();
    m_nodes.emplace_back();
    addPlaces(kRoot, tree.evidence);
    endResetModel();
    emit ticksChanged();
}

/// All of a level before what lies below it, so that they follow each other.
void FoundFilesModel::addPlaces(std::size_t parent, const std::vector<FoundNode> &places) {
    const std::size_t first = m_nodes.size();
    m_nodes[parent].firstChild = first;
    m_nodes[parent].children = static_cast<int>(places.size());
    for (const FoundNode &place : places) {
        Node node;
        node.parent = parent;
        node.row = static_cast<int>(m_nodes.size() - first);
        node.name = toQt(placeName(place.term));
        node.level = levelWord(place.term.field);
        node.files = place.files;
        node.bytes = place.bytes;
        node.tickable = node.ticked = place.files - place.notRead;
        m_nodes[parent].files += parent == kRoot ? place.files : 0;
        m_nodes[parent].tickable += parent == kRoot ? node.tickable : 0;
        m_nodes.push_back(std::move(node));
    }
    m_nodes[kRoot].ticked = m_nodes[kRoot].tickable;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (places[i].artefacts.empty())
            addPlaces(first + i, places[i].children);
        else
            addFiles(first + i, places[i]);
    }
}

void FoundFilesModel::addFiles(std::size_t parent, const FoundNode &kind) {
    m_nodes[parent].firstChild = m_nodes.size();
    m_nodes[parent].children = static_cast<int>(kind.artefacts.size());
    int row = 0;
    for (const std::size_t number : kind.artefacts) {
        Node node;
        node.parent = parent;
        node.row = row++;
        node.file = number;
        node.files = 1;
        node.bytes = m_files.at(number).size;
        node.tickable = node.ticked = m_files.at(number).isRead ? 1 : 0;
        m_nodes.push_back(std::move(node));
    }
}

void FoundFilesModel::prune(HistoryFiles &files) const {
    FilesByFormat unticked;
    for (const Node &node : m_nodes)
        if (node.file && node.tickable > node.ticked)
            unticked.emplace(m_files.at(*node.file).path, m_files.at(*node.file).format);
    removeFiles(files, unticked);
}

FoundFilesModel::Total FoundFilesModel::chosen() const {
    Total total;
    for (const Node &node : m_nodes)
        if (node.file && node.ticked > 0) {
            ++total.files;
            total.bytes += node.bytes;
        }
    return total;
}

std::size_t FoundFilesModel::notRead() const {
    return static_cast<std::size_t>(std::ranges::count(m_files, false, &File::isRead));
}

bool FoundFilesModel::isFile(const QModelIndex &index) const {
    return index.isValid() && m_nodes.at(nodeOf(index)).file.has_value();
}

std::size_t FoundFilesModel::nodeOf(const QModelIndex &index) const {
    return index.isValid() ? static_cast<std::size_t>(index.internalId()) : kRoot;
}

QModelIndex FoundFilesModel::indexOf(std::size_t node, int column) const {
    return node == kRoot ? QModelIndex() : createIndex(m_nodes.at(node).row, column, node);
}

QModelIndex FoundFilesModel::index(int row, int column, const QModelIndex &parent) const {
    if (row < 0 || row >= rowCount(parent) || column < 0 || column >= kColumns)
        return {};
    return createIndex(row, column,
                       m_nodes.at(nodeOf(parent)).firstChild + static_cast<std::size_t>(row));
}

QModelIndex FoundFilesModel::parent(const QModelIndex &index) const {
    return index.isValid() ? indexOf(m_nodes.at(nodeOf(index)).parent, 0) : QModelIndex();
}

int FoundFilesModel::rowCount(const QModelIndex &parent) const {
    if (m_nodes.empty() || parent.column() > 0)
        return 0;
    return m_nodes.at(nodeOf(parent)).children;
}

int FoundFilesModel::columnCount(const QModelIndex &) const {
    return kColumns;
}

QString FoundFilesModel::textOf(const Node &node, int column) const {
    const File *file = node.file ? &m_files.at(*node.file) : nullptr;
    const std::size_t unread = node.files - node.tickable;
    switch (column) {
    case Name:
        return file ? file->name : node.name;
    case Files:
        return file ? QString() : numberText(node.files);
    case Size:
        return numberText(node.bytes);
    case Note:
        return unread == 0            ? QString()
               : unread == node.files ? tr("not read yet")
                                      : tr("%L1 not read yet").arg(unread);
    case Path:
        return file ? toQt(displayText(nv::textOf(file->path), std::string::npos)) : QString();
    default:
        return {};
    }
}

QVariant FoundFilesModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    const Node &node = m_nodes.at(nodeOf(index));
    if (role == Qt::DisplayRole)
        return textOf(node, index.column());
    if (role == Qt::CheckStateRole && index.column() == Name && node.tickable > 0)
        return node.ticked == 0              ? Qt::Unchecked
               : node.ticked < node.tickable ? Qt::PartiallyChecked
                                             : Qt::Checked;
    if (role == Qt::TextAlignmentRole && (index.column() == Size || index.column() == Files))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::AccessibleTextRole && index.column() == Name && !node.file)
        return tr("%1: %2").arg(node.level, node.name);
    return {};
}

QVariant FoundFilesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole && (section == Size || section == Files))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    const std::array<QString, kColumns> headings = {tr("Found"), tr("Files"), tr("Bytes"),
                                                    tr("Note"), tr("Path")};
    return headings.at(static_cast<std::size_t>(section));
}

Qt::ItemFlags FoundFilesModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool canBeTicked = index.column() == Name && m_nodes.at(nodeOf(index)).tickable > 0;
    return canBeTicked ? flags | Qt::ItemIsUserCheckable : flags;
}

bool FoundFilesModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::CheckStateRole || !(flags(index) & Qt::ItemIsUserCheckable))
        return false;
    tick(nodeOf(index), value.toInt() == Qt::Checked);
    emit ticksChanged();
    return true;
}

/// All below it follow; all above it count anew.
void FoundFilesModel::tick(std::size_t node, bool on) {
    const std::size_t before = m_nodes.at(node).ticked;
    std::vector<std::size_t> waiting{node};
    while (!waiting.empty()) {
        Node &each = m_nodes.at(waiting.back());
        waiting.pop_back();
        each.ticked = on ? each.tickable : 0;
        for (std::size_t child = 0; child < static_cast<std::size_t>(each.children); ++child)
            waiting.push_back(each.firstChild + child);
    }
    const std::size_t after = m_nodes.at(node).ticked;
    tellBelow(node);
    for (std::size_t at = node; at != kRoot;) {
        emit dataChanged(indexOf(at, Name), indexOf(at, Name), {Qt::CheckStateRole});
        at = m_nodes.at(at).parent;
        m_nodes.at(at).ticked += after;
        m_nodes.at(at).ticked -= before;
    }
}

void FoundFilesModel::tellBelow(std::size_t node) {
    const Node &above = m_nodes.at(node);
    if (above.children == 0)
        return;
    const auto count = static_cast<std::size_t>(above.children);
    emit dataChanged(indexOf(above.firstChild, Name), indexOf(above.firstChild + count - 1, Name),
                     {Qt::CheckStateRole});
    for (std::size_t child = 0; child < count; ++child)
        tellBelow(above.firstChild + child);
}

} // namespace nv
