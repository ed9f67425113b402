#include "rebuild/ReplaceTags.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"
#include "rebuild/Replacement.h"
#include "rebuild/Scripts.h"
#include "rebuild/TagOptions.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainBAS.ReplaceTags()";
/// A local name that begins so belongs to no record.
constexpr std::string_view kNoRecord = "0000000";

struct TagRow {
    std::int64_t tagID = 0;
    std::int64_t tagURLID = 0;
    std::string originalTag;
    std::string newTag;
    std::string tagDefinition;
    std::string accuracyScore;
    std::int64_t fileOffset = 0;
};

std::vector<TagRow> readTags(const UrlRecord &page, const RebuildContext &ctx) {
    std::vector<TagRow> tags;
    SQLite::Statement rows(ctx.project,
                           "SELECT Tag_ID, TagURLID, OriginalTag, NewTag, TagDefinition, "
                           "AccuracyScore, FileOffset FROM Tags WHERE URL_ID = ? ORDER BY Tag_ID");
    bindId(rows, 1, page.URLID);
    while (rows.executeStep()) {
        const auto text = [&rows](int at) {
            return std::string(trim(rows.getColumn(at).getString()));
        };
        tags.push_back({rows.getColumn(0).getInt64(), rows.getColumn(1).getInt64(), text(2),
                        text(3), text(4), text(5), rows.getColumn(6).getInt64()});
    }
    return tags;
}

std::string extensionOf(std::int64_t tagURLID, const RebuildContext &ctx) {
    SQLite::Statement row(ctx.project, "SELECT URLFileExt FROM URLs WHERE URL_ID = ?");
    row.bind(1, tagURLID);
    return row.executeStep() ? std::string(trim(row.getColumn(0).getString())) : std::string();
}

std::string newValueOf(const TagRow &tag, bool byUrl, const RebuildContext &ctx) {
    if (byUrl && tag.tagURLID <= 0)
        return tag.originalTag;
    const std::string extension =
        byUrl ? extensionOf(tag.tagURLID, ctx) : getFileExtension(tag.newTag);
    const std::string name = localNameOf(UrlId{tag.tagURLID}, extension);
    return name.starts_with(kNoRecord) ? tag.originalTag : name;
}

/// The chosen record, then those whose URL ends in the reference, then the others by their order.
class Candidates {
  public:
    explicit Candidates(const RebuildContext &ctx)
        : m_options(ctx.project,
                    "SELECT TagOptions.TagURLID, URLs.URL FROM TagOptions JOIN URLs ON URLs.URL_ID "
                    "= TagOptions.TagURLID WHERE Tag_ID = ? ORDER BY TagOption_ID") {}

    std::vector<std::int64_t> of(const TagRow &tag) {
        std::vector<std::int64_t> best;
        if (tag.tagURLID > 0)
            best.push_back(tag.tagURLID);
        if (candidatesIn(tag.accuracyScore) <= static_cast<std::int64_t>(best.size()))
            return best;
        std::vector<std::int64_t> others;
        const std::string text = searchTextOf(tag.originalTag);
        m_options.reset();
        m_options.bind(1, tag.tagID);
        while (m_options.executeStep()) {
            const std::int64_t id = m_options.getColumn(0).getInt64();
            if (id != tag.tagURLID)
                (endsInText(m_options.getColumn(1).getString(), text) ? best : others)
                    .push_back(id);
        }
        best.insert(best.end(), others.begin(), others.end());
        best.resize(std::min(best.size(), kMostNoted));
        return best;
    }

  private:
    SQLite::Statement m_options;
};

/// Which references the new text names a part for. One that an equal reference before it has taken
/// along counts, and so does one that another rule has found at the same place.
std::vector<bool> rewrittenOf(const std::vector<TagRow> &tags,
                              const std::vector<Replacement> &replacements,
                              const std::vector<bool> &made) {
    const auto textKey = [&](std::size_t i) {
        const Replacement &one = replacements[i];
        return std::tuple(toLower(one.rule), toLower(one.old), one.newValue);
    };
    const auto placeKey = [&](std::size_t i) {
        return std::pair(tags[i].fileOffset, replacements[i].newValue);
    };
    std::set<decltype(textKey(0))> texts;
    std::set<decltype(placeKey(0))> places;
    for (std::size_t i = 0; i < made.size(); ++i)
        if (made[i] && replacements[i].newValue != replacements[i].old)
            texts.insert(textKey(i));
    for (std::size_t i = 0; i < made.size(); ++i)
        if (texts.contains(textKey(i)))
            places.insert(placeKey(i));
    std::vector<bool> rewritten(tags.size(), false);
    for (std::size_t i = 0; i < made.size(); ++i)
        rewritten[i] = places.contains(placeKey(i));
    return rewritten;
}

std::optional<ReplacedPage> rewritten(const UrlRecord &page, PageSource &source,
                                      const RebuildContext &ctx) {
    const std::string text = source.text().value_or(std::string());
    const bool byUrl = partsOf(page.cacheType) == CacheParts::byUrl;
    const std::vector<TagRow> tags = readTags(page, ctx);
    std::vector<Replacement> replacements;
    ReplacedPage made;
    Candidates candidates(ctx);
    for (const TagRow &tag : tags) {
        if (!ctx.task.advance(static_cast<double>(replacements.size()) /
                              static_cast<double>(tags.size())))
            return std::nullopt;
        const std::string newValue = newValueOf(tag, byUrl, ctx);
        replacements.push_back(
            {toAnsi(tag.tagDefinition), toAnsi(tag.originalTag), toAnsi(newValue)});
        made.log += fmt::format("{}|{}|{}|\r\n", tag.tagURLID, tag.originalTag, newValue);
        made.notes.push_back({tag.accuracyScore, false, candidates.of(tag)});
    }
    ReplacedText replaced = replacedInOrder(text, replacements);
    const std::vector<bool> named = rewrittenOf(tags, replacements, replaced.made);
    for (std::size_t i = 0; i < named.size(); ++i)
        made.notes[i].rewritten = named[i];
    // Only now: attributes with blanks around "=" are tidied but were not searched.
    made.text = replaceAllText(replaced.text, " = ", "=");
    if (ctx.settings.disableScriptTags)
        made.text = striptScriptTags(made.text);
    return made;
}

} // namespace

std::optional<ReplacedPage> replaceTags(const UrlRecord &page, PageSource &source,
                                        const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport,
                   std::optional(ReplacedPage{{}, page.IngredientIDs, {}}),
                   [&] { return onRow([&] { return rewritten(page, source, ctx); }); });
}

} // namespace nv
