#pragma once

#include "import/HistoryFiles.h"
#include "views/overview/FoundTree.h"

#include <QAbstractItemModel>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace nv {

/// The tree "Files To Be Imported": the places of a scan, and below each kind its files. A tick on
/// a place is one on all files in it. A known format that isn't read yet is listed and can't be
/// ticked: nothing that was found is left out in silence.
class FoundFilesModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Column { Name, Files, Size, Note, Path, kColumns };

    using QAbstractItemModel::QAbstractItemModel;

    /// `tree` groups `files`.
    void setFiles(const HistoryFiles &files, const FoundTree &tree);
    /// Takes the files whose tick is off from the list. Files that aren't read yet stay: the
    /// summary tells of them.
    void prune(HistoryFiles &files) const;

    struct Total {
        std::size_t files = 0;
        std::uint64_t bytes = 0;
    };
    std::size_t found() const { return m_files.size(); }
    Total chosen() const;
    std::size_t notRead() const;
    /// Whether the line is a file and no place.
    bool isFile(const QModelIndex &index) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

  signals:
    void ticksChanged();

  private:
    static constexpr std::size_t kRoot = 0; ///< the invisible node above all

    struct File {
        std::filesystem::path path;
        HistoryFileType format = HistoryFileType::none;
        std::uint64_t size = 0; ///< bytes
        QString name;
        bool isRead = true; ///< there is a reader for it
    };
    /// A line. Children follow each other.
    struct Node {
        std::size_t parent = kRoot;
        int row = 0;
        std::size_t firstChild = 0;
        int children = 0;
        std::optional<std::size_t> file; ///< of m_files
        QString name;
        QString level; ///< what a place is: "Person"
        std::size_t files = 0;
        std::uint64_t bytes = 0;
        std::size_t tickable = 0; ///< files in it that are read
        std::size_t ticked = 0;
    };

    void addPlaces(std::size_t parent, const std::vector<FoundNode> &places);
    void addFiles(std::size_t parent, const FoundNode &kind);
    std::size_t nodeOf(const QModelIndex &index) const;
    QModelIndex indexOf(std::size_t node, int column) const;
    QString textOf(const Node &node, int column) const;
    void tick(std::size_t node, bool on);
    void tellBelow(std::size_t node);

    std::vector<File> m_files;
    std::vector<Node> m_nodes;
};

} // namespace nv
