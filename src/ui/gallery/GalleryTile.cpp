#include "ui/gallery/GalleryTile.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyle>

namespace nv {

namespace {

constexpr int kMargin = 6; ///< pixels around the picture
constexpr int kTick = 18;

} // namespace

QRect GalleryTile::pictureIn(const QRect &tile) const {
    return {tile.x() + (tile.width() - m_size.width()) / 2, tile.y() + kMargin, m_size.width(),
            m_size.height()};
}

QRect GalleryTile::tickIn(const QRect &tile) const {
    return {pictureIn(tile).bottomLeft() + QPoint(0, 4), QSize(kTick, kTick)};
}

QSize GalleryTile::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const {
    return {m_size.width() + 4 * kMargin,
            m_size.height() + 3 * kMargin + std::max(kTick, option.fontMetrics.height())};
}

void GalleryTile::paint(QPainter *painter, const QStyleOptionViewItem &option,
                        const QModelIndex &index) const {
    const QPalette &colours = option.palette;
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    if (isSelected)
        painter->fillRect(option.rect, colours.highlight());
    const QRect frame = pictureIn(option.rect);
    painter->fillRect(frame, colours.alternateBase());
    const auto picture = index.data(Qt::DecorationRole).value<QPixmap>();
    QRect place(QPoint(), picture.deviceIndependentSize().toSize());
    place.moveCenter(frame.center());
    painter->drawPixmap(place, picture);
    painter->setPen(colours.color(QPalette::Mid));
    painter->drawRect(frame.adjusted(-1, -1, 0, 0));

    QStyleOptionButton tick;
    tick.rect = tickIn(option.rect);
    tick.palette = colours;
    tick.state = QStyle::State_Enabled;
    const bool isTicked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    tick.state |= isTicked ? QStyle::State_On : QStyle::State_Off;
    painter->fillRect(tick.rect, colours.base());
    const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_IndicatorCheckBox, &tick, painter, option.widget);

    painter->setPen(colours.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    const QRect caption(tick.rect.right() + kMargin, tick.rect.top(), frame.width() - kTick,
                        tick.rect.height());
    painter->drawText(caption, Qt::AlignVCenter | Qt::AlignLeft, index.data().toString());
    painter->restore();
}

/// The tick takes clicks where it is drawn; Space works as in any list.
bool GalleryTile::editorEvent(QEvent *event, QAbstractItemModel *model,
                              const QStyleOptionViewItem &option, const QModelIndex &index) {
    if (event->type() == QEvent::KeyPress)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *click = dynamic_cast<QMouseEvent *>(event);
    if (!click || !tickIn(option.rect).contains(click->position().toPoint()))
        return false;
    const bool isTicked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, isTicked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

} // namespace nv
