#pragma once

#include "app/ui/Workbench.h"
#include "views/Gallery.h"

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
    void followTable();
    void makeThumbnailsOfAll();

    Workbench &m_bench;
    GalleryTab *m_gallery = nullptr;
};

} // namespace nv
