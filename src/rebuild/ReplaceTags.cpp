#include "rebuild/ReplaceTags.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/SqliteErrors.h"
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
    std::int64_t Tag_ID = 0;
    std::int64_t TagURLID = 0;
    std::string OriginalTag;
    std::string NewTag;
    std::string TagDefinition;
    std::string AccuracyScore;
    std::int64_t FileOffset = 0;
};

std::vector<TagRow> readTags(const URLClass &page, const RebuildContext &ctx) {
    std::vector<TagRow> tags;
    SQLite::Statement rows(ctx.project,
                           "SELECT Tag_ID, TagURLID, OriginalTag, NewTag, TagDefinition, "
                           "AccuracyScore, FileOffset FROM Tags WHERE URL_ID = ? ORDER BY Tag_ID");
    rows.bind(1, number(page.URLID));
    while (rows.executeStep()) {
        const auto text = [&rows](int at) {
            return std::string(trim(rows.getColumn(at).getString()));
        };
        tags.push_back({rows.getColumn(0).getInt64(), rows.getColumn(1).getInt64(), text(2),
                        text(3), text(4), text(5), rows.getColumn(6).getInt64()});
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

/// The chosen record, then those whose URL ends in the reference, then the others by their order.
class Candidates {
  public:
    explicit Candidates(const RebuildContext &ctx)
        : m_options(ctx.project,
                    "SELECT TagOptions.TagURLID, URLs.URL FROM TagOptions JOIN URLs ON URLs.URL_ID "
                    "= TagOptions.TagURLID WHERE Tag_ID = ? ORDER BY TagOption_ID") {}

    std::vector<std::int64_t> of(const TagRow &tag) {
        std::vector<std::int64_t> best;
        if (tag.TagURLID > 0)
            best.push_back(tag.TagURLID);
        if (candidatesIn(tag.AccuracyScore) <= static_cast<std::int64_t>(best.size()))
            return best;
        std::vector<std::int64_t> others;
        const std::string text = searchTextOf(tag.OriginalTag);
        m_options.reset();
        m_options.bind(1, tag.Tag_ID);
        while (m_options.executeStep()) {
            const std::int64_t id = m_options.getColumn(0).getInt64();
            if (id != tag.TagURLID)
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
        return std::pair(tags[i].FileOffset, replacements[i].newValue);
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

std::optional<ReplacedPage> rewritten(const URLClass &page, PageSource &source,
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
            {toAnsi(tag.TagDefinition), toAnsi(tag.OriginalTag), toAnsi(newValue)});
        made.log += fmt::format("{}|{}|{}|\r\n", tag.TagURLID, tag.OriginalTag, newValue);
        made.notes.push_back({tag.AccuracyScore, false, candidates.of(tag)});
    }
    ReplacedText replaced = replacedInOrder(text, replacements);
    const std::vector<bool> named = rewrittenOf(tags, replacements, replaced.made);
    for (std::size_t i = 0; i < named.size(); ++i)
        made.notes[i].rewritten = named[i];
    // Only now: attributes with blanks around "=" are tidied but were not searched.
    made.text = ReplaceAllText(replaced.text, " = ", "=");
    if (ctx.settings.DisableScriptTags)
        made.text = StriptScriptTags(made.text);
    return made;
}

} // namespace

std::optional<ReplacedPage> ReplaceTags(const URLClass &page, PageSource &source,
                                        const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport,
                   std::optional(ReplacedPage{{}, page.IngredientIDs, {}}),
                   [&] { return onRow([&] { return rewritten(page, source, ctx); }); });
}

} // namespace nv
