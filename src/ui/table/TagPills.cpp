#include "ui/table/TagPills.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "ui/table/UrlModel.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace nv {

namespace {

constexpr int kPadding = 6; // pixels, on both sides of a name
constexpr int kGap = 4;
constexpr int kMargin = 3;

QString nameOf(const RowTag &each) {
    return toQt(displayText(each.tag.name));
}

int pillWidth(const QFontMetrics &metrics, const QString &name) {
    return metrics.horizontalAdvance(name) + 2 * kPadding;
}

/// The luminance by which contrast of texts is reckoned, 0 to 1.
double luminance(const QColor &color) {
    const auto linear = [](double part) {
        constexpr double kDark = 0.03928;
        return part <= kDark ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

} // namespace

QColor tagColor(const NamedTag &tag) {
    return QColor(toQt(tag.color));
}

QColor textOn(const QColor &color) {
    // Where both have the same contrast.
    constexpr double kMiddle = 0.179;
    return luminance(color) > kMiddle ? Qt::black : Qt::white;
}

QString menuText(const NamedTag &tag) {
    constexpr std::size_t kMost = 60; // characters
    return toQt(displayText(tag.name, kMost)).replace(u'&', QStringLiteral("&&"));
}

QIcon tagIcon(const NamedTag &tag) {
    constexpr int kSize = 16;
    QPixmap picture(kSize, kSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    // Of a colour near that of the list only the ring is seen.
    painter.setPen(QPen(QColor(128, 128, 128), 1));
    painter.setBrush(tagColor(tag));
    painter.drawEllipse(QRectF(2, 2, kSize - 4, kSize - 4));
    QIcon icon(picture);
    icon.addPixmap(picture, QIcon::Selected); // or the colour would be another one there
    return icon;
}

std::vector<RowTag> TagPills::tagsOf(const QModelIndex &index) const {
    UrlTable *table = m_model.table();
    return table ? table->tagsOf(static_cast<std::size_t>(index.row())) : std::vector<RowTag>();
}

void TagPills::paint(QPainter *painter, const QStyleOptionViewItem &option,
                     const QModelIndex &index) const {
    QStyleOptionViewItem empty = option;
    initStyleOption(&empty, index);
    empty.text.clear();
    const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &empty, painter, option.widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setClipRect(option.rect);
    int left = option.rect.left() + kMargin;
    for (const RowTag &each : tagsOf(index)) {
        const int room = option.rect.right() - kMargin - left;
        if (room < 2 * kPadding)
            break;
        const QString name = nameOf(each);
        const int width = std::min(room, pillWidth(option.fontMetrics, name));
        const QRect pill(left, option.rect.top() + 2, width, option.rect.height() - 4);
        const QColor color = tagColor(each.tag);
        painter->setPen(QPen(option.palette.color(QPalette::Mid), 1));
        painter->setBrush(color);
        painter->drawRoundedRect(QRectF(pill).adjusted(0.5, 0.5, -0.5, -0.5), pill.height() / 2.0,
                                 pill.height() / 2.0);
        painter->setPen(textOn(color));
        const int inner = width - 2 * kPadding;
        painter->drawText(pill, Qt::AlignCenter,
                          option.fontMetrics.elidedText(name, Qt::ElideRight, inner + 1));
        left += width + kGap;
    }
    painter->restore();
}

QSize TagPills::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const {
    int width = 2 * kMargin + 2;
    for (const RowTag &each : tagsOf(index))
        width += pillWidth(option.fontMetrics, nameOf(each)) + kGap;
    return {width, QStyledItemDelegate::sizeHint(option, index).height()};
}

} // namespace nv
