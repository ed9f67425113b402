#include "rebuild/Archive.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kGapBeforeName = 12;
constexpr std::size_t kGapBeforeData = 2;
constexpr std::string_view kHashMark = "HASH";
constexpr std::size_t kHashBlock = 8;
constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kTrailerSize = 8;

void put32(std::string &bytes, std::uint64_t value) {
    if (value > UINT32_MAX)
        throw std::length_error("an archive can't hold more than 4 GB");
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
}

/// In one order, so that a folder always gives the same archive, and without earlier archives.
std::vector<fs::path> filesIn(const fs::path &folder) {
    std::vector<fs::path> files;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        if (entry.is_regular_file() && toUpper(textOf(entry.path().extension())) != ".CAB")
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

/// The first page of the folder.
std::optional<fs::path> pageIn(const std::vector<fs::path> &files) {
    const auto page = std::ranges::find_if(
        files, [](const fs::path &file) { return toUpper(textOf(file.extension())) == ".HTM"; });
    return page == files.end() ? std::nullopt : std::optional(*page);
}

std::string packed(const std::vector<fs::path> &files) {
    std::string archive;
    std::string index;
    for (const fs::path &file : files) {
        const std::string name = toAnsi(textOf(file.filename()));
        const Bytes data = readWhole(file);
        archive.append(kGapBeforeName, '\0');
        const std::size_t nameAt = archive.size();
        archive.append(name).append(kGapBeforeData, '\0');
        put32(index, archive.size());
        put32(index, data.size());
        put32(index, nameAt);
        put32(index, name.size());
        archive.append(ByteView(data).raw());
    }
    const std::size_t indexArea = archive.size();
    const std::string hash = md5Hex(archive).substr(0, kHashBlock - kHashMark.size());
    archive.append(kHashMark).append(hash).append(index);
    put32(archive, files.size());
    put32(archive, indexArea);
    return archive;
}

void storeArchive(UrlRecord &page, const RebuildContext &ctx) {
    page.CacheFileRebuiltBLOB = readWhole(page.RunTimeArchivePath);
    SQLite::Statement update(ctx.project,
                             "UPDATE URLs SET CacheFileRebuiltBLOB = ? WHERE URL_ID = ?");
    update.bind(1, page.CacheFileRebuiltBLOB.data(),
                static_cast<int>(page.CacheFileRebuiltBLOB.size()));
    bindId(update, 2, page.URLID);
    update.exec();
}

bool create(const fs::path &folder, UrlRecord &page, const RebuildContext &ctx) {
    const auto files = filesIn(folder);
    const auto html = pageIn(files);
    if (!html)
        return false;
    page.RunTimeArchivePath = folder / ("~" + html->stem().string() + ".CAB");
    page.RunTimeTempFilePath = *html;
    writeWhole(page.RunTimeArchivePath, packed(files));
    if (archiveSeal(page.RunTimeArchivePath) != 0)
        return false;
    storeArchive(page, ctx);
    return true;
}

/// A name as a file of the folder, whatever folders it names.
fs::path plainName(std::string_view name) {
    const std::string plain(getFilenameFromPath(name));
    if (plain.empty() || plain == "." || plain == "..")
        throw std::runtime_error("an archive holds a file without a name");
    return plain;
}

/// Files that overlap could be made to fill the disk.
void checkTotal(const Archive &items, std::size_t archiveSize) {
    std::uint64_t total = 0;
    for (const ArchiveItem &item : items.fileItems)
        total += item.dataSize;
    if (total > archiveSize)
        throw std::runtime_error("the files of an archive are larger than the archive");
}

bool unpack(UrlRecord &page, const RebuildContext &ctx) {
    if (page.CacheFileRebuiltBLOB.empty())
        if (const auto stored = ctx.records.getURL(page.URLID))
            page.CacheFileRebuiltBLOB = stored->CacheFileRebuiltBLOB;
    const ByteView archive(page.CacheFileRebuiltBLOB);
    const Archive items = readArchive(archive);
    if (items.fileItems.count() == 0)
        return false;
    checkTotal(items, archive.size());
    const fs::path folder = rebuildFolderOf(page.URLID, ctx);
    makeFolder(folder);
    for (const ArchiveItem &item : items.fileItems)
        writeWhole(folder / plainName(item.fileName),
                   archive.sub(item.dataOffset, item.dataSize).raw());
    page.RunTimeRebuiltFilePath = folder / pageNameOf(page.URLID);
    page.RunTimeThumbnailPath = folder / (sidOf(page.URLID) + ".thumbnail.jpg");
    return true;
}

} // namespace

Archive readArchive(ByteView archive) {
    Archive items;
    if (archive.size() < kTrailerSize)
        return items;
    const std::int32_t count = archive.i32le(archive.size() - kTrailerSize);
    const std::int32_t indexArea = archive.i32le(archive.size() - kTrailerSize + 4);
    if (indexArea < 0 || count <= 0)
        return items;
    for (std::int32_t i = 0; i < count; ++i) {
        const ByteView entry = archive.sub(static_cast<std::uint64_t>(indexArea) + kHashBlock +
                                               static_cast<std::uint64_t>(i) * kEntrySize,
                                           kEntrySize);
        ArchiveItem item;
        item.dataOffset = entry.u32le(0);
        item.dataSize = entry.u32le(4);
        item.fileNameOffset = entry.u32le(8);
        item.fileNameSize = entry.u32le(12);
        item.fileName = fromAnsi(archive.sub(item.fileNameOffset, item.fileNameSize));
        items.fileItems.add(std::move(item));
    }
    return items;
}

std::optional<ByteView> fileIn(ByteView archive, std::string_view name) {
    for (const ArchiveItem &item : readArchive(archive).fileItems)
        if (item.fileName == name)
            return archive.sub(item.dataOffset, item.dataSize);
    return std::nullopt;
}

int archiveSeal(const fs::path &path) {
    return fs::exists(path) ? 0 : ENOENT;
}

bool createCabinetFile(const fs::path &folder, UrlRecord &page, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, "ParserClass.CreateCabinetFile()", kContactSupport,
                   false, [&] { return onRow([&] { return create(folder, page, ctx); }); });
}

bool unpackCabinetFile(UrlRecord &page, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, "ParserClass.UnpackCabinetFile()", kContactSupport,
                   false, [&] { return unpack(page, ctx); });
}

} // namespace nv
