#include "ui/parts/PictureFeed.h"

#include "app/jobs/RecordContent.h"
#include "app/program/DrawingTools.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "platform/qt/QtText.h"
#include "ui/viewers/PicturePane.h"
#include "views/rows/CellText.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kDrawingTimeout{30};
/// The two next rows, and the one that the examiner comes from.
constexpr std::array<int, 3> kAhead = {1, 2, -1};
constexpr std::size_t kMostKept = 8;
constexpr qsizetype kMostKeptBytes = qsizetype{192} << 20;
/// After it the examiner is told that the picture is on its way.
constexpr int kPatience = 300; ///< milliseconds
/// Only who stays on a row for so long wants the next ones.
constexpr int kRest = 30; ///< milliseconds

fs::path targetIn(const fs::path &folder) {
    return folder / "drawn.bmp";
}

} // namespace

PictureFeed::PictureFeed(Workbench &bench, PicturePane &pane)
    : QObject(&pane), m_bench(bench), m_pane(pane) {
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, &PictureFeed::readAhead);
    connect(&bench, &Workbench::projectClosing, this, &PictureFeed::forgetProject);
    connect(&bench, &Workbench::optionsChanged, this, [this] { m_kept.clear(); });
}

PictureFeed::~PictureFeed() {
    forgetProject();
}

void PictureFeed::show(UrlId id) {
    startWith(id);
    if (const Picture *picture = kept(id))
        return showDrawn(*picture);
    if (!canDraw())
        return m_pane.showReason(toQt(whyNoDrawing()));
    if (!isOrdered(id))
        order(id);
}

/// A record that is shown again has changed: its picture is drawn anew.
void PictureFeed::startWith(UrlId id) {
    if (std::exchange(m_base, state().rootPath) != state().rootPath)
        m_kept.clear();
    if (m_wanted == id)
        std::erase_if(m_kept, [id](const Picture &each) { return each.id == id; });
    m_pane.clear();
    m_wanted = id;
    const int row = m_bench.table->grid().currentIndex().row();
    if (m_row >= 0 && row != m_row)
        m_direction = row < m_row ? -1 : 1;
    m_row = row;
    m_idle.stop();
}

/// What was to be drawn ahead is then all that is wanted of what was ordered.
bool PictureFeed::isOrdered(UrlId id) {
    const auto found = std::ranges::find_if(
        m_pending, [id](const auto &each) { return each.second.picture.id == id; });
    if (found == m_pending.end())
        return false;
    want({orderOf(found->first, found->second)});
    return true;
}

void PictureFeed::order(UrlId id) {
    Pending pending;
    if (const auto missing = fetch(id, pending)) {
        want({});
        return m_pane.showReason(*missing);
    }
    want({orderFor(std::move(pending))});
    QTimer::singleShot(kPatience, this, [this, id] {
        if (m_wanted == id && !kept(id))
            m_pane.showReason(tr("The picture is being drawn."));
    });
}

void PictureFeed::clear() {
    m_wanted.reset();
    m_idle.stop();
    if (m_service)
        want({});
    m_pane.clear();
}

void PictureFeed::showDrawn(const Picture &picture) {
    state().viewer.picturePath = textOf(picture.file);
    if (picture.image.isNull())
        m_pane.showReason(tr("The cached content can't be shown as a picture. %1")
                              .arg(toQt(displayText(picture.failure))));
    else
        m_pane.showPicture(picture.image, picture.size);
    m_idle.start(kRest);
}

const PictureFeed::Picture *PictureFeed::kept(UrlId id) const {
    const auto found = std::ranges::find(m_kept, id, &Picture::id);
    return found == m_kept.end() ? nullptr : &*found;
}

void PictureFeed::keep(Picture picture) {
    m_kept.push_front(std::move(picture));
    qsizetype bytes = 0;
    std::size_t fits = 0;
    while (fits < std::min(m_kept.size(), kMostKept) &&
           (bytes += m_kept[fits].image.sizeInBytes()) <= kMostKeptBytes)
        ++fits;
    m_kept.resize(std::max<std::size_t>(fits, 1));
}

std::optional<QString> PictureFeed::fetch(UrlId id, Pending &fetched) {
    fetched.picture.id = id;
    fetched.folder = state().tempFolderPath / fmt::format("~picture-{}", m_number);
    fs::create_directories(fetched.folder);
    Unwatched nobody;
    RecordTools tools(m_bench.program, nobody, fetched.folder);
    const auto content = contentOfRecord(tools, id);
    if (content && content->file) {
        fetched.picture.file = *content->file;
        return std::nullopt;
    }
    std::error_code ignored; // it is scratch
    fs::remove_all(fetched.folder, ignored);
    if (!content)
        return tr("The selected record could not be found.");
    const QString reason = toQt(displayText(content->reason, 2000));
    return reason.isEmpty() ? reason : reason.front().toUpper() + reason.mid(1) + u'.';
}

DrawService::Order PictureFeed::orderOf(std::uint64_t number, const Pending &pending) {
    return {number,
            {DrawJob::Kind::picture, pending.picture.file, targetIn(pending.folder),
             PicturePane::kMostPixels, PicturePane::kMostPixels}};
}

DrawService::Order PictureFeed::orderFor(Pending pending) {
    const auto [entry, isNew] = m_pending.emplace(m_number++, std::move(pending));
    return orderOf(entry->first, entry->second);
}

void PictureFeed::want(std::vector<DrawService::Order> orders) {
    if (!m_service && !orders.empty())
        m_service =
            makeDrawService(state().tempFolderPath, kDrawingTimeout,
                            [this](const DrawService::Order &order, const Drawn &drawn) {
                                // In the service's thread: what was drawn may be large to read.
                                const QImage image =
                                    drawn.done ? QImage(pathToQt(order.job.target)) : QImage();
                                QMetaObject::invokeMethod(
                                    this,
                                    [this, number = order.number, drawn, image] {
                                        takeDrawn(number, drawn, image);
                                    },
                                    Qt::QueuedConnection);
                            });
    if (m_service)
        for (const std::uint64_t number : m_service->want(std::move(orders)))
            drop(number);
}

void PictureFeed::takeDrawn(std::uint64_t number, const Drawn &drawn, const QImage &image) {
    const auto found = m_pending.find(number);
    if (found == m_pending.end())
        return; // of a project that is closed
    Picture picture = std::move(found->second.picture);
    picture.image = image;
    picture.size = {drawn.pictureWidth, drawn.pictureHeight};
    picture.failure = drawn.failure;
    drop(number);
    const bool isWanted = m_wanted == picture.id;
    keep(std::move(picture));
    if (isWanted)
        showDrawn(m_kept.front());
    else if (m_wanted && kept(*m_wanted))
        m_idle.start(0);
}

/// What was fetched and drawn for an order isn't needed any more.
void PictureFeed::drop(std::uint64_t number) {
    const auto found = m_pending.find(number);
    if (found == m_pending.end())
        return;
    std::error_code ignored; // it is scratch
    fs::remove_all(found->second.folder, ignored);
    m_pending.erase(found);
}

/// One record at a time, so that whatever the examiner does next comes first.
void PictureFeed::readAhead() {
    const auto id = m_pending.empty() && canDraw() ? nextToDraw() : std::nullopt;
    if (!id)
        return;
    m_bench.run("MainForm.showPicture()", [&] {
        Pending pending;
        if (!fetch(*id, pending))
            want({orderFor(std::move(pending))});
    });
}

/// The nearest of the next rows that has a picture and isn't drawn yet.
std::optional<UrlId> PictureFeed::nextToDraw() const {
    if (!m_wanted || !m_bench.isProjectOpen() || !m_bench.table->table())
        return std::nullopt;
    const RowIds &ids = m_bench.table->table()->ids();
    for (const int step : kAhead) {
        const qsizetype place = m_row + qsizetype{step} * m_direction;
        if (place < 0 || place >= static_cast<qsizetype>(ids.size()))
            continue;
        const UrlId id{ids[static_cast<std::size_t>(place)]};
        if (!kept(id) && isPictureRecord(id))
            return id;
    }
    return std::nullopt;
}

bool PictureFeed::isPictureRecord(UrlId id) const {
    SQLite::Statement row(m_bench.project(),
                          "SELECT 1 FROM URLs WHERE URL_ID = ? AND CacheFileExists AND NOT "
                          "IsCookie AND (IsPicture OR Category = 'Pictures')");
    bindId(row, 1, id);
    return row.executeStep();
}

/// The evidence of the next project is another one.
void PictureFeed::forgetProject() {
    m_service.reset();
    m_idle.stop();
    m_wanted.reset();
    m_row = -1;
    m_kept.clear();
    while (!m_pending.empty())
        drop(m_pending.begin()->first);
}

} // namespace nv
