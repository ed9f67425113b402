#include "support/TestProject.h"
#include "views/gallery/Gallery.h"
#include "views/rows/DateIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

namespace nv {
namespace {

/// One project of 100,000 pictures with thumbnails of 6,000 bytes for all measurements.
struct PictureProject {
    PictureProject() {
        ensureGalleryIndex(project.connection(), task);
        project.connection().exec(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
            "INSERT INTO URLs(URL, Host, CacheType, Category, ActionDateLocal, IsPicture, "
            "CacheFileExists, PictureWidth, PictureHeight, PARDValue, ThumbnailBLOB, "
            "ThumbnailMD5Hash) SELECT 'http://host/p' || i || '.jpg', 'host' || (i % 997) || "
            "'.example', 'IE CACHE', 'Pictures', 40000 + i / 1000.0, 1, 1, i % 1600, i % 1200, "
            "i % 101, randomblob(6000), hex(randomblob(16)) FROM n");
    }
    test::TestProject project;
    Unwatched task;
};

PictureProject &pictures() {
    static PictureProject made;
    return made;
}

/// From the command to the first page's tiles.
void loadTheGallery(benchmark::State &state) {
    PictureProject &made = pictures();
    Gallery gallery(made.project.connection(), made.project.log);
    for (auto _ : state)
        gallery.load(made.task);
    state.counters["rows"] = static_cast<double>(gallery.rowCount());
}
BENCHMARK(loadTheGallery)->Unit(benchmark::kMillisecond);

void loadTheGalleryByShape(benchmark::State &state) {
    PictureProject &made = pictures();
    Gallery gallery(made.project.connection(), made.project.log);
    gallery.pard.enablePARD = gallery.pard.showMediumPics = gallery.pard.showLargePics = true;
    gallery.pard.fromValue = 15;
    gallery.pard.toValue = 40;
    for (auto _ : state)
        gallery.load(made.task);
    state.counters["rows"] = static_cast<double>(gallery.rowCount());
}
BENCHMARK(loadTheGalleryByShape)->Unit(benchmark::kMillisecond);

/// Another page of 300 tiles with the bytes of all its thumbnails.
void turnAPage(benchmark::State &state) {
    PictureProject &made = pictures();
    Gallery gallery(made.project.connection(), made.project.log);
    gallery.load(made.task);
    int page = 0;
    for (auto _ : state) {
        page = (page + 97) % gallery.galleryADOPageCount();
        gallery.showPage(page + 1);
        for (const Tile &tile : gallery.gallery().tiles)
            benchmark::DoNotOptimize(
                thumbnailOf(made.project.connection(), made.project.log, UrlId{tile.urlID}));
    }
}
BENCHMARK(turnAPage)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
