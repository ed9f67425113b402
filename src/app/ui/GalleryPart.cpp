#include "app/ui/GalleryPart.h"

#include "app/ThumbnailJob.h"
#include "platform/qt/QtText.h"
#include "views/ui/GalleryTab.h"

namespace nv {

GalleryPart::GalleryPart(Workbench &bench)
    : m_bench(bench), m_gallery(new GalleryTab(bench.runTask, bench.examiner())) {
    bench.dataTabs->addTab(m_gallery, tr("Gallery"));
    TableTab &table = *bench.table;
    connect(m_gallery, &GalleryTab::urlChosen, &table,
            [&table](qint64 id) { table.grid().setCurrentUrl(UrlId{id}); });
    connect(m_gallery, &GalleryTab::tagChanged, &table, &TableTab::noteTick);
    connect(m_gallery, &GalleryTab::thumbnailsWanted, this, [this] {
        m_bench.run("MainForm.makeThumbnails()", [this] { makeThumbnailsOfAll(); });
    });
    connect(&table, &TableTab::statusChanged, this, &GalleryPart::followTable);
    connect(&bench, &Workbench::thumbnailsChanged, m_gallery, &GalleryTab::setDirty);
    connect(&bench, &Workbench::galleryOutdated, m_gallery, &GalleryTab::setOutdated);
    connect(&bench, &Workbench::optionsChanged, this, &GalleryPart::takeOptions);
    connect(m_gallery, &GalleryTab::choiceChanged, this,
            [this](const PARDClass &PARD, const GalleryMedia &media) {
                ThisClass &state = m_bench.program.thisClass;
                state.PARD = PARD;
                state.GalleryIncludePictures = media.GalleryIncludePictures;
                state.GalleryIncludeHTML = media.GalleryIncludeHTML;
            });
    connect(&bench, &Workbench::projectOpened, this, &GalleryPart::open);
    connect(&bench, &Workbench::projectClosing, m_gallery, &GalleryTab::closeProject);
}

/// What happens in the table is shown when the gallery comes up again.
void GalleryPart::followTable() {
    if (m_gallery->isVisible())
        return;
    m_gallery->setQuery(fromQt(m_bench.table->queryName()));
    m_gallery->setDirty();
}

GallerySettings GalleryPart::settings() const {
    const ThisClass &state = m_bench.program.thisClass;
    GallerySettings settings;
    settings.GalleryRecordsPerPage = state.GalleryRecordsPerPage;
    settings.media = {state.GalleryIncludePictures, state.GalleryIncludeHTML};
    return settings;
}

void GalleryPart::open() {
    m_gallery->openProject(m_bench.project(), m_bench.program.log, settings(),
                           m_bench.program.thisClass.ViewerThumbnailWidth);
    takeOptions();
}

void GalleryPart::takeOptions() {
    const ThisClass &state = m_bench.program.thisClass;
    m_gallery->setChoice(settings(), state.PARD, state.ViewerThumbnailWidth);
}

void GalleryPart::makeThumbnailsOfAll() {
    if (!m_bench.isProjectOpen() || !m_bench.mayWrite())
        return;
    Program &program = m_bench.program;
    ThumbnailTotals totals;
    m_bench.runTask({"MAKING THUMBNAILS", "Drawing pictures and web pages", "", ""},
                    [&](TaskMonitor &task) {
                        const ThumbnailTools tools(program, program.thisClass.TempFolderPath);
                        const auto ids = drawableIds(program, Redo::no, totals.unread);
                        makeThumbnails(tools.context(), ids, task, totals);
                    });
    emit m_bench.thumbnailsChanged();
    QString notice =
        tr("%L1 thumbnails made, %L2 drawings failed").arg(totals.made).arg(totals.failed);
    if (!totals.unread.empty())
        notice += tr(". %1").arg(toQt(noteOf(totals.unread)));
    m_bench.showNotice(notice);
}

} // namespace nv
