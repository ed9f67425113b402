#include "rebuild/TagChoice.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "rebuild/TagOptions.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace nv {

namespace {

struct TagRow {
    std::int64_t urlID = 0;
    std::string originalTag;
    std::string tagSansParentPaths;
    std::string accuracyScore; ///< what the search has counted, when it stored less
};

struct OptionRow {
    std::int64_t tagOptionID = 0;
    std::string option;
    std::int64_t tagURLID = 0;
};

std::optional<TagRow> readTag(std::int64_t tagID, const RebuildContext &ctx) {
    SQLite::Statement row(ctx.project, "SELECT URL_ID, OriginalTag, TagSansParentPaths, "
                                       "AccuracyScore FROM Tags WHERE Tag_ID = ?");
    row.bind(1, tagID);
    if (!row.executeStep())
        return std::nullopt;
    const auto text = [&row](int at) { return row.getColumn(at).getString(); };
    return TagRow{row.getColumn(0).getInt64(), text(1), text(2), text(3)};
}

/// The first option and how many there are, stored or not; only the first can be taken.
struct Options {
    std::int64_t count = 0;
    OptionRow first;
};

Options readOptions(std::int64_t tagID, const TagRow &tag, const RebuildContext &ctx) {
    Options options;
    SQLite::Statement count(ctx.project, "SELECT Count(*) FROM TagOptions WHERE Tag_ID = ?");
    count.bind(1, tagID);
    count.executeStep();
    options.count = count.getColumn(0).getInt64();
    if (options.count > 0)
        options.count = std::max(options.count, candidatesIn(tag.accuracyScore));
    SQLite::Statement row(ctx.project, "SELECT TagOption_ID, Option, TagURLID FROM TagOptions "
                                       "WHERE Tag_ID = ? ORDER BY TagOption_ID LIMIT 1");
    row.bind(1, tagID);
    if (row.executeStep())
        options.first = {row.getColumn(0).getInt64(), row.getColumn(1).getString(),
                         row.getColumn(2).getInt64()};
    return options;
}

std::string urlOf(std::int64_t urlID, const RebuildContext &ctx) {
    const auto page = ctx.records.getURL(UrlId{urlID});
    return page ? page->URL : std::string();
}

bool endsWithNoCase(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && equalsNoCase(text.substr(text.size() - end.size()), end);
}

/// Whether one of the four tests picks an option by its id. All of them look at the page's own URL
/// and never at the option, so what decides is whether any succeeds, and then the first option is
/// taken. Earlier cases were rebuilt that way.
bool isPickedById(const TagRow &tag, std::string_view pageURL) {
    if (pageURL.empty())
        return false; // nothing is found in an empty text, not even an empty one
    const std::string_view name = getFilenameFromPath(trim(tag.originalTag));
    const std::string sans(trim(tag.tagSansParentPaths));
    const std::string line = replaceAll(replaceAll(sans, "\n", ""), "\r", "");
    const std::string tail = sans.find('/') == std::string::npos ? "/" + sans : sans;
    return (endsWithNoCase(pageURL, line) && containsNoCase(pageURL, name)) ||
           pageURL.find(hostFromURL(pageURL)) != std::string_view::npos ||
           endsWithNoCase(pageURL, tail) || containsNoCase(pageURL, sans);
}

/// What is written to the tag's row; members without a value leave their column.
struct Pick {
    std::optional<std::string> newTag;
    std::string accuracyScore;
    std::optional<std::int64_t> tagURLID;
    std::optional<std::int64_t> tagOptionID;
};

void store(const Pick &pick, std::int64_t tagID, const RebuildContext &ctx) {
    SQLite::Statement update(ctx.project,
                             "UPDATE Tags SET AccuracyScore = ?, NewTag = coalesce(?, NewTag), "
                             "TagURLID = coalesce(?, TagURLID), "
                             "TagOption_ID = coalesce(?, TagOption_ID) WHERE Tag_ID = ?");
    const auto bindNumber = [&update](int at, const std::optional<std::int64_t> &value) {
        value ? update.bind(at, *value) : update.bind(at);
    };
    update.bind(1, pick.accuracyScore);
    pick.newTag ? update.bind(2, *pick.newTag) : update.bind(2);
    bindNumber(3, pick.tagURLID);
    bindNumber(4, pick.tagOptionID);
    update.bind(5, tagID);
    update.exec();
}

std::string score(std::int64_t count) {
    return scoreText(count > 0 ? 1 : 0, count);
}

Pick pickForIE(const TagRow &tag, const Options &options, std::string_view pageURL) {
    Pick pick;
    pick.accuracyScore = score(options.count);
    if (options.count == 0) {
        pick.newTag = tag.originalTag;
        return pick;
    }
    const bool byId = options.count == 1 || isPickedById(tag, pageURL);
    pick.newTag = options.count == 1 || !byId ? std::string(trim(options.first.option))
                                              : options.first.option;
    pick.tagOptionID = byId ? options.first.tagOptionID : 0;
    if (byId)
        pick.tagURLID = options.first.tagURLID;
    return pick;
}

Pick pickForOthers(const TagRow &tag, const Options &options, std::string_view pageURL) {
    Pick pick;
    pick.accuracyScore = score(options.count);
    if (options.count == 0)
        pick.tagURLID = 0;
    else if (options.count == 1 || isPickedById(tag, pageURL))
        pick.tagURLID = options.first.tagURLID;
    else
        pick.newTag = std::string(trim(options.first.option));
    return pick;
}

// "../ABCDEFGH/name": where folder and name stand in a path of Internet Explorer, in characters.
constexpr std::string_view kParent = "../";
constexpr std::size_t kFolderLength = 8;
constexpr std::size_t kNameAt = kParent.size() + kFolderLength + 1;

/// The tag's row has a copy of where the pick lies. The page's own record keeps what the artefact
/// said of the page: table, reports and the search of later pages go by it.
void keepFolder(std::int64_t tagID, std::string_view newTag, const RebuildContext &ctx) {
    SQLite::Statement update(ctx.project, "UPDATE Tags SET CacheFolderName = ?, CacheFileName = ? "
                                          "WHERE Tag_ID = ?");
    update.bind(1, std::string(charSub(newTag, kParent.size(), kFolderLength)));
    update.bind(2, std::string(charSub(newTag, kNameAt)));
    update.bind(3, tagID);
    update.exec();
}

std::vector<std::pair<std::int64_t, std::string>> tagsInOrder(const UrlRecord &page,
                                                              const RebuildContext &ctx) {
    std::vector<std::pair<std::int64_t, std::string>> tags;
    SQLite::Statement rows(ctx.project, "SELECT Tag_ID, OriginalTag FROM Tags WHERE URL_ID = ? "
                                        "ORDER BY OriginalTag ASC, Tag_ID");
    bindId(rows, 1, page.URLID);
    while (rows.executeStep())
        tags.emplace_back(rows.getColumn(0).getInt64(), rows.getColumn(1).getString());
    return tags;
}

} // namespace

bool pickIETagOption(std::int64_t tagID, const RebuildContext &ctx) {
    const auto pick = [&] {
        const auto tag = readTag(tagID, ctx);
        if (!tag)
            return true;
        const Options options = readOptions(tagID, *tag, ctx);
        const Pick made = pickForIE(*tag, options, urlOf(tag->urlID, ctx));
        store(made, tagID, ctx);
        if (options.count > 0 && made.newTag->starts_with(kParent) &&
            charCount(*made.newTag) > kNameAt)
            keepFolder(tagID, *made.newTag, ctx);
        return true;
    };
    return trapped(ctx.log, Severity::Warning, "MainBAS.PickIETagOption()", kContactSupport, false,
                   [&] { return onRow(pick); });
}

bool pickNonIETagOption(std::string_view, std::int64_t tagID, const RebuildContext &ctx) {
    const auto pick = [&] {
        if (const auto tag = readTag(tagID, ctx))
            store(pickForOthers(*tag, readOptions(tagID, *tag, ctx), urlOf(tag->urlID, ctx)), tagID,
                  ctx);
        return true;
    };
    return trapped(ctx.log, Severity::Warning, "MainBAS.PickNonIETagOption()", kContactSupport,
                   false, [&] { return onRow(pick); });
}

bool chooseTagOptions(const UrlRecord &page, const RebuildContext &ctx) {
    const bool byUrl = partsOf(page.cacheType) == CacheParts::byUrl;
    const auto tags = trapped(ctx.log, Severity::Warning, "MainBAS.ChooseTagOptions()",
                              kContactSupport, std::optional<decltype(tagsInOrder(page, ctx))>(),
                              [&] { return std::optional(tagsInOrder(page, ctx)); });
    if (!tags)
        return false;
    bool whole = true;
    double done = 0;
    for (const auto &[Tag_ID, OriginalTag] : *tags) {
        if (!ctx.task.advance(done++ / static_cast<double>(tags->size())))
            return false;
        const bool picked = byUrl ? pickNonIETagOption(trim(OriginalTag), Tag_ID, ctx)
                                  : pickIETagOption(Tag_ID, ctx);
        whole = whole && picked;
    }
    return whole;
}

} // namespace nv
