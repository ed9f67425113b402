#pragma once

#include "rebuild/TemplateList.h"

#include <QAbstractTableModel>

#include <optional>
#include <set>

namespace nv {

/// The templates of a folder as Qt's views see them, with a tick each.
class TemplateModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column {
        tagColumn,
        nameColumn,
        titleColumn,
        methodColumn,
        filesColumn,
        sizeColumn,
        changedColumn,
        filePathColumn,
        Count
    };

    using QAbstractTableModel::QAbstractTableModel;

    /// Ticks of files that are still there stay.
    void setRows(std::vector<TemplateRow> rows);
    const TemplateRow &row(int place) const { return m_rows.at(static_cast<std::size_t>(place)); }
    std::optional<int> placeOf(const std::filesystem::path &file) const;
    /// In the order of the rows.
    std::vector<std::filesystem::path> tagged() const;
    void flipTag(int place);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  signals:
    void tagsChanged();

  private:
    static QString textOf(const TemplateRow &row, int column);

    std::vector<TemplateRow> m_rows;
    std::set<std::filesystem::path> m_tagged;
};

} // namespace nv
