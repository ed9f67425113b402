#include "views/gallery/Thumbnails.h"

#include "base/Storage.h"
#include "base/Trap.h"
#include "db/sql/Damage.h"
#include "db/sql/SqliteErrors.h"
#include "db/sql/WriteBatch.h"
#include "views/gallery/Pard.h"
#include "views/gallery/ThumbnailJobs.h"
#include "views/rows/DateIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

// Enough that starting to draw doesn't count, few enough copies of evidence in scratch.
constexpr std::size_t kBatch = 128;
constexpr std::string_view kScratchName = "~thumbs";

/// The run's own folder below the scratch folder, gone at its end.
class ThumbnailFolder {
  public:
    explicit ThumbnailFolder(const fs::path &parent) : m_path(parent / kScratchName) { empty(); }
    ~ThumbnailFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    ThumbnailFolder(const ThumbnailFolder &) = delete;
    ThumbnailFolder &operator=(const ThumbnailFolder &) = delete;

    void empty() const { makeEmptyFolder(m_path); }
    fs::path place(std::size_t job) const { return m_path / std::to_string(job); }

  private:
    fs::path m_path;
};

/// Draws one file with the settings' time-out.
Drawn drawOne(const DrawJob &job, const ThumbnailContext &ctx) {
    Drawn result;
    result.failure = "it was not drawn";
    ctx.drawing.draw(
        std::span(&job, 1), ctx.settings.thumbnailRedrawTimeout,
        [&](std::size_t, const Drawn &drawn) {
            result = drawn;
            return true;
        },
        [] { return true; });
    return result;
}

class ThumbnailRun {
  public:
    ThumbnailRun(const ThumbnailContext &ctx, std::span<const UrlId> ids, TaskMonitor &task,
                 ThumbnailTotals &totals)
        : m_ctx(ctx), m_ids(ids), m_task(task), m_totals(totals), m_folder(ctx.tempFolderPath),
          m_rows(ctx.project, [this] { m_kept = m_totals.made; }),
          m_isDamaged(!totals.unread.empty()), m_unreadBefore(totals.unread.size()) {}
    /// Whatever ends the run, the totals tell of what is in the project.
    ~ThumbnailRun() {
        if (!m_rows.end())
            countLost();
    }
    ThumbnailRun(const ThumbnailRun &) = delete;
    ThumbnailRun &operator=(const ThumbnailRun &) = delete;

    void all() {
        m_task.describe({"CREATING THUMBNAILS", "Creating Thumbnails ", "", ""});
        while (m_next < m_ids.size() && !m_totals.cancelled) {
            prepareBatch();
            if (!m_totals.cancelled)
                drawBatch();
            m_rows.commit();
            m_folder.empty();
        }
    }

  private:
    void prepareBatch() {
        m_jobs.clear();
        while (m_next < m_ids.size() && m_jobs.size() < kBatch && goOn())
            prepare(m_ids[m_next++]);
    }

    void prepare(UrlId id) {
        if (auto job = jobOfRow(id, m_folder.place(m_jobs.size()), m_ctx, m_totals))
            m_jobs.push_back(std::move(*job));
    }

    void drawBatch() {
        std::vector<DrawJob> drawings;
        for (const ThumbnailJob &job : m_jobs)
            drawings.push_back(job.drawing);
        m_ctx.drawing.draw(
            drawings, m_ctx.settings.thumbnailRedrawTimeout,
            [this](std::size_t at, const Drawn &drawn) { return take(m_jobs.at(at), drawn); },
            [this] { return goOn(); });
    }

    bool take(ThumbnailJob &job, const Drawn &drawn) {
        if (m_isDamaged)
            m_rows.commit(); // so that a row that can't be written costs itself alone
        const bool kept = drawn.done && keep(job, drawn);
        countDrawn(job, drawn, kept, m_ctx, m_totals);
        m_rows.written();
        return goOn();
    }

    bool keep(ThumbnailJob &job, const Drawn &drawn) {
        bool written = true;
        const bool kept = trapped(
            m_ctx.log, Severity::Warning, "MainBAS.MakeThumbnail()", kContactSupport, false, [&] {
                written = unlessDamaged([&] { keepThumbnail(job, drawn, m_ctx); });
                return written;
            });
        if (!written) {
            m_isDamaged = true;
            m_rows.giveUp();
            countLost();
            logUndrawn(job.record.URLID, "the project is damaged beside its row", m_ctx.log);
        }
        return kept;
    }

    void countLost() { m_totals.failed += m_totals.made - std::exchange(m_totals.made, m_kept); }

    std::size_t done() const {
        return static_cast<std::size_t>(m_totals.made + m_totals.failed + m_totals.withoutContent +
                                        m_totals.otherKinds) +
               m_totals.unread.size() - m_unreadBefore;
    }

    bool goOn() {
        m_totals.cancelled |=
            !m_task.advance(static_cast<double>(done()) / static_cast<double>(m_ids.size()));
        if (m_task.wantsStep())
            m_task.show({fmt::format("Thumbnail {} of {}", done(), m_ids.size()),
                         static_cast<std::int64_t>(done()), static_cast<std::int64_t>(m_ids.size()),
                         "", 0, 0});
        return !m_totals.cancelled;
    }

    const ThumbnailContext &m_ctx;
    std::span<const UrlId> m_ids;
    TaskMonitor &m_task;
    ThumbnailTotals &m_totals;
    std::uint64_t m_kept = 0; ///< of those made
    ThumbnailFolder m_folder;
    WriteBatch m_rows;
    bool m_isDamaged;           ///< as far as is known
    std::size_t m_unreadBefore; ///< that were never in the list of ids
    std::vector<ThumbnailJob> m_jobs;
    std::size_t m_next = 0; ///< place in the list of ids
};

} // namespace

void makeThumbnails(const ThumbnailContext &ctx, std::span<const UrlId> ids, TaskMonitor &task,
                    ThumbnailTotals &totals) {
    // Now, while few rows have thumbnails: the index grows with them.
    const auto index =
        onProject(ctx.project, [&] { return ensureGalleryIndex(ctx.project, task); });
    totals.cancelled = index == IndexState::Cancelled;
    if (!totals.cancelled)
        ThumbnailRun(ctx, ids, task, totals).all();
}

bool makePictureThumbnail(const fs::path &source, const fs::path &destination, UrlRecord &url,
                          int width, const ThumbnailContext &ctx) {
    const Drawn drawn =
        drawOne({DrawJob::Kind::picture, source, destination, width, thumbnailHeight(width)}, ctx);
    if (!drawn.done) {
        logUndrawn(url.URLID, drawn.failure, ctx.log);
        return false;
    }
    url.PictureWidth = drawn.pictureWidth;
    url.PictureHeight = drawn.pictureHeight;
    url.PARDValue = pardValue(drawn.pictureWidth, drawn.pictureHeight);
    return true;
}

} // namespace nv
