#include "rebuild/RebuildWebPage.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SqliteErrors.h"
#include "markup/PageText.h"
#include "rebuild/FindTags.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuiltRow.h"
#include "rebuild/ReplaceTags.h"
#include "rebuild/Scripts.h"
#include "rebuild/TagChoice.h"
#include "rebuild/TagOptions.h"
#include "rebuild/exact/ExactRebuild.h"

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "MainBAS.RebuildWebPage()";

/// One part of the rebuild's own progress, 0 to 1.
RebuildContext stageOf(const RebuildContext &ctx, TaskMonitor &task) {
    return {ctx.project, ctx.records, ctx.evidence, ctx.tempFolderPath,
            ctx.log,     task,        ctx.settings};
}

class Rebuild {
  public:
    Rebuild(UrlRecord &page, Batch batch, const RebuildContext &ctx, const Clock &clock)
        : m_page(page), m_batch(batch), m_ctx(ctx), m_clock(clock), m_source(page, ctx) {}

    /// `work` with its own part of the progress, 0 to 1 of the whole.
    template <class Work>
    auto stage(double from, double to, Work &&work) {
        SubTask part(m_ctx.task, from, to);
        return work(stageOf(m_ctx, part));
    }

    bool run() {
        if (m_batch == Batch::yes && !m_ctx.task.advance(0))
            return false; // cancelled before this page's turn
        if (m_ctx.settings.method == MethodChoice::automatic && isWide())
            return rebuildExactly(m_page, m_batch, m_ctx, m_clock);
        const fs::path folder = rebuildFolderOf(m_page.URLID, m_ctx);
        m_page.RunTimeRebuiltFilePath = folder / pageNameOf(m_page.URLID);
        makeFolder(folder);
        forgetTagOptions(m_ctx);
        if (!chooseParts())
            return false;
        const auto replaced = stage(0.75, 0.85, [this](const RebuildContext &ctx) {
            return replaceTags(m_page, m_source, ctx);
        });
        if (!replaced)
            return false;
        m_page.IngredientIDs = replaced->log;
        writePage(disarmed(replaced->text));
        if (m_page.IngredientIDs.empty() && fs::exists(folder / kPartsList) &&
            !storeIngredientIDs(m_page, m_ctx))
            return false;
        const bool whole = stage(0.85, 1, [&](const RebuildContext &ctx) {
            return harvestParts(m_page, folder, m_batch, ctx);
        });
        // A cancelled rebuild never takes the place of an earlier one; a failed one stands as far
        // as it came.
        if (!whole && !m_ctx.task.advance(0.85))
            return false;
        storeRebuilt(m_page, replaced->notes, m_ctx, m_clock);
        return whole;
    }

  private:
    /// In two bytes a letter no reference is found by a search of the bytes.
    bool isWide() {
        const auto &bytes = m_source.text();
        return bytes && !wideCharsetOf(*bytes, m_page.MetaData).empty();
    }

    bool chooseParts() {
        return stage(0, 0.5,
                     [this](const RebuildContext &ctx) {
                         return findTagsInFile(m_page, m_source, ctx);
                     }) > 0 &&
               stage(0.5, 0.7,
                     [this](const RebuildContext &ctx) { return findTagOptions(m_page, ctx); }) &&
               stage(0.7, 0.75,
                     [this](const RebuildContext &ctx) { return chooseTagOptions(m_page, ctx); });
    }

    /// With scripts switched off the page is commented here a second time: rebuilt pages of earlier
    /// cases have both.
    std::string disarmed(std::string text) const {
        if (m_ctx.settings.disableScriptTags)
            text = striptScriptTags(text);
        return neutraliseEventHandlers(text);
    }

    void writePage(const std::string &text) {
        m_page.RebuiltSourceCode = fromAnsi(text);
        fs::remove(m_page.RunTimeRebuiltFilePath);
        writeWhole(m_page.RunTimeRebuiltFilePath, text + "\r\n");
    }

    UrlRecord &m_page;
    Batch m_batch;
    const RebuildContext &m_ctx;
    const Clock &m_clock;
    PageSource m_source;
};

} // namespace

bool rebuildWebPage(UrlRecord &page, Batch batch, const RebuildContext &ctx, const Clock &clock) {
    const bool isExact = onProject(
        [&] { return methodFor(page, ctx.settings.method, ctx.records) == RebuildMethod::exact; });
    if (isExact)
        return rebuildExactly(page, batch, ctx, clock);
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, false,
                   [&] { return onRow([&] { return Rebuild(page, batch, ctx, clock).run(); }); });
}

} // namespace nv
