#include "ui/parts/GalleryPart.h"

#include "base/Text.h"
#include "db/sql/Damage.h"
#include "platform/qt/QtText.h"
#include "ui/gallery/GalleryTab.h"
#include "views/rows/UnreadRows.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::chrono::milliseconds kUntilRecount{200};

QString workName() {
    return GalleryPart::tr("Thumbnails");
}

} // namespace

GalleryPart::GalleryPart(Workbench &bench)
    : m_bench(bench), m_gallery(new GalleryTab(bench.runTask, bench.examiner())),
      m_background(bench) {
    bench.dataTabs->addTab(m_gallery, tr("Gallery"));
    TableTab &table = *bench.table;
    connect(m_gallery, &GalleryTab::urlChosen, &table,
            [&table](qint64 id) { table.grid().setCurrentUrl(UrlId{id}); });
    connect(m_gallery, &GalleryTab::tagChanged, &table, &TableTab::noteTick);
    connect(m_gallery, &GalleryTab::thumbnailsWanted, this,
            [this] { m_bench.run("MainForm.makeThumbnails()", [this] { switchDrawing(); }); });
    connect(m_gallery, &GalleryTab::lookedAt, this, &GalleryPart::count);
    m_recount.setSingleShot(true);
    m_recount.setInterval(kUntilRecount);
    connect(&m_recount, &QTimer::timeout, this, &GalleryPart::count);
    connect(&m_background, &BackgroundThumbnails::progressed, this,
            [this](const ThumbnailTotals &totals) {
                m_drawnSince = totals.made;
                m_gallery->setOutdated();
                showCount();
            });
    connect(&m_background, &BackgroundThumbnails::ended, this, &GalleryPart::tellEnd);
    m_gallery->setRowSource([this] { return rows(); });
    connect(&table, &TableTab::rowsLoaded, this,
            [this] { m_gallery->followTable(fromQt(m_bench.table->queryName())); });
    // Ticks of the table are shown when the gallery comes up again.
    connect(&table, &TableTab::statusChanged, this, [this] {
        if (!m_gallery->isVisible())
            m_gallery->setOutdated();
    });
    connect(&bench.limits, &Limits::changed, this, [this] {
        QStringList limits;
        for (const Limits::Chip &each : m_bench.limits.chips())
            limits += each.chip.text;
        m_gallery->showLimits(limits);
    });
    connect(&bench, &Workbench::thumbnailsChanged, this, [this] {
        m_isCounted = false;
        m_gallery->setDirty();
        count();
    });
    connect(&bench, &Workbench::thumbnailsWanted, this, &GalleryPart::startDrawing);
    connect(&bench, &Workbench::galleryOutdated, m_gallery, &GalleryTab::setOutdated);
    connect(&bench, &Workbench::optionsChanged, this, &GalleryPart::takeOptions);
    connect(m_gallery, &GalleryTab::choiceChanged, this,
            [this](const PardChoice &pard, const GalleryMedia &media) {
                ProgramState &state = m_bench.program.state;
                state.pard = pard;
                state.galleryIncludePictures = media.galleryIncludePictures;
                state.galleryIncludeHTML = media.galleryIncludeHTML;
            });
    connect(&bench, &Workbench::projectOpened, this, &GalleryPart::open);
    connect(&bench, &Workbench::projectClosing, m_gallery, &GalleryTab::closeProject);
}

/// Whatever limits the table limits the gallery. While nothing does, all of the query's rows are
/// in it.
std::shared_ptr<const FoundIds> GalleryPart::rows() const {
    const UrlTable *table = m_bench.table->table();
    if (!table || table->hiddenCount() == 0)
        return nullptr;
    auto rows = std::make_shared<FoundIds>(table->ids());
    std::ranges::sort(*rows);
    return rows;
}

GallerySettings GalleryPart::settings() const {
    const ProgramState &state = m_bench.program.state;
    GallerySettings settings;
    settings.galleryRecordsPerPage = state.galleryRecordsPerPage;
    settings.media = {state.galleryIncludePictures, state.galleryIncludeHTML};
    return settings;
}

void GalleryPart::open() {
    m_isCounted = false;
    m_counted = {};
    m_gallery->openProject(m_bench.project(), m_bench.program.log, settings(),
                           m_bench.program.state.viewerThumbnailWidth);
    takeOptions();
    count();
}

void GalleryPart::takeOptions() {
    const ProgramState &state = m_bench.program.state;
    m_gallery->setChoice(settings(), state.pard, state.viewerThumbnailWidth);
}

void GalleryPart::switchDrawing() {
    if (m_background.isRunning())
        return m_background.stop();
    startDrawing();
}

void GalleryPart::startDrawing() {
    if (m_background.isRunning())
        return;
    if (!m_bench.isProjectOpen() || !m_bench.mayWrite())
        return;
    takeCount();
    m_background.start();
    showCount();
}

/// Counting reads the whole table, so it isn't done for a tab that nobody looks at.
void GalleryPart::count() {
    if (!m_bench.isProjectOpen() || !m_gallery->isVisible() || m_background.isRunning())
        return;
    m_recount.start(); // the command doesn't run while a task has the project
    m_bench.run("MainForm.countThumbnails()", [this] {
        m_recount.stop();
        takeCount();
    });
    showCount();
}

void GalleryPart::takeCount() {
    const std::int64_t last = lastRow(m_bench.program);
    const bool isKnown = (m_isCounted && last == m_countedTo) ||
                         unlessDamaged([this] { m_counted = countThumbnails(m_bench.program); });
    if (!isKnown)
        m_counted = {};
    m_isCounted = true;
    m_countedTo = last;
    m_drawnSince = 0;
}

void GalleryPart::showCount() {
    const qint64 drawn = m_counted.drawn + static_cast<qint64>(m_drawnSince);
    m_gallery->showDrawn(drawn, m_counted.drawable, m_background.isRunning());
    if (m_background.isRunning() && m_counted.drawable > 0)
        emit m_bench.workProgressed(workName(), static_cast<double>(drawn) /
                                                    static_cast<double>(m_counted.drawable));
}

void GalleryPart::tellEnd(const ThumbnailTotals &totals) {
    emit m_bench.workEnded(workName());
    emit m_bench.thumbnailsChanged();
    QString notice = totals.failed == 0 ? tr("%1 made").arg(toQt(counted(totals.made, "thumbnail")))
                                        : tr("%1 made, %2 failed")
                                              .arg(toQt(counted(totals.made, "thumbnail")),
                                                   toQt(counted(totals.failed, "drawing")));
    if (!totals.unread.empty())
        notice += tr(". %1").arg(toQt(noteOf(totals.unread)));
    m_bench.showNotice(notice);
}

} // namespace nv
