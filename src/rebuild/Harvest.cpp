#include "rebuild/Harvest.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "rebuild/Archive.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"
#include "rebuild/RebuiltRow.h"
#include "rebuild/StyleSheet.h"
#include "rebuild/TagOptions.h"
#include "rebuild/exact/ExactRebuild.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace nv {

namespace fs = std::filesystem;

namespace {

std::int64_t idOf(std::string_view field, const RebuildSettings &settings) {
    std::int64_t id = 0;
    const std::string_view digits = trim(field);
    std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (id > kLargestNarrowId && !settings.wideRecordIds)
        throw std::out_of_range(
            fmt::format("the record id {} is above 32767, which parts of pages can't have unless "
                        "WideRecordIds is switched on in the settings",
                        id));
    return id;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (const std::string_view part : split(text, '\n')) {
        const std::string_view line = part.substr(0, part.find_last_not_of('\r') + 1);
        if (!line.empty())
            lines.push_back(line);
    }
    return lines;
}

void removeOtherFiles(const fs::path &folder, const fs::path &page) {
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        if (entry.path() != page && !entry.is_directory())
            fs::remove(entry.path());
}

class Harvest {
  public:
    Harvest(UrlRecord &page, fs::path folder, Batch batch, const RebuildContext &ctx)
        : m_page(page), m_folder(std::move(folder)), m_batch(batch), m_ctx(ctx) {}

    bool run() {
        makeFolder(m_folder);
        m_page.RunTimeRebuiltFilePath = m_folder / pageNameOf(m_page.URLID);
        if (!fs::exists(m_page.RunTimeRebuiltFilePath) && !m_page.RebuiltSourceCode.empty())
            writeWhole(m_page.RunTimeRebuiltFilePath, toAnsi(m_page.RebuiltSourceCode));
        removeOtherFiles(m_folder, m_page.RunTimeRebuiltFilePath);
        const bool whole = takeParts();
        if (!m_list.empty())
            writeWhole(m_folder / kPartsList, toAnsi(m_list));
        return whole;
    }

  private:
    bool takeParts() {
        const auto lines = linesOf(m_page.IngredientIDs);
        if (!lines.empty() && m_batch == Batch::no && !m_ctx.settings.creatingReport)
            m_ctx.task.describe(
                {"HARVESTING ITEMS FOR SELECTED FILE", "Please standby...", "", ""});
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (!m_ctx.task.advance(static_cast<double>(i) / static_cast<double>(lines.size())))
                return false;
            for (const Substitution &part : substitutionsOf(lines[i], m_ctx.settings)) {
                showPart(part, i + 1, lines.size());
                takePart(part);
            }
        }
        return true;
    }

    void takePart(const Substitution &line) {
        if (line.tagURLID <= 0)
            return takeStored(line);
        if (partsOf(m_page.cacheType) == CacheParts::none)
            return;
        auto part = m_ctx.records.getURL(UrlId{line.tagURLID});
        if (!part)
            return;
        const std::string name = localNameOf(part->URLID, trim(part->URLFileExt));
        m_list += fmt::format("{}|{}|{}|\r\n", line.tagURLID, line.originalTag, name);
        const fs::path target = m_folder / name;
        if (!fs::exists(target))
            fetch(*part, target);
        if (getFileExtension(line.originalTag) == "css" && !isPage(target) && fs::exists(target))
            m_sheetPictures = findReplaceCSSTags(target, *part, m_ctx, m_sheetPictures);
        copyAsNamed(line, target);
    }

    void fetch(UrlRecord &part, const fs::path &target) {
        const auto content = bodyOf(part, m_ctx.extraction(), 0);
        if (m_ctx.partFetched)
            m_ctx.partFetched(part, content ? &*content : nullptr);
        if (content)
            copyToScratch(content->file, target);
    }

    /// A part that a template has brought from another project lies in the page's archive only.
    void takeStored(const Substitution &line) {
        const bool isName = line.newTag != line.originalTag && !line.newTag.empty() &&
                            getFilenameFromPath(line.newTag) == line.newTag;
        const fs::path target = m_folder / line.newTag;
        if (!isName || m_page.CacheFileRebuiltBLOB.empty() || isPage(target))
            return;
        const auto content = fileIn(ByteView(m_page.CacheFileRebuiltBLOB), line.newTag);
        if (!content)
            return;
        m_list += fmt::format("0|{}|{}|\r\n", line.originalTag, line.newTag);
        writeWhole(target, content->raw());
    }

    /// The rebuilt page is what stands for a page that is its own part.
    bool isPage(const fs::path &file) const { return file == m_page.RunTimeRebuiltFilePath; }

    /// A page of Internet Explorer names its part by the extension of the cached file, which may be
    /// another one than its URL has: the part then lies there under both names.
    void copyAsNamed(const Substitution &line, const fs::path &target) {
        const std::string named = localNameOf(UrlId{line.tagURLID}, getFileExtension(line.newTag));
        if (named == line.newTag && named != target.filename() && !isPage(m_folder / named) &&
            fs::exists(target))
            copyToScratch(target, m_folder / named);
    }

    void showPart(const Substitution &part, std::size_t n, std::size_t count) {
        if (!m_ctx.task.wantsStep())
            return;
        TaskStep step;
        step.topMessage = part.newTag;
        step.bottomMessage = fmt::format("Harvesting {} of {}", n, count);
        step.bottomCounter = static_cast<std::int64_t>(n);
        step.bottomTotal = static_cast<std::int64_t>(count);
        m_ctx.task.show(step);
    }

    UrlRecord &m_page;
    fs::path m_folder;
    Batch m_batch;
    const RebuildContext &m_ctx;
    std::string m_list;
    std::size_t m_sheetPictures = 0; ///< names given to pictures of style sheets
};

} // namespace

std::vector<Substitution> substitutionsOf(std::string_view ingredientIDs,
                                          const RebuildSettings &settings) {
    std::vector<Substitution> substitutions;
    for (const std::string_view line : linesOf(ingredientIDs)) {
        const auto fields = split(line, '|');
        const auto field = [&fields](std::size_t i) {
            return std::string(i < fields.size() ? fields[i] : std::string_view());
        };
        substitutions.push_back({idOf(field(0), settings), field(1), field(2)});
    }
    return substitutions;
}

bool needsWideIds(std::string_view ingredientIDs, const RebuildSettings &settings) {
    RebuildSettings wide = settings;
    wide.wideRecordIds = true;
    const auto parts = substitutionsOf(ingredientIDs, wide);
    return !settings.wideRecordIds &&
           std::any_of(parts.begin(), parts.end(),
                       [](const Substitution &part) { return part.tagURLID > kLargestNarrowId; });
}

fs::path rebuildFolderOf(UrlId id, const RebuildContext &ctx) {
    return ctx.tempFolderPath / folderNameOf(id);
}

bool harvestParts(UrlRecord &page, const fs::path &folder, Batch batch, const RebuildContext &ctx) {
    if (isRebuiltExactly(page))
        return harvestExactly(page, folder, ctx);
    return trapped(ctx.log, Severity::Serious, "MainForm.HarvestParts()", kContactSupport, false,
                   [&] { return onRow([&] { return Harvest(page, folder, batch, ctx).run(); }); });
}

bool storeIngredientIDs(UrlRecord &page, const RebuildContext &ctx) {
    const auto store = [&] {
        const fs::path list = rebuildFolderOf(page.URLID, ctx) / kPartsList;
        if (!fs::exists(list))
            return false;
        storeSubstitutions(page, fromAnsi(readTextFile(list, LineBreaks::keep)), ctx);
        return true;
    };
    return trapped(ctx.log, Severity::Warning, "ParserClass.StoreIngredientIDs()", kContactSupport,
                   false, [&] { return onRow(store); });
}

bool unpackIngredients(UrlRecord &page, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Critical, "ParserClass.UnpackIngredients()", kContactSupport,
                   false, [&] {
                       const fs::path folder = rebuildFolderOf(page.URLID, ctx);
                       makeFolder(folder);
                       page.RunTimeRebuiltFilePath = folder / pageNameOf(page.URLID);
                       writeWhole(page.RunTimeRebuiltFilePath, toAnsi(page.RebuiltSourceCode));
                       const bool whole = harvestParts(page, folder, Batch::no, ctx);
                       page.RunTimeTempFilePath = ctx.tempFolderPath / kPageCopy;
                       copyToScratch(page.RunTimeRebuiltFilePath, page.RunTimeTempFilePath);
                       return whole;
                   });
}

} // namespace nv
