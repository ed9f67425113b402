#pragma once

#include "views/links/LinkList.h"

#include <QAbstractTableModel>

namespace nv {

/// The pairs of one record as Qt's views see them.
class LinksModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { Record, Direction, Kind, VisitCount, Visits, Url, Hash, Count };
    /// The whole text of a cell on one line, however long.
    static constexpr int kWholeText = Qt::UserRole;

    using QAbstractTableModel::QAbstractTableModel;

    void setRows(std::vector<LinkRow> rows);
    UrlId otherOf(int row) const { return m_rows.at(static_cast<std::size_t>(row)).other; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    static std::string textOf(const LinkRow &row, int column);

    std::vector<LinkRow> m_rows;
};

} // namespace nv
