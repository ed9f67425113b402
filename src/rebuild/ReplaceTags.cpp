#include "rebuild/ReplaceTags.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/SqliteErrors.h"
#include "rebuild/FindTags.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"
#include "rebuild/RebuiltRow.h"
#include "rebuild/Replacement.h"
#include "rebuild/Scripts.h"
#include "rebuild/TagOptions.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainBAS.ReplaceTags()";
/// A local name that begins so belongs to no record.
constexpr std::string_view kNoRecord = "0000000";

struct TagRow {
    std::int64_t TagURLID = 0;
    std::string OriginalTag;
    std::string NewTag;
    std::string TagDefinition;
};

std::vector<TagRow> readTags(const URLClass &page, const RebuildContext &ctx) {
    std::vector<TagRow> tags;
    SQLite::Statement rows(ctx.project, "SELECT TagURLID, OriginalTag, NewTag, TagDefinition "
                                        "FROM Tags WHERE URL_ID = ? ORDER BY Tag_ID");
    rows.bind(1, number(page.URLID));
    while (rows.executeStep()) {
        const auto text = [&rows](int at) { return rows.getColumn(at).getString(); };
        tags.push_back({rows.getColumn(0).getInt64(), std::string(trim(text(1))),
                        std::string(trim(text(2))), std::string(trim(text(3)))});
    }
    return tags;
}

std::string extensionOf(std::int64_t TagURLID, const RebuildContext &ctx) {
    SQLite::Statement row(ctx.project, "SELECT URLFileExt FROM URLs WHERE URL_ID = ?");
    row.bind(1, TagURLID);
    return row.executeStep() ? std::string(trim(row.getColumn(0).getString())) : std::string();
}

std::string newValueOf(const TagRow &tag, bool byUrl, const RebuildContext &ctx) {
    if (byUrl && tag.TagURLID <= 0)
        return tag.OriginalTag;
    const std::string extension =
        byUrl ? extensionOf(tag.TagURLID, ctx) : GetFileExtension(tag.NewTag);
    const std::string name = localNameOf(UrlId{tag.TagURLID}, extension);
    return name.starts_with(kNoRecord) ? tag.OriginalTag : name;
}

std::string rewritten(URLClass &page, const RebuildContext &ctx) {
    std::string text = pageText(page, ctx).value_or(std::string());
    const bool byUrl = namesPartsByUrl(toUpper(page.cacheType));
    const std::vector<TagRow> tags = readTags(page, ctx);
    std::vector<Replacement> replacements;
    std::string log;
    double done = 0;
    for (const TagRow &tag : tags) {
        if (!ctx.task.advance(done++ / static_cast<double>(tags.size())))
            break;
        const std::string newValue = newValueOf(tag, byUrl, ctx);
        replacements.push_back(
            {toAnsi(tag.TagDefinition), toAnsi(tag.OriginalTag), toAnsi(newValue)});
        log += fmt::format("{}|{}|{}|\r\n", tag.TagURLID, tag.OriginalTag, newValue);
    }
    text = replacedInOrder(text, replacements);
    // Only now: attributes with blanks around "=" are tidied but were not searched.
    text = ReplaceAllText(text, " = ", "=");
    if (ctx.settings.DisableScriptTags)
        text = StriptScriptTags(text);
    storeSubstitutions(page, std::move(log), ctx);
    return text;
}

} // namespace

std::string ReplaceTags(URLClass &page, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, std::string(),
                   [&] { return onProject([&] { return rewritten(page, ctx); }); });
}

} // namespace nv
