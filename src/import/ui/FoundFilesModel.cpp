#include "import/ui/FoundFilesModel.h"

#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "readers/Registry.h"
#include "views/CellText.h"

#include <QLocale>

#include <algorithm>

namespace nv {

void FoundFilesModel::setFiles(const HistoryFiles &files) {
    beginResetModel();
    m_rows.clear();
    for (const HistoryFile &file : files) {
        const Reader *reader = readerFor(file.HistoryFileType);
        const bool isRead = reader && reader->read;
        m_rows.push_back({file.FullPath, file.HistoryFileType, toQt(displayText(file.FileName)),
                          file.FileSize, reader ? toQt(reader->kind) : QString(), isRead, isRead});
    }
    endResetModel();
    emit ticksChanged();
}

void FoundFilesModel::prune(HistoryFiles &files) const {
    for (const Row &row : m_rows) {
        if (row.isRead && !row.valid)
            removeFile(files, row.path, row.format);
    }
}

int FoundFilesModel::validCount() const {
    return static_cast<int>(std::ranges::count(m_rows, true, &Row::valid));
}

int FoundFilesModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int FoundFilesModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QString FoundFilesModel::textOf(const Row &row, int column) {
    switch (column) {
    case FileName:
        return row.name;
    case Size:
        return QLocale().toString(static_cast<qulonglong>(row.size));
    case Type:
        return row.type;
    case Path:
        return toQt(displayText(nv::textOf(row.path), std::string::npos));
    case Note:
        return row.isRead ? QString() : tr("not read yet");
    default:
        return {};
    }
}

QVariant FoundFilesModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    const Row &row = m_rows.at(static_cast<std::size_t>(index.row()));
    if (role == Qt::DisplayRole)
        return textOf(row, index.column());
    if (role == Qt::CheckStateRole && index.column() == Valid)
        return row.valid ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::TextAlignmentRole && index.column() == Size)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant FoundFilesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QString headings[] = {tr("Valid"), tr("File Name"), tr("Size"),
                                tr("Type"),  tr("Path"),      tr("Note")};
    return headings[section];
}

Qt::ItemFlags FoundFilesModel::flags(const QModelIndex &index) const {
    if (!index.isValid() || !m_rows.at(static_cast<std::size_t>(index.row())).isRead)
        return Qt::ItemIsSelectable;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return index.column() == Valid ? flags | Qt::ItemIsUserCheckable : flags;
}

bool FoundFilesModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::CheckStateRole || !(flags(index) & Qt::ItemIsUserCheckable))
        return false;
    m_rows.at(static_cast<std::size_t>(index.row())).valid = value.toInt() == Qt::Checked;
    emit dataChanged(index, index, {role});
    emit ticksChanged();
    return true;
}

} // namespace nv
