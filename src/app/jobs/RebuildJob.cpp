#include "app/jobs/RebuildJob.h"

#include "app/jobs/RebuildThumbnails.h"
#include "app/jobs/Trail.h"
#include "app/project/ChosenRows.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildWebPage.h"
#include "rebuild/WatchedBy.h"
#include "rebuild/exact/ExactRebuild.h"
#include "views/record/Audit.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::string_view kTitle = "REBUILDING WEB PAGES";

bool hasTags(const UrlRecord &page, const RebuildContext &ctx) {
    SQLite::Statement rows(ctx.project, "SELECT 1 FROM Tags WHERE URL_ID = ? LIMIT 1");
    bindId(rows, 1, page.URLID);
    return rows.executeStep();
}

NotRebuilt whyNot(const UrlRecord &page, RebuildMethod method, const RebuildContext &ctx) {
    if (!ctx.task.advance(1))
        return NotRebuilt::cancelled;
    // The search for tags begins with a scratch copy of the content.
    if (page.RunTimeTempFilePath.empty())
        return page.CacheFileExists ? NotRebuilt::contentGone : NotRebuilt::noContent;
    if (method == RebuildMethod::exact)
        return isPageContent(page) ? NotRebuilt::failed : NotRebuilt::noPage;
    if (!hasTags(page, ctx))
        return NotRebuilt::noReferences;
    return needsWideIds(page.IngredientIDs, ctx.settings) ? NotRebuilt::wideIds
                                                          : NotRebuilt::failed;
}

/// A folder that isn't whole would have the audit call parts missing that were only not fetched
/// yet; the next look at the page makes it anew.
void dropFolder(const std::filesystem::path &folder) {
    std::error_code ignored; // it is scratch
    std::filesystem::remove_all(folder, ignored);
}

RebuiltPage outcomeOf(const UrlRecord &page, bool rebuilt, const RebuildContext &ctx) {
    RebuiltPage outcome;
    outcome.urlID = page.URLID;
    outcome.method =
        rebuilt ? shownMethod(page) : methodFor(page, ctx.settings.method, ctx.records);
    outcome.rebuilt = rebuilt;
    outcome.folder = rebuildFolderOf(page.URLID, ctx);
    if (!rebuilt) {
        outcome.why = whyNot(page, outcome.method, ctx);
        dropFolder(outcome.folder);
        return outcome;
    }
    const auto rows = loadAudit(page, outcome.folder, ctx);
    for (const AuditRow &row : rows.value_or(std::vector<AuditRow>())) {
        ++outcome.tagsFound;
        ++(!row.isThere      ? outcome.missing
           : row.isRewritten ? outcome.replaced
                             : outcome.notRewritten);
    }
    return outcome;
}

RebuiltPage unreadPage(UrlId urlID) {
    RebuiltPage outcome;
    outcome.urlID = urlID;
    outcome.why = NotRebuilt::unreadable;
    return outcome;
}

/// With its own progress, and by the method that was asked for.
RebuildContext partOf(const RecordTools &tools, TaskMonitor &task,
                      std::optional<MethodChoice> method) {
    RebuildContext ctx = watchedBy(tools.context(), task);
    ctx.settings.method = method.value_or(ctx.settings.method);
    return ctx;
}

class RebuildRun {
  public:
    RebuildRun(Program &program, RecordTools &tools, std::span<const UrlId> ids,
               std::optional<MethodChoice> method)
        : m_program(program), m_tools(tools), m_ids(ids), m_method(method),
          m_thumbnails(program, tools) {}

    bool all(const std::function<void(const RebuiltPage &)> &done) {
        TaskMonitor &task = m_tools.context().task;
        task.describe({std::string(kTitle), "Rebuilding Web Pages ", "", ""});
        const auto count = static_cast<double>(m_ids.size());
        while (m_next < m_ids.size() && !m_cancelled) {
            const std::size_t end = std::min(m_ids.size(), m_next + m_thumbnails.pagesAtOnce());
            SubTask part(task, static_cast<double>(m_next) / count,
                         static_cast<double>(end) / count);
            rebuildTo(end, part);
            m_thumbnails.draw(m_pages, part);
            for (const RebuiltPage &page : m_pages)
                done(page);
            m_pages.clear();
        }
        return !m_cancelled;
    }

  private:
    void rebuildTo(std::size_t end, TaskMonitor &task) {
        const double each = m_thumbnails.shareOfRebuilding() / static_cast<double>(end - m_next);
        for (double at = 0; m_next < end; ++m_next, at += each) {
            SubTask part(task, at, at + each);
            m_cancelled = !part.advance(0);
            if (m_cancelled)
                return;
            if (auto page = m_tools.record(m_ids[m_next]))
                rebuild(*page, part);
            else
                m_pages.push_back(unreadPage(m_ids[m_next]));
        }
    }

    void rebuild(UrlRecord &page, TaskMonitor &task) {
        task.describe({std::string(kTitle),
                       fmt::format("Rebuilding Web Page #{} of {} ", m_next + 1, m_ids.size()),
                       page.URL, ""});
        const RebuildContext ctx = partOf(m_tools, task, m_method);
        const bool rebuilt = rebuildWebPage(page, Batch::yes, ctx, m_program.around.clock);
        m_pages.push_back(outcomeOf(page, rebuilt, ctx));
        if (rebuilt)
            m_thumbnails.add(page);
    }

    Program &m_program;
    RecordTools &m_tools;
    std::span<const UrlId> m_ids;
    std::optional<MethodChoice> m_method;
    RebuildThumbnails m_thumbnails;
    std::size_t m_next = 0;           ///< place in the list of ids
    std::vector<RebuiltPage> m_pages; ///< not handed on yet
    bool m_cancelled = false;
};

} // namespace

std::vector<UrlId> taggedIds(Program &program, UnreadRows &unread) {
    return idsPastDamage(program, "SELECT URL_ID FROM URLs WHERE Tagged ORDER BY URL_ID", unread);
}

std::optional<RebuiltPage> rebuildPage(Program &program, RecordTools &tools, UrlId urlID,
                                       std::optional<MethodChoice> method) {
    auto page = tools.record(urlID);
    if (!page)
        return std::nullopt;
    const RebuildContext &ctx = tools.context();
    RebuildThumbnails thumbnails(program, tools);
    SubTask rebuilding(ctx.task, 0, thumbnails.shareOfRebuilding());
    const RebuildContext part = partOf(tools, rebuilding, method);
    const bool rebuilt = rebuildWebPage(*page, Batch::no, part, program.around.clock);
    RebuiltPage outcome = outcomeOf(*page, rebuilt, part);
    if (rebuilt)
        thumbnails.add(*page);
    thumbnails.draw(std::span(&outcome, 1), ctx.task);
    return outcome;
}

bool rebuildPages(Program &program, RecordTools &tools, std::span<const UrlId> ids,
                  const std::function<void(const RebuiltPage &)> &done,
                  std::optional<MethodChoice> method) {
    std::size_t rebuilt = 0;
    TaskEnd end = TaskEnd::failed;
    const auto failure = failureOf(program.log, "MainBAS.RebuildWebPage()", [&] {
        const bool whole =
            RebuildRun(program, tools, ids, method).all([&](const RebuiltPage &page) {
                done(page);
                rebuilt += page.rebuilt ? 1 : 0;
            });
        end = whole ? TaskEnd::whole : TaskEnd::cancelled;
    });
    noteRebuild(program, rebuilt, ids.size(), end);
    if (failure)
        throw StorageFailure(fmt::format("{}. {} of {} rebuilt before that, which is kept.",
                                         *failure, rebuilt, counted(ids.size(), "page")));
    return end == TaskEnd::whole;
}

bool hasFolder(const RecordTools &tools, UrlRecord &page) {
    page.RunTimeRebuiltFilePath =
        rebuildFolderOf(page.URLID, tools.context()) / pageNameOf(page.URLID);
    return std::filesystem::exists(page.RunTimeRebuiltFilePath);
}

bool bringBackFolder(RecordTools &tools, UrlRecord &page) {
    if (hasFolder(tools, page))
        return true;
    const bool whole = unpackIngredients(page, tools.context());
    if (!whole)
        dropFolder(rebuildFolderOf(page.URLID, tools.context()));
    return whole;
}

} // namespace nv
