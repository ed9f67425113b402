#include "rebuild/FindTags.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainBAS.FindTagsInFile()";

void showBeginning(const UrlRecord &page, const RebuildContext &ctx) {
    if (ctx.settings.creatingReport)
        return;
    ctx.task.describe({"REBUILDING WEB PAGE",
                       "Finding tags in cached file.  This may take a few moments.  Please be "
                       "patient, thank you.",
                       fmt::format("URL ID#{}: {}", page.URLID, page.URL), ""});
}

void showStep(const RebuildContext &ctx, std::string_view what, std::int64_t percent) {
    TaskStep step;
    step.bottomMessage = what;
    step.bottomCounter = percent;
    step.bottomTotal = 100;
    ctx.task.show(step);
}

void deleteTags(const UrlRecord &page, const RebuildContext &ctx) {
    SQLite::Statement remove(ctx.project, "DELETE FROM Tags WHERE URL_ID = ?");
    bindId(remove, 1, page.URLID);
    remove.exec();
}

void insertTags(const UrlRecord &page, const URLTags &tags, const RebuildContext &ctx) {
    SQLite::Statement insert(
        ctx.project,
        "INSERT INTO Tags (URL_ID, TagFileName, FileOffset, CacheFolderName, CacheFileName, "
        "NewTag, "
        "OriginalTag, AccuracyScore, TagOption_ID, TagDefinition, TagType, TagSansParentPaths) "
        "VALUES (?, ?, ?, '', '', '', ?, '', 0, ?, ?, ?)");
    for (const URLTag &tag : tags) {
        if (trim(tag.originalTag).empty())
            continue;
        insert.reset();
        bindId(insert, 1, page.URLID);
        insert.bind(2, tag.tagFileName);
        insert.bind(3, static_cast<std::int64_t>(tag.fileOffset));
        insert.bind(4, tag.originalTag);
        insert.bind(5, tag.tagDefinition);
        insert.bind(6, tag.tagType);
        insert.bind(7, tag.tagSansParentPaths);
        insert.exec();
    }
}

/// Takes the place of the tags of an earlier rebuild in one step, so that no half of them is left.
void storeTags(const UrlRecord &page, const URLTags &tags, const RebuildContext &ctx) {
    onProject([&] {
        Savepoint whole(ctx.project);
        deleteTags(page, ctx);
        insertTags(page, tags, ctx);
        whole.release();
    });
}

} // namespace

std::size_t findTagsInFile(const UrlRecord &page, PageSource &source, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, std::size_t{0}, [&] {
        showBeginning(page, ctx);
        showStep(ctx, "Locating Tags", 0);
        const std::optional<std::string> &text = source.text();
        if (!text)
            return std::size_t{0};
        const auto found = scanTags(*text, ctx.settings.lists(), ctx.task);
        if (!found)
            return std::size_t{0};
        showStep(ctx, "Reconciling", 33);
        const URLTags tags = reconcileTags(*found);
        showStep(ctx, "Reconciling", 66);
        storeTags(page, tags, ctx);
        showStep(ctx, "Reconciling", 100);
        return tags.count();
    });
}

} // namespace nv
