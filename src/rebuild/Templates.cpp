#include "rebuild/Templates.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Replace.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/SqliteErrors.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"
#include "rebuild/RebuiltRow.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kViewFolder = "TEMPLATE.NVR";

/// Wide ids are read whatever the setting: the list was written by this program.
std::vector<Substitution> harvestedParts(const fs::path &folder) {
    RebuildSettings wide;
    wide.WideRecordIds = true;
    return substitutionsOf(fromAnsi(ReadTextFile(folder / kPartsList, LineBreaks::keep)), wide);
}

TemplateRecordsCollection recordsOf(const URLClass &page, const fs::path &folder) {
    TemplateRecordsCollection records;
    TemplateRecord html;
    html.FileName = pageNameOf(page.URLID);
    html.FilePath = folder / html.FileName;
    records.Add(html);
    for (const Substitution &part : harvestedParts(folder)) {
        TemplateRecord record;
        record.TagID = part.TagURLID;
        record.OriginalTag = part.OriginalTag;
        record.FileName = part.NewTag;
        record.FilePath = folder / part.NewTag;
        if (!part.NewTag.empty() && fs::is_regular_file(record.FilePath))
            records.Add(std::move(record));
    }
    return records;
}

/// The name of a record's file in a folder: never a path, and "0000017." is the name of a part
/// without an extension.
std::string plainNameOf(const TemplateRecord &record) {
    std::string name(GetFilenameFromPath(record.FileName));
    while (name.ends_with('.'))
        name.pop_back();
    if (name.empty())
        throw std::runtime_error("the template holds a file without a name");
    return name;
}

std::string listLine(const TemplateRecord &record, std::int64_t id) {
    return fmt::format("{}|{}|{}|\r\n", id, record.OriginalTag, plainNameOf(record));
}

/// Whether the record of that id holds the template's bytes in this project too.
bool isSamePart(const TemplateRecord &record, ByteView content, const RebuildContext &ctx) {
    auto part = ctx.records.GetURL(UrlId{record.TagID});
    if (!part)
        return false;
    const auto file = contentOf(*part, ctx.extraction());
    return file && FileMD5(*file) == md5Hex(content.raw());
}

/// Writes the records into `folder`, the page as `pageName`, and the list of the parts.
void writeRecords(const TemplateClass &made, ByteView bytes, const fs::path &folder,
                  const std::string &pageName, const RebuildContext &ctx) {
    std::string list;
    bool hasPage = false;
    for (const TemplateRecord &record : made.records) {
        const ByteView content = bytes.sub(record.recordOffset, record.RecordSize);
        // A part that has no record of its own has the id 0 too.
        const bool isPage = record.TagID == 0 && record.NewTagRelativePath == kTemplatePage &&
                            !std::exchange(hasPage, true);
        writeWhole(folder / (isPage ? pageName : plainNameOf(record)), content.raw());
        if (!isPage)
            list += listLine(record, isSamePart(record, content, ctx) ? record.TagID : 0);
    }
    writeWhole(folder / kPartsList, toAnsi(list));
}

void emptied(const fs::path &folder) {
    makeEmptyFolder(folder);
}

bool applyTemplate(URLClass &page, const fs::path &file, const RebuildContext &ctx,
                   const Clock &clock) {
    const Bytes bytes = readWhole(file);
    const TemplateClass made = readTemplate(ByteView(bytes));
    if (made.records.Count() == 0)
        return false;
    const fs::path folder = rebuildFolderOf(page.URLID, ctx);
    const std::string pageName = pageNameOf(page.URLID);
    emptied(folder);
    writeRecords(made, ByteView(bytes), folder, pageName, ctx);
    page.RunTimeRebuiltFilePath = folder / pageName;
    page.RebuiltSourceCode = fromAnsi(ByteView(readWhole(page.RunTimeRebuiltFilePath)).raw());
    StoreIngredientIDs(page, ctx);
    storeRebuilt(page, ctx, clock);
    return true;
}

/// What was there stays until the new file is whole; a link of that name is replaced itself.
void writeInPlaceOf(const fs::path &target, std::string_view bytes) {
    const fs::path aside = target.native() + ".~new";
    std::error_code ignored;
    fs::remove(aside, ignored);
    writeWhole(aside, bytes);
    replaceDurably(aside, target);
}

bool isAllowed(char c) {
    return static_cast<unsigned char>(c) >= 0x20 &&
           std::string_view("\\/:*?\"<>|").find(c) == std::string_view::npos;
}

/// What is left of `text` for the name of a file, without extension: never a path.
std::string cleanedName(std::string_view text) {
    std::string name;
    std::ranges::copy_if(text, std::back_inserter(name), isAllowed);
    while (name.starts_with('.'))
        name.erase(0, 1);
    return name;
}

} // namespace

fs::path templatePathOf(const URLClass &page, const fs::path &templates) {
    std::string name = cleanedName(page.URLFileName);
    if (name.empty())
        name = sidOf(page.URLID);
    return templates / (name + std::string(kTemplateExtension));
}

std::optional<fs::path> renamedTemplatePath(const fs::path &file, std::string_view name) {
    std::string cleaned = cleanedName(trim(name));
    if (toLower(cleaned).ends_with(toLower(kTemplateExtension)))
        cleaned.resize(cleaned.size() - kTemplateExtension.size());
    if (trim(cleaned).empty())
        return std::nullopt;
    return file.parent_path() / (cleaned + std::string(kTemplateExtension));
}

TemplateResult CreateTemplate(const URLClass &page, const fs::path &templates,
                              std::string_view version, IfTemplateExists ifExists,
                              const RebuildContext &ctx) {
    const auto create = [&] {
        const fs::path folder = rebuildFolderOf(page.URLID, ctx);
        if (!fs::exists(folder / kPartsList) || !fs::exists(folder / pageNameOf(page.URLID)))
            return TemplateResult::noRebuild;
        const fs::path target = templatePathOf(page, templates);
        if (fs::exists(target) && ifExists == IfTemplateExists::refuse)
            return TemplateResult::exists;
        auto records = recordsOf(page, folder);
        makeFolder(templates);
        writeInPlaceOf(target, templateBytes(records, page.WebpageTitle, version));
        return TemplateResult::made;
    };
    return trapped(ctx.log, Severity::Warning, "MainForm.CreateTemplate()", kContactSupport,
                   TemplateResult::failed, create);
}

std::optional<fs::path> LoadTemplate(const fs::path &file, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, "MainForm.LoadTemplate()", kContactSupport,
                   std::optional<fs::path>(), [&]() -> std::optional<fs::path> {
                       const Bytes bytes = readWhole(file);
                       const TemplateClass made = readTemplate(ByteView(bytes));
                       const fs::path folder = ctx.TempFolderPath / kViewFolder;
                       emptied(folder);
                       writeRecords(made, ByteView(bytes), folder, std::string(kTemplatePage), ctx);
                       return folder;
                   });
}

bool RebuildFromTemplate(URLClass &page, const fs::path &file, const RebuildContext &ctx,
                         const Clock &clock) {
    return trapped(
        ctx.log, Severity::Warning, "MainForm.RebuildFromTemplate()", kContactSupport, false,
        [&] { return onProject([&] { return applyTemplate(page, file, ctx, clock); }); });
}

bool templateMatchesTitle(const TemplateClass &made, std::string_view WebPageTitle) {
    const std::string_view title = trim(WebPageTitle);
    return !title.empty() && equalsNoCase(trim(made.WebpageTitle), title);
}

std::vector<fs::path> templatesIn(const fs::path &folder) {
    std::vector<fs::path> files;
    std::error_code none;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder, none))
        if (entry.is_regular_file(none) && equalsNoCase(textOf(entry.path().extension()), ".nvt"))
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

} // namespace nv
