#pragma once

#include "views/table/UrlTable.h"

#include <QAbstractTableModel>
#include <QModelIndex>

namespace nv {

/// The URL table as Qt's views see it. A model column is the index of a `UrlColumn`, wherever the
/// examiner has moved it. The rows are those of the last rowsChanged(): while the table loads,
/// views go on with what they know and get empty cells.
class UrlModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Null when no project is open. The table must outlive the model's use of it.
    void setTable(UrlTable *table);
    UrlTable *table() const { return m_table; }
    /// The table's list has changed.
    void rowsChanged();
    /// Ticks have changed in rows that are still the same.
    void ticksChanged();
    /// Texts have changed in rows that are still the same.
    void cellsChanged();
    /// Flips the tick of one row and writes it at once.
    bool flipTag(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    static UrlColumn columnOf(int section) { return static_cast<UrlColumn>(section); }
    static int sectionOf(UrlColumn column) { return static_cast<int>(column); }

  private:
    QString cellText(std::size_t place, UrlColumn column) const;
    bool isRebuilt(std::size_t place, UrlColumn column) const;
    QString tagTip(std::size_t place) const;
    QString tipText(std::size_t place, UrlColumn column) const;
    QString spokenText(std::size_t place, UrlColumn column) const;

    UrlTable *m_table = nullptr;
    int m_rows = 0;
};

} // namespace nv
