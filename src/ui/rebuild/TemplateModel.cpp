#include "ui/rebuild/TemplateModel.h"

#include "base/Files.h"
#include "platform/qt/QtText.h"

#include <QDateTime>
#include <QLocale>
#include <QTextDocument>

#include <algorithm>

namespace nv {

namespace {

bool isNumber(int column) {
    return column == TemplateModel::filesColumn || column == TemplateModel::sizeColumn;
}

QVariant alignment(int column) {
    return QVariant::fromValue(Qt::AlignVCenter |
                               (isNumber(column) ? Qt::AlignRight : Qt::AlignLeft));
}

QString changedText(const TemplateRow &row) {
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(row.changed.time_since_epoch()).count();
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

void TemplateModel::setRows(std::vector<TemplateRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    std::erase_if(m_tagged, [this](const auto &file) { return !placeOf(file); });
    endResetModel();
    emit tagsChanged();
}

std::optional<int> TemplateModel::placeOf(const std::filesystem::path &file) const {
    const auto found = std::find_if(m_rows.begin(), m_rows.end(),
                                    [&file](const TemplateRow &row) { return row.file == file; });
    if (found == m_rows.end())
        return std::nullopt;
    return static_cast<int>(found - m_rows.begin());
}

std::vector<std::filesystem::path> TemplateModel::tagged() const {
    std::vector<std::filesystem::path> files;
    for (const TemplateRow &row : m_rows)
        if (m_tagged.contains(row.file))
            files.push_back(row.file);
    return files;
}

void TemplateModel::flipTag(int place) {
    const auto &file = row(place).file;
    if (m_tagged.erase(file) == 0)
        m_tagged.insert(file);
    const QModelIndex cell = index(place, tagColumn);
    emit dataChanged(cell, cell, {Qt::CheckStateRole});
    emit tagsChanged();
}

int TemplateModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int TemplateModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : Count;
}

Qt::ItemFlags TemplateModel::flags(const QModelIndex &index) const {
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == tagColumn ? flags | Qt::ItemIsUserCheckable : flags;
}

QString TemplateModel::textOf(const TemplateRow &row, int column) {
    switch (column) {
    case tagColumn:
        return {};
    case nameColumn:
        return toQt(nv::textOf(row.file.stem()));
    case titleColumn:
        return row.isTemplate() ? toQt(row.webpageTitle) : tr("No template can be read from this.");
    case methodColumn:
        return row.method == "exact"     ? tr("Exact")
               : row.method == "classic" ? tr("Classic")
                                         : QString();
    case filesColumn:
        return QLocale().toString(static_cast<qulonglong>(row.files));
    case sizeColumn:
        return QLocale().toString(static_cast<qulonglong>(row.bytes));
    case changedColumn:
        return changedText(row);
    default:
        return toQt(nv::textOf(row.file));
    }
}

QVariant TemplateModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const TemplateRow &shown = row(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return textOf(shown, index.column());
    case Qt::ToolTipRole:
        if (index.column() == tagColumn)
            return tr("Ticked templates are the ones that are applied");
        // Tooltips guess whether they are rich text: titles of evidence never are.
        return Qt::convertFromPlainText(textOf(shown, index.column()));
    case Qt::CheckStateRole:
        if (index.column() == tagColumn)
            return m_tagged.contains(shown.file) ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::TextAlignmentRole:
        return alignment(index.column());
    default:
        return {};
    }
}

bool TemplateModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::CheckStateRole || data(index, role) == value)
        return false;
    flipTag(index.row());
    return true;
}

QVariant TemplateModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return alignment(section);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case tagColumn:
        return tr("Tick");
    case nameColumn:
        return tr("Name");
    case titleColumn:
        return tr("Page Title");
    case methodColumn:
        return tr("Method");
    case filesColumn:
        return tr("Files");
    case sizeColumn:
        return tr("Size (Bytes)");
    case changedColumn:
        return tr("Changed (UTC)");
    default:
        return tr("File Path");
    }
}

} // namespace nv
