#pragma once

#include "app/jobs/ThumbnailJob.h"
#include "platform/posix/DrawService.h"
#include "ui/parts/Workbench.h"
#include "views/gallery/ThumbnailJobs.h"

#include <QObject>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace nv {

/// Draws the thumbnails that are missing while the examiner goes on. Contents are fetched and rows
/// written a step at a time between what the window does, and not while a task has the project; the
/// drawing itself is done by a process of its own.
class BackgroundThumbnails final : public QObject {
    Q_OBJECT

  public:
    explicit BackgroundThumbnails(Workbench &bench);
    ~BackgroundThumbnails() override;
    BackgroundThumbnails(const BackgroundThumbnails &) = delete;
    BackgroundThumbnails &operator=(const BackgroundThumbnails &) = delete;

    /// The project must be open for writing. Throws StorageFailure when this build can't draw.
    void start();
    /// What is drawn by then stays.
    void stop();
    bool isRunning() const { return m_work != nullptr; }

  signals:
    /// A thumbnail is made, or can't be.
    void progressed(const nv::ThumbnailTotals &totals);
    /// Not when the project is closed.
    void ended(const nv::ThumbnailTotals &totals);

  private:
    struct Work;

    void step();
    void workOn();
    void prepareNext();
    void settle(const Drawn &drawn);
    void finish();

    Workbench &m_bench;
    QTimer m_next;
    std::unique_ptr<Work> m_work; ///< while it runs
};

} // namespace nv
