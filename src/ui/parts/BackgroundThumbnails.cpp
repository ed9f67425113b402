#include "ui/parts/BackgroundThumbnails.h"

#include "app/program/DrawingTools.h"
#include "base/Storage.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr const char *kProcedure = "MainForm.makeThumbnails()";
/// Contents that lie ready while one is drawn.
constexpr std::size_t kAhead = 3;
/// Between two looks whether the task that has the project is at its end.
constexpr int kWhileBusy = 200; ///< milliseconds

/// Gone at its end, with all that was fetched and drawn.
class Scratch {
  public:
    explicit Scratch(fs::path path) : m_path(std::move(path)) { makeEmptyFolder(m_path); }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;
    const fs::path &path() const { return m_path; }

  private:
    fs::path m_path;
};

} // namespace

struct BackgroundThumbnails::Work {
    struct Prepared {
        ThumbnailJob job;
        fs::path folder;
    };

    Work(Program &program, std::vector<UrlId> idsOf)
        : scratch(program.state.tempFolderPath / "~background"), tools(program, scratch.path()),
          ids(std::move(idsOf)) {}

    bool isDone() const { return next == ids.size() && ready.empty() && !atWork; }

    Scratch scratch;
    ThumbnailTools tools;
    std::vector<UrlId> ids;
    std::size_t next = 0; ///< place in the list of ids
    ThumbnailTotals totals;
    std::deque<Prepared> ready;
    std::optional<Prepared> atWork;       ///< what the service draws
    std::optional<Drawn> drawn;           ///< what came of it
    std::uint64_t number = 0;             ///< of the last order
    std::unique_ptr<DrawService> service; ///< last: it draws in the scratch folder
};

BackgroundThumbnails::BackgroundThumbnails(Workbench &bench) : m_bench(bench) {
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &BackgroundThumbnails::step);
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_next.stop();
        m_work.reset();
    });
}

BackgroundThumbnails::~BackgroundThumbnails() = default;

void BackgroundThumbnails::start() {
    if (isRunning())
        return;
    Program &program = m_bench.program;
    UnreadRows unread;
    auto work = std::make_unique<Work>(program, drawableIds(program, Redo::no, unread));
    work->totals.unread = std::move(unread);
    work->service =
        makeDrawService(work->scratch.path(), work->tools.context().settings.thumbnailRedrawTimeout,
                        [this](const DrawService::Order &order, const Drawn &drawn) {
                            // In the service's thread.
                            QMetaObject::invokeMethod(
                                this,
                                [this, number = order.number, drawn] {
                                    if (!m_work || m_work->number != number)
                                        return; // of a project that is closed
                                    m_work->drawn = drawn;
                                    step();
                                },
                                Qt::QueuedConnection);
                        });
    m_work = std::move(work);
    m_next.start(0);
}

void BackgroundThumbnails::stop() {
    if (isRunning())
        finish();
}

/// The command doesn't run while a task has the project, and what it fails with is told.
void BackgroundThumbnails::step() {
    if (!isRunning())
        return;
    bool begun = false;
    bool done = false;
    m_bench.run(kProcedure, [&] {
        begun = true;
        workOn();
        done = true;
    });
    if (!begun)
        m_next.start(kWhileBusy);
    else if (!done || (m_work && m_work->isDone()))
        stop();
    else if (m_work && m_work->next < m_work->ids.size() && m_work->ready.size() < kAhead)
        m_next.start(0);
}

void BackgroundThumbnails::workOn() {
    Work &work = *m_work;
    if (work.drawn)
        settle(*std::exchange(work.drawn, std::nullopt));
    if (work.next < work.ids.size() && work.ready.size() < kAhead)
        prepareNext();
    if (work.atWork || work.ready.empty())
        return;
    work.atWork = std::move(work.ready.front());
    work.ready.pop_front();
    static_cast<void>(work.service->want({{++work.number, work.atWork->job.drawing}}));
}

void BackgroundThumbnails::prepareNext() {
    Work &work = *m_work;
    const UrlId id{work.ids[work.next++]};
    fs::path folder = work.scratch.path() / fmt::format("{}", id);
    if (auto job = jobOfRow(id, folder, work.tools.context(), work.totals))
        work.ready.push_back({std::move(*job), std::move(folder)});
}

void BackgroundThumbnails::settle(const Drawn &drawn) {
    Work &work = *m_work;
    Work::Prepared done = *std::exchange(work.atWork, std::nullopt);
    settleThumbnail(done.job, drawn, work.tools.context(), work.totals);
    std::error_code ignored; // it is scratch
    fs::remove_all(done.folder, ignored);
    fs::remove(done.job.drawing.target, ignored);
    emit progressed(work.totals);
}

void BackgroundThumbnails::finish() {
    m_next.stop();
    const ThumbnailTotals totals = std::exchange(m_work, nullptr)->totals;
    emit ended(totals);
}

} // namespace nv
