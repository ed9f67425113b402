#pragma once

#include "app/ui/Workbench.h"

namespace nv {

class GalleryTab;

/// The gallery in the main window.
class GalleryPart final : public QObject {
    Q_OBJECT

  public:
    explicit GalleryPart(Workbench &bench);

  private:
    void open();
    void followTable();
    void makeThumbnailsOfAll();

    Workbench &m_bench;
    GalleryTab *m_gallery = nullptr;
};

} // namespace nv
