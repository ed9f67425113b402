#pragma once

#include "views/gallery/Gallery.h"

#include <QAbstractListModel>
#include <QHash>
#include <QPixmap>
#include <QSize>

namespace nv {

/// The tiles of the gallery's page, with their thumbnails, which are read when they are looked at.
/// A tick is written to the project at once.
class GalleryModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    using QAbstractListModel::QAbstractListModel;

    /// All must stay until another call; without a gallery the model is empty.
    void setGallery(Gallery *gallery, SQLite::Database *project, FailureLog *log);
    /// The gallery has another page in hand.
    void reset();
    void setThumbnailSize(QSize size) { m_size = size; }
    qint64 idAt(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

  signals:
    void tagged(qint64 urlID, bool on);

  private:
    Tile &tile(const QModelIndex &index) const;
    QPixmap thumbnail(std::int32_t id) const;

    Gallery *m_gallery = nullptr;
    SQLite::Database *m_project = nullptr;
    FailureLog *m_log = nullptr;
    QSize m_size{120, 90};
    mutable QHash<std::int32_t, QPixmap> m_thumbnails; ///< of this page
};

} // namespace nv
