#include "rebuild/Templates.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Replace.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "base/Unfinished.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "rebuild/Archive.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"
#include "rebuild/RebuildMethod.h"
#include "rebuild/RebuiltRow.h"
#include "rebuild/Replacement.h"
#include "rebuild/Tags.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kViewFolder = "TEMPLATE.NVR";

/// Wide ids are read whatever the setting: the list was written by this program.
std::vector<Substitution> harvestedParts(const fs::path &folder) {
    RebuildSettings wide;
    wide.wideRecordIds = true;
    return substitutionsOf(fromAnsi(readTextFile(folder / kPartsList, LineBreaks::keep)), wide);
}

TemplateRecordsCollection recordsOf(const UrlRecord &page, const fs::path &folder) {
    TemplateRecordsCollection records;
    TemplateRecord html;
    html.fileName = pageNameOf(page.URLID);
    html.filePath = folder / html.fileName;
    records.add(html);
    for (const Substitution &part : harvestedParts(folder)) {
        TemplateRecord record;
        record.tagID = part.tagURLID;
        record.originalTag = part.originalTag;
        record.fileName = part.newTag;
        record.filePath = folder / part.newTag;
        if (!part.newTag.empty() && fs::is_regular_file(record.filePath))
            records.add(std::move(record));
    }
    return records;
}

/// The name of a record's file in a folder: never a path, and "0000017." is the name of a part
/// without an extension.
std::string plainNameOf(const TemplateRecord &record) {
    std::string name(getFilenameFromPath(record.fileName));
    while (name.ends_with('.'))
        name.pop_back();
    if (name.empty())
        throw std::runtime_error("the template holds a file without a name");
    return name;
}

/// Whether the record of that id holds the template's bytes in this project too.
bool isSamePart(const TemplateRecord &record, ByteView content, const RebuildContext &ctx) {
    auto part = ctx.records.getURL(UrlId{record.tagID});
    if (!part)
        return false;
    const auto file = contentOf(*part, ctx.extraction());
    return file && fileMD5(*file) == md5Hex(content.raw());
}

/// Writes the files of one template into a folder.
class Unpacking {
  public:
    Unpacking(const PageTemplate &made, ByteView bytes, fs::path folder, std::string pageName,
              const RebuildContext &ctx)
        : m_made(made), m_bytes(bytes), m_folder(std::move(folder)),
          m_pageName(std::move(pageName)), m_ctx(ctx) {}

    void run() {
        findPage();
        for (const TemplateRecord &record : m_made.records)
            m_names.insert(toLower(plainNameOf(record)));
        for (const TemplateRecord &record : m_made.records)
            if (&record != m_page)
                takePart(record);
        if (m_page)
            writePage();
        writeWhole(m_folder / kPartsList, toAnsi(m_list));
    }
    /// Some part has no record in this project that holds its bytes.
    bool hasStrangers() const { return m_hasStrangers; }

  private:
    ByteView bytesOf(const TemplateRecord &record) const {
        return m_bytes.sub(record.recordOffset, record.recordSize);
    }

    /// A part that has no record of its own has the id 0 too: the first one is the page.
    void findPage() {
        for (const TemplateRecord &record : m_made.records)
            if (!m_page && record.tagID == 0 && record.newTagRelativePath == kTemplatePage)
                m_page = &record;
    }

    void takePart(const TemplateRecord &record) {
        const ByteView content = bytesOf(record);
        std::string name = plainNameOf(record);
        if (isTaken(name)) {
            // The page that is its own part is there already.
            if (m_page && content.raw() == bytesOf(*m_page).raw())
                return;
            const std::string freeName = freeNameFor(name);
            m_renamed.emplace_back(name, freeName);
            name = freeName;
        }
        writeWhole(m_folder / name, content.raw());
        const bool isKnown =
            name == harvestedName(record, name) && isSamePart(record, content, m_ctx);
        m_hasStrangers = m_hasStrangers || !isKnown;
        m_list +=
            fmt::format("{}|{}|{}|\r\n", isKnown ? record.tagID : 0, record.originalTag, name);
    }

    /// As a later harvest of the part's record would name it.
    static std::string harvestedName(const TemplateRecord &record, std::string_view name) {
        return localNameOf(UrlId{record.tagID}, getFileExtension(name));
    }

    /// Names that differ in case only are one on other systems.
    bool isTaken(std::string_view name) const {
        return equalsNoCase(name, m_pageName) || equalsNoCase(name, kPartsList);
    }

    std::string freeNameFor(const std::string &name) {
        std::string freeName = "_" + name;
        while (isTaken(freeName) || m_names.contains(toLower(freeName)))
            freeName.insert(0, "_");
        m_names.insert(toLower(freeName));
        return freeName;
    }

    /// References to a part that got another name lead to it, and not to the page.
    void writePage() const {
        std::string text(bytesOf(*m_page).raw());
        for (const auto &[name, freeName] : m_renamed)
            for (const URLTagDef &rule : urlTagDefs())
                text = replacedEverywhere(
                    text, {std::string(trim(rule.tagDefinition)), toAnsi(name), toAnsi(freeName)});
        writeWhole(m_folder / m_pageName, text);
    }

    const PageTemplate &m_made;
    ByteView m_bytes;
    fs::path m_folder;
    std::string m_pageName;
    const RebuildContext &m_ctx;
    const TemplateRecord *m_page = nullptr;
    std::set<std::string> m_names; ///< of the template's files, in lower case
    std::vector<std::pair<std::string, std::string>> m_renamed;
    std::string m_list;
    bool m_hasStrangers = false;
};

void emptied(const fs::path &folder) {
    makeEmptyFolder(folder);
}

bool applyTemplate(UrlRecord &page, const fs::path &file, const RebuildContext &ctx,
                   const Clock &clock) {
    const Bytes bytes = readWhole(file);
    const PageTemplate made = readTemplate(ByteView(bytes));
    if (made.records.count() == 0)
        return false;
    const fs::path folder = rebuildFolderOf(page.URLID, ctx);
    const std::string pageName = pageNameOf(page.URLID);
    emptied(folder);
    Unpacking unpacking(made, ByteView(bytes), folder, pageName, ctx);
    unpacking.run();
    page.RunTimeRebuiltFilePath = folder / pageName;
    page.RebuiltSourceCode = fromAnsi(ByteView(readWhole(page.RunTimeRebuiltFilePath)).raw());
    Savepoint whole(ctx.project);
    if (!storeIngredientIDs(page, ctx))
        return false;
    const bool isExact = made.method == wordOf(RebuildMethod::exact);
    storeFromTemplate(page, isExact ? RebuildMethod::exact : RebuildMethod::classic, ctx, clock);
    // The project may be looked at where the template isn't: it keeps the bytes that it lacks.
    if (unpacking.hasStrangers() && !createCabinetFile(folder, page, ctx))
        return false;
    whole.release();
    return true;
}

/// What was there stays until the new file is whole; a link of that name is replaced itself.
void writeInPlaceOf(const fs::path &target, std::string_view bytes) {
    Unfinished aside(target.native() + ".~new");
    std::error_code ignored;
    fs::remove(aside.path(), ignored);
    writeWhole(aside.path(), bytes);
    replaceDurably(aside.path(), target);
    aside.finished();
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

fs::path templatePathOf(const UrlRecord &page, const fs::path &templates) {
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

TemplateResult createTemplate(const UrlRecord &page, const fs::path &templates,
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
        writeInPlaceOf(target, templateBytes(records, {page.WebpageTitle, wordOf(shownMethod(page)),
                                                       version}));
        return TemplateResult::made;
    };
    return trapped(ctx.log, Severity::Warning, "MainForm.CreateTemplate()", kContactSupport,
                   TemplateResult::failed, create);
}

std::optional<fs::path> loadTemplate(const fs::path &file, const RebuildContext &ctx) {
    return trapped(
        ctx.log, Severity::Warning, "MainForm.LoadTemplate()", kContactSupport,
        std::optional<fs::path>(), [&]() -> std::optional<fs::path> {
            const Bytes bytes = readWhole(file);
            const PageTemplate made = readTemplate(ByteView(bytes));
            const fs::path folder = ctx.tempFolderPath / kViewFolder;
            emptied(folder);
            Unpacking(made, ByteView(bytes), folder, std::string(kTemplatePage), ctx).run();
            return folder;
        });
}

bool rebuildFromTemplate(UrlRecord &page, const fs::path &file, const RebuildContext &ctx,
                         const Clock &clock) {
    return trapped(
        ctx.log, Severity::Warning, "MainForm.RebuildFromTemplate()", kContactSupport, false,
        [&] { return onProject([&] { return applyTemplate(page, file, ctx, clock); }); });
}

bool templateMatchesTitle(const PageTemplate &made, std::string_view webPageTitle) {
    const std::string_view title = trim(webPageTitle);
    return !title.empty() && equalsNoCase(trim(made.webpageTitle), title);
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
