#pragma once

#include <QStyledItemDelegate>

namespace nv {

/// A tick is set by the grid, which knows the other chosen rows: a press on it is one on its row.
class TickCell final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    bool editorEvent(QEvent *, QAbstractItemModel *, const QStyleOptionViewItem &,
                     const QModelIndex &) override {
        return false;
    }
};

} // namespace nv
