#pragma once

#include <QStyledItemDelegate>

namespace nv {

/// Draws a tile: the thumbnail in a frame, tick and caption below.
class GalleryTile final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setThumbnailSize(QSize size) { m_size = size; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

  private:
    QRect pictureIn(const QRect &tile) const;
    QRect tickIn(const QRect &tile) const;

    QSize m_size{120, 90};
};

} // namespace nv
