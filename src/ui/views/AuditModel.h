#pragma once

#include "views/Audit.h"

#include <QAbstractTableModel>

namespace nv {

/// The rows of an audit as Qt's views see them.
class AuditModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { Number, Original, New, Extension, State, Score, PartUrl, Others, Count };

    using QAbstractTableModel::QAbstractTableModel;

    void setRows(std::vector<AuditRow> rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    static QString textOf(const AuditRow &row, int column);
    static QString toolTipOf(const AuditRow &row, int column);

    std::vector<AuditRow> m_rows;
};

} // namespace nv
