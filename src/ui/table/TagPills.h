#pragma once

#include "db/marks/RecordTags.h"

#include <QColor>
#include <QIcon>
#include <QStyledItemDelegate>

#include <string>
#include <vector>

namespace nv {

class UrlModel;

/// A tag's colour, and the one of black and white that can be read on it.
QColor tagColor(const NamedTag &tag);
QColor textOn(const QColor &color);
/// The name as an entry of a menu, where "&" is a mnemonic.
QString menuText(const NamedTag &tag);
/// A round spot of the colour, for lists and menus.
QIcon tagIcon(const NamedTag &tag);

/// Draws the cells of column "Tags": a pill of the tag's colour with its name for each tag of
/// the row, as many as there is room for.
class TagPills final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    /// The model must outlive it.
    explicit TagPills(const UrlModel &model, QObject *parent = nullptr)
        : QStyledItemDelegate(parent), m_model(model) {}

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

  private:
    std::vector<RowTag> tagsOf(const QModelIndex &index) const;

    const UrlModel &m_model;
};

} // namespace nv
