#include "app/RebuildJob.h"

#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildWebPage.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv {

namespace {

constexpr std::string_view kTitle = "REBUILDING WEB PAGES";

bool hasTags(const URLClass &page, const RebuildContext &ctx) {
    SQLite::Statement rows(ctx.project, "SELECT 1 FROM Tags WHERE URL_ID = ? LIMIT 1");
    rows.bind(1, number(page.URLID));
    return rows.executeStep();
}

NotRebuilt whyNot(const URLClass &page, const RebuildContext &ctx) {
    if (!ctx.task.advance(1))
        return NotRebuilt::cancelled;
    // The search for tags begins with a scratch copy of the content.
    if (page.RunTimeTempFilePath.empty())
        return NotRebuilt::contentGone;
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

RebuiltPage outcomeOf(const URLClass &page, bool rebuilt, const RebuildContext &ctx) {
    RebuiltPage outcome;
    outcome.URL_ID = number(page.URLID);
    outcome.rebuilt = rebuilt;
    outcome.folder = rebuildFolderOf(page.URLID, ctx);
    if (!rebuilt) {
        outcome.why = whyNot(page, ctx);
        dropFolder(outcome.folder);
        return outcome;
    }
    for (const AuditRow &row : LoadAudit(page, outcome.folder, ctx)) {
        ++outcome.tagsFound;
        ++(row.isThere ? outcome.replaced : outcome.missing);
    }
    return outcome;
}

} // namespace

RebuildSettings rebuildSettings(const Program &program) {
    const ThisClass &state = program.thisClass;
    RebuildSettings settings;
    settings.HTMLReplaceablePictureTags = state.HTMLReplaceablePictureTags;
    settings.HTMLReplaceableHREFTags = state.HTMLReplaceableHREFTags;
    settings.DisableScriptTags = state.DisableScriptTags;
    settings.WideRecordIds = state.WideRecordIds;
    return settings;
}

RebuildTools::RebuildTools(Program &program, TaskMonitor &task,
                           const std::filesystem::path &scratch)
    : m_records(program.thisClass.ProjectDB.connection(),
                {program.thisClass.GMTZone, program.thisClass.EnableDSTChanges},
                program.around.clock, program.log),
      m_evidence(program.thisClass.RootPath), m_context{program.thisClass.ProjectDB.connection(),
                                                        m_records,
                                                        m_evidence,
                                                        scratch,
                                                        program.log,
                                                        task,
                                                        rebuildSettings(program)} {}

std::vector<std::int64_t> taggedIds(Program &program) {
    std::vector<std::int64_t> ids;
    SQLite::Statement rows(program.thisClass.ProjectDB.connection(),
                           "SELECT URL_ID FROM URLs WHERE Tagged ORDER BY URL_ID");
    while (rows.executeStep())
        ids.push_back(rows.getColumn(0).getInt64());
    return ids;
}

std::optional<RebuiltPage> rebuildPage(Program &program, RebuildTools &tools, std::int64_t URL_ID) {
    auto page = tools.record(URL_ID);
    if (!page)
        return std::nullopt;
    const bool rebuilt = RebuildWebPage(*page, Batch::no, tools.context(), program.around.clock);
    return outcomeOf(*page, rebuilt, tools.context());
}

bool rebuildPages(Program &program, RebuildTools &tools, std::span<const std::int64_t> ids,
                  const std::function<void(const RebuiltPage &)> &done) {
    const RebuildContext &whole = tools.context();
    const auto count = static_cast<double>(ids.size());
    whole.task.describe({std::string(kTitle), "Rebuilding Web Pages ", "", ""});
    for (std::size_t i = 0; i < ids.size(); ++i) {
        SubTask part(whole.task, static_cast<double>(i) / count,
                     static_cast<double>(i + 1) / count);
        if (!part.advance(0))
            return false;
        auto page = tools.record(ids[i]);
        if (!page)
            continue;
        whole.task.describe({std::string(kTitle),
                             fmt::format("Rebuilding Web Page #{} of {} ", i + 1, ids.size()),
                             page->URL, ""});
        RebuildContext ctx{whole.project, whole.records, whole.evidence, whole.TempFolderPath,
                           whole.log,     part,          whole.settings};
        const bool rebuilt = RebuildWebPage(*page, Batch::yes, ctx, program.around.clock);
        done(outcomeOf(*page, rebuilt, whole));
    }
    return true;
}

bool hasFolder(const RebuildTools &tools, URLClass &page) {
    page.RunTimeRebuiltFilePath =
        rebuildFolderOf(page.URLID, tools.context()) / pageNameOf(page.URLID);
    return std::filesystem::exists(page.RunTimeRebuiltFilePath);
}

bool bringBackFolder(RebuildTools &tools, URLClass &page) {
    if (hasFolder(tools, page))
        return true;
    const bool whole = UnpackIngredients(page, tools.context());
    if (!whole)
        dropFolder(rebuildFolderOf(page.URLID, tools.context()));
    return whole;
}

} // namespace nv
