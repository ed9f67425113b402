#include "ui/gallery/GalleryModel.h"

#include "db/sql/ReadOnlyConnection.h"
#include "platform/qt/QtText.h"
#include "ui/widgets/ShownSigns.h"
#include "views/rows/CellText.h"
#include "views/tags/Tagging.h"

#include <QBuffer>
#include <QImageReader>
#include <QTextDocument>

namespace nv {

namespace {

/// A stored thumbnail is some KB; what claims to be larger than this isn't one.
constexpr int kMegabytes = 16;

QString toolTipOf(const Tile &tile) {
    QString text = shownSigns(toQt(displayText(tile.toolTip)));
    if (tile.isPicture)
        text += GalleryModel::tr("\n%1 by %2 pixels, P.A.R.D. %3")
                    .arg(tile.pictureWidth)
                    .arg(tile.pictureHeight)
                    .arg(tile.pardValue);
    if (!tile.rebuiltMethod.empty())
        text += GalleryModel::tr("\nRebuilt: %1").arg(toQt(displayText(tile.rebuiltMethod)));
    // Tooltips guess whether they are rich text: evidence is escaped, so that it never is.
    return Qt::convertFromPlainText(text);
}

} // namespace

void GalleryModel::setGallery(Gallery *gallery, SQLite::Database *project, FailureLog *log) {
    m_gallery = gallery;
    m_project = project;
    m_log = log;
    reset();
}

void GalleryModel::reset() {
    beginResetModel();
    m_thumbnails.clear();
    endResetModel();
}

Tile &GalleryModel::tile(const QModelIndex &index) const {
    return m_gallery->gallery().tiles.item(static_cast<std::size_t>(index.row()) + 1);
}

qint64 GalleryModel::idAt(const QModelIndex &index) const {
    return tile(index).urlID;
}

int GalleryModel::rowCount(const QModelIndex &parent) const {
    if (parent.isValid() || !m_gallery)
        return 0;
    return static_cast<int>(m_gallery->gallery().tiles.count());
}

QVariant GalleryModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Tile &shown = tile(index);
    switch (role) {
    case Qt::DisplayRole:
        return toQt(captionOf(shown));
    case Qt::ToolTipRole:
        return toolTipOf(shown);
    case Qt::DecorationRole:
        return thumbnail(shown.urlID);
    case Qt::CheckStateRole:
        return shown.tagged ? Qt::Checked : Qt::Unchecked;
    default:
        return {};
    }
}

bool GalleryModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::CheckStateRole || !index.isValid() || !m_project || isReadOnly(*m_project))
        return false;
    Tile &changed = tile(index);
    const bool wanted = value.toInt() == Qt::Checked;
    if (!setTagged(*m_project, *m_log, UrlId{changed.urlID}, wanted))
        return false;
    changed.tagged = wanted;
    emit dataChanged(index, index, {role});
    emit tagged(changed.urlID, wanted);
    return true;
}

Qt::ItemFlags GalleryModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    const bool ticks = m_project && !isReadOnly(*m_project);
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable |
           (ticks ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}

QPixmap GalleryModel::thumbnail(std::int32_t id) const {
    const auto known = m_thumbnails.constFind(id);
    if (known != m_thumbnails.constEnd())
        return *known;
    const Bytes stored = thumbnailOf(*m_project, *m_log, UrlId{id});
    const std::string_view raw = ByteView(stored).raw();
    QByteArray bytes(raw.data(), static_cast<qsizetype>(raw.size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    QImageReader::setAllocationLimit(kMegabytes);
    QImage image = reader.read();
    if (!image.isNull())
        image = image.scaled(m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return *m_thumbnails.insert(id, QPixmap::fromImage(image));
}

} // namespace nv
