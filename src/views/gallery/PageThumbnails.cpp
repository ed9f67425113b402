#include "views/gallery/PageThumbnails.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Succeeds.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "views/gallery/ThumbnailJobs.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <numeric>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "MainBAS.CreateHTMLThumbnail()";
/// A page may have failed by the one before it, with which it shared the drawing process.
constexpr int kTrials = 2;

class PageRun {
  public:
    PageRun(std::span<const PageDrawing> pages, int width, const ThumbnailContext &ctx,
            TaskMonitor &task)
        : m_pages(pages), m_width(width), m_ctx(ctx), m_task(task), m_drawn(pages.size(), false) {}

    std::vector<bool> all() {
        std::vector<std::size_t> places(m_pages.size());
        std::iota(places.begin(), places.end(), std::size_t{0});
        for (int trial = 0; trial < kTrials && !places.empty() && goOn(); ++trial)
            places = drawSome(places);
        return m_drawn;
    }

  private:
    /// The places of the pages whose drawing failed.
    std::vector<std::size_t> drawSome(const std::vector<std::size_t> &places) {
        std::vector<DrawJob> jobs;
        jobs.reserve(places.size());
        for (const std::size_t place : places)
            jobs.push_back(jobOf(m_pages[place]));
        std::vector<std::size_t> failed;
        m_ctx.drawing.draw(
            jobs, m_ctx.settings.thumbnailRedrawTimeout,
            [&](std::size_t job, const Drawn &drawn) {
                if (!take(places.at(job), drawn))
                    failed.push_back(places[job]);
                return goOn();
            },
            [this] { return goOn(); });
        return failed;
    }

    /// What was drawn earlier must not pass for the new drawing.
    DrawJob jobOf(const PageDrawing &page) const {
        fs::remove(page.destination);
        return {DrawJob::Kind::page, page.page, page.destination, m_width,
                thumbnailHeight(m_width)};
    }

    bool take(std::size_t place, const Drawn &drawn) {
        const PageDrawing &page = m_pages[place];
        if (!drawn.done) {
            // The words are those that error logs always had, whatever the system.
            m_ctx.log.write({fmt::format("Win32 Error: {} (URL ID: {})", drawn.failure, page.urlID),
                             std::string(kProcedure), Severity::Warning,
                             std::string(kContactSupport)});
            return false;
        }
        m_drawn[place] = succeeds(m_ctx.log, Severity::Warning, kProcedure, kContactSupport,
                                  [&] { storeThumbnail(page.urlID, page.destination, m_ctx); });
        m_done += m_drawn[place] ? 1 : 0;
        return m_drawn[place];
    }

    bool goOn() {
        return m_task.advance(static_cast<double>(m_done) / static_cast<double>(m_pages.size()));
    }

    std::span<const PageDrawing> m_pages;
    int m_width;
    const ThumbnailContext &m_ctx;
    TaskMonitor &m_task;
    std::vector<bool> m_drawn;
    std::size_t m_done = 0;
};

bool holdsAlready(UrlId id, const std::string &hash, SQLite::Database &project) {
    SQLite::Statement row(project, "SELECT 1 FROM URLs WHERE URL_ID = ? AND ThumbnailMD5Hash = ?");
    bindId(row, 1, id);
    row.bind(2, hash);
    return row.executeStep();
}

} // namespace

std::vector<bool> createHTMLThumbnails(std::span<const PageDrawing> pages, int width,
                                       const ThumbnailContext &ctx, TaskMonitor &task) {
    return PageRun(pages, width, ctx, task).all();
}

Stored storeThumbnail(UrlId urlID, const fs::path &path, const ThumbnailContext &ctx) {
    const std::string hash = fileMD5(path).value_or("");
    const Bytes bytes = readWhole(path);
    return onRow(ctx.project, [&] {
        // A page that looks as it did needs no write.
        if (holdsAlready(urlID, hash, ctx.project))
            return Stored::sameBytes;
        SQLite::Statement update(ctx.project,
                                 "UPDATE URLs SET ThumbnailBLOB = ?, ThumbnailMD5Hash = ?, "
                                 "ThumbnailWidth = ?, ThumbnailHeight = ?, ThumbnailCreated = ? "
                                 "WHERE URL_ID = ?");
        update.bindNoCopy(1, bytes.data(), static_cast<int>(bytes.size()));
        update.bind(2, hash);
        update.bind(3, ctx.settings.viewerThumbnailWidth);
        update.bind(4, thumbnailHeight(ctx.settings.viewerThumbnailWidth));
        update.bind(5, Date::fromTimePoint(ctx.clock.now()).days());
        bindId(update, 6, urlID);
        update.exec();
        return Stored::written;
    });
}

} // namespace nv
