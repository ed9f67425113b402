#pragma once

#include "import/HistoryFiles.h"

#include <QAbstractTableModel>

#include <vector>

namespace nv {

/// The grid "Files To Be Imported". A known format that isn't read yet is listed and can't be
/// ticked: nothing that was found is left out in silence.
class FoundFilesModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { Valid, FileName, Size, Type, Path, Note, kColumns };

    using QAbstractTableModel::QAbstractTableModel;

    void setFiles(const HistoryFiles &files);
    /// Takes the files whose tick is off from the list. Files that aren't read yet stay: the
    /// summary tells of them.
    void prune(HistoryFiles &files) const;
    int validCount() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

  signals:
    void ticksChanged();

  private:
    struct Row {
        std::filesystem::path path;
        HistoryFileType format = HistoryFileType::none;
        QString name;
        std::uint64_t size = 0;
        QString type;
        bool isRead = true; ///< there is a reader for it
        bool valid = true;
    };
    static QString textOf(const Row &row, int column);

    std::vector<Row> m_rows;
};

} // namespace nv
