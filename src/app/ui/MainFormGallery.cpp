// The main window's part of the gallery.
#include "app/ThumbnailJob.h"
#include "app/ui/MainForm.h"
#include "platform/qt/QtText.h"
#include "views/ui/GalleryTab.h"
#include "views/ui/TableTab.h"

namespace nv {

void MainForm::connectGallery() {
    connect(m_gallery, &GalleryTab::urlChosen, this,
            [this](qint64 id) { m_table->grid().setCurrentUrl(UrlId{id}); });
    connect(m_gallery, &GalleryTab::tagsChanged, m_table, &TableTab::refreshRows);
    connect(m_gallery, &GalleryTab::thumbnailsWanted, this,
            [this] { run("MainForm.makeThumbnails()", [this] { makeThumbnailsOfAll(); }); });
    // What happens in the table is shown when the gallery comes up again.
    connect(m_table, &TableTab::statusChanged, this, [this] {
        if (m_gallery->isVisible())
            return;
        m_gallery->setQuery(fromQt(m_table->queryName()));
        m_gallery->setDirty();
    });
}

void MainForm::openGallery() {
    const ThisClass &state = m_program.thisClass;
    GallerySettings settings;
    settings.GalleryRecordsPerPage = state.GalleryRecordsPerPage;
    settings.media = {state.GalleryIncludePictures, state.GalleryIncludeHTML};
    m_gallery->openProject(m_program.thisClass.ProjectDB.connection(), m_program.log, settings,
                           state.ViewerThumbnailWidth);
}

void MainForm::makeThumbnailsOfAll() {
    if (!isProjectOpen())
        return;
    ThumbnailTotals totals;
    runTask({"MAKING THUMBNAILS", "Drawing pictures and web pages", "", ""},
            [&](TaskMonitor &task) {
                const ThumbnailTools tools(m_program, m_program.thisClass.TempFolderPath);
                totals = makeThumbnails(tools.context(), drawableIds(m_program, Redo::no), task);
            });
    m_gallery->setDirty();
    showNotice(tr("%L1 thumbnails made, %L2 drawings failed").arg(totals.made).arg(totals.failed));
}

} // namespace nv
