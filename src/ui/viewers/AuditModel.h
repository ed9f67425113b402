#pragma once

// Read first: moc takes <compare>, which dates include, only behind other standard headers.
#include "db/records/UrlRecord.h"
#include "views/record/Audit.h"

#include <QAbstractTableModel>

namespace nv {

/// The rows of an audit as Qt's views see them.
class AuditModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    /// What a column holds. Pages that were rebuilt exactly have other columns than those of the
    /// classic rules: which ones, and where, columnAt() tells.
    enum Column {
        Number,
        Original,
        New,
        Extension,
        State,
        Score,
        PartUrl,
        Others,
        Element,
        Address,
        Rule,
        Record,
        Time,
        Apart,
        Hash,
        Cache,
        Document,
        Count
    };
    using QAbstractTableModel::QAbstractTableModel;

    void setRows(std::vector<AuditRow> rows);
    const AuditRow &rowAt(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }
    Column columnAt(int section) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    static QString textOf(const AuditRow &row, Column column);
    static QString toolTipOf(const AuditRow &row, Column column);
    static QVariant inkOf(const AuditRow &row);
    static QString headingOf(Column column);

    std::vector<AuditRow> m_rows;
    bool m_isExact = false;
};

} // namespace nv
