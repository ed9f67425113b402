#pragma once

#include "ui/parts/BackgroundThumbnails.h"
#include "ui/parts/Workbench.h"
#include "views/gallery/Gallery.h"

#include <QTimer>

namespace nv {

class GalleryTab;

/// The gallery in the main window.
class GalleryPart final : public QObject {
    Q_OBJECT

  public:
    explicit GalleryPart(Workbench &bench);

  private:
    GallerySettings settings() const;
    void open();
    void takeOptions();
    std::shared_ptr<const FoundIds> rows() const;
    void switchDrawing();
    void startDrawing();
    void count();
    void takeCount();
    void showCount();
    void tellEnd(const ThumbnailTotals &totals);

    Workbench &m_bench;
    GalleryTab *m_gallery = nullptr;
    BackgroundThumbnails m_background;
    QTimer m_recount;
    ThumbnailCount m_counted;       ///< before the drawing that runs
    std::uint64_t m_drawnSince = 0; ///< by it
    bool m_isCounted = false;
    std::int64_t m_countedTo = 0; ///< the last row
};

} // namespace nv
