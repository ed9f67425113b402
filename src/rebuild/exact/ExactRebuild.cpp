#include "rebuild/exact/ExactRebuild.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SqliteErrors.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuiltRow.h"
#include "rebuild/exact/Assembly.h"
#include "rebuild/exact/OwnParts.h"
#include "rebuild/exact/PartFiles.h"
#include "rebuild/exact/PartFinder.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ExactRebuild.Run()";
constexpr std::string_view kBannerTime = "yyyy-mm-dd Hh:Nn:Ss";

/// The page's bytes, unpacked, with a copy in `RunTimeTempFilePath`; nothing when they are gone.
std::optional<Bytes> contentOfPage(UrlRecord &page, const RebuildContext &ctx) {
    page.RunTimeTempFilePath.clear(); // what another step left there may be another page's
    const auto content = bodyOf(page, ctx.extraction(), 0);
    if (ctx.partFetched)
        ctx.partFetched(page, content ? &*content : nullptr);
    if (!content)
        return std::nullopt;
    page.RunTimeTempFilePath = ctx.tempFolderPath / kPageCopy;
    if (fs::file_size(content->file) > PartFiles::kLargestDocument)
        throw std::length_error(
            fmt::format("the page has more than {} bytes", PartFiles::kLargestDocument));
    copyToScratch(content->file, page.RunTimeTempFilePath);
    return readWhole(page.RunTimeTempFilePath);
}

std::string timeText(Date utc) {
    return utc.has() ? formatDate(utc, kBannerTime) + " UTC" : std::string();
}

/// Sizes of a picture that were never fetched are no parts of the page.
bool isPart(const PartNote &note) {
    return note.rule != partrule::kSameSet;
}

BannerFacts bannerFacts(const UrlRecord &page, const std::vector<PartNote> &notes,
                        const PartFiles &files) {
    BannerFacts facts;
    facts.caches = files.caches();
    facts.address = page.URL;
    facts.pageDate = timeText(page.ActionDateUTC);
    std::set<std::string> named;
    Date oldest;
    Date newest;
    for (const PartNote &note : notes) {
        if (!isPart(note) || !named.insert(note.address).second)
            continue;
        ++facts.parts;
        facts.found += note.isShown() ? 1 : 0;
        if (note.isShown() && note.time.has()) {
            oldest = !oldest.has() || note.time < oldest ? note.time : oldest;
            newest = !newest.has() || note.time > newest ? note.time : newest;
        }
    }
    facts.oldestPart = timeText(oldest);
    facts.newestPart = timeText(newest);
    return facts;
}

/// A field of the substitution log can't hold what ends it.
std::string logField(std::string_view text) {
    std::string field = replaceAll(text, "|", "%7C");
    std::ranges::replace_if(
        field, [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return field;
}

std::string logOf(const std::vector<PartNote> &notes) {
    std::string log;
    for (const PartNote &note : notes) {
        const std::string original = logField(note.original);
        const bool isThere = note.part != UrlId::none;
        log += fmt::format("{}|{}|{}|\r\n", number(note.part), original,
                           isThere ? note.localName : original);
    }
    return log;
}

/// The list of the parts that lie in the folder, each once, as templates take them.
std::string listOf(const std::vector<PartNote> &notes, const std::string &pageName) {
    std::string list;
    std::set<std::string> listed{pageName};
    for (const PartNote &note : notes)
        if (note.part != UrlId::none && listed.insert(note.localName).second)
            list += fmt::format("{}|{}|{}|\r\n", number(note.part), logField(note.original),
                                note.localName);
    return list;
}

void writeList(const fs::path &folder, const UrlRecord &page, const std::vector<PartNote> &notes) {
    const std::string list = listOf(notes, pageNameOf(page.URLID));
    if (!list.empty())
        writeWhole(folder / kPartsList, toAnsi(list));
}

bool rebuild(UrlRecord &page, Batch batch, const RebuildContext &ctx, const Clock &clock) {
    if (batch == Batch::yes && !ctx.task.advance(0))
        return false; // cancelled before this page's turn
    const fs::path folder = rebuildFolderOf(page.URLID, ctx);
    makeEmptyFolder(folder);
    const auto bytes = contentOfPage(page, ctx);
    if (!bytes || !isPageContent(page))
        return false;
    page.RunTimeRebuiltFilePath = folder / pageNameOf(page.URLID);
    PartFiles files(page, folder, ctx);
    PartFinder finder(page, files, ctx);
    Assembly assembly(page, folder, files, finder, ctx);
    if (!assembly.run(*bytes))
        return false;
    const std::vector<PartNote> &notes = assembly.notes();
    const std::string text = assembly.page(bannerFor(bannerFacts(page, notes, files)));
    writeWhole(page.RunTimeRebuiltFilePath, text);
    writeList(folder, page, notes);
    page.RebuiltSourceCode = fromAnsi(text);
    page.IngredientIDs = logOf(notes);
    storeRebuiltExactly(page, notes, ctx, clock);
    return true;
}

bool harvest(UrlRecord &page, const fs::path &folder, const RebuildContext &ctx) {
    makeEmptyFolder(folder);
    page.RunTimeRebuiltFilePath = folder / pageNameOf(page.URLID);
    writeWhole(page.RunTimeRebuiltFilePath, toAnsi(page.RebuiltSourceCode));
    const std::vector<PartNote> notes = RebuiltParts(ctx.project).notes(page.URLID);
    const auto bytes = contentOfPage(page, ctx);
    if (!bytes)
        return true; // what its parts stood in is gone, and the page shows no more than itself
    PartFiles files(page, folder, ctx);
    PartFinder finder(page, files, ctx, notes);
    Assembly assembly(page, folder, files, finder, ctx);
    if (!assembly.run(*bytes))
        return false;
    writeList(folder, page, assembly.notes());
    return true;
}

} // namespace

bool rebuildExactly(UrlRecord &page, Batch batch, const RebuildContext &ctx, const Clock &clock) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, false,
                   [&] { return onRow([&] { return rebuild(page, batch, ctx, clock); }); });
}

bool isPageContent(const UrlRecord &page) {
    const Bytes bytes = readHead(page.RunTimeTempFilePath, kPartHead);
    const std::string_view head = ByteView(bytes).raw();
    return page.IsWebPage || beginsLikePage(head) ||
           partForm(RefUse::frame, page.MIMEType, head) == PartForm::page;
}

bool harvestExactly(UrlRecord &page, const fs::path &folder, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Serious, kProcedure, kContactSupport, false,
                   [&] { return onRow([&] { return harvest(page, folder, ctx); }); });
}

} // namespace nv
