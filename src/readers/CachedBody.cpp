#include "readers/CachedBody.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/ContentProbe.h"
#include "readers/GZip.h"
#include "readers/Limits.h"
#include "readers/Registry.h"

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

// The name under which bodies of all readers lie in the scratch folder, one at a time.
constexpr std::string_view kBodyName = "~body";

constexpr std::array<std::string_view, 6> kPictures = {"jpg", "gif", "bmp", "png", "jpe", "jpeg"};

bool isPlainFile(const fs::path &path) {
    std::error_code none;
    return fs::is_regular_file(fs::symlink_status(path, none));
}

bool leadsUp(const fs::path &relative) {
    return std::ranges::find(relative, fs::path("..")) != relative.end();
}

fs::path targetOf(const Extraction &ctx, std::string_view suffix) {
    fs::path target = ctx.folder / kBodyName;
    // The suffix may come from a URL, which must not lead out of the folder.
    const fs::path plain = fs::path(suffix).filename();
    if (!plain.empty())
        target += "." + plain.string();
    return target;
}

/// What the first bytes of the body say of the record; a packed body is unpacked first.
void settleBody(URLClass &record, FailureLog &log) {
    Bytes head = readHead(record.RunTimeTempFilePath, limits::kHeadBytes);
    if (beginsAsGZip(ByteView(head)) &&
        DecompressGZipFile(record.RunTimeTempFilePath, record.RunTimeTempFilePath, log)) {
        record.GZipEncoded = true;
        head = readHead(record.RunTimeTempFilePath, limits::kHeadBytes);
    }
    const std::string extension = GetExtBySignature(ByteView(head));
    if (std::ranges::find(kPictures, extension) != kPictures.end()) {
        record.IsPicture = true;
        record.CacheFileExt = extension;
    }
    record.IsWebPage |= extension == "htm" || extension == "html";
}

} // namespace

bool extractBody(URLClass &record, Fetch fetch, std::string_view fileNameSuffix,
                 const Extraction &ctx, std::string_view procedure) {
    return trapped(ctx.log, Severity::Warning, procedure, kContactSupport, false, [&] {
        const fs::path target = targetOf(ctx, fileNameSuffix);
        fs::remove(target);
        record.RunTimeTempFilePath.clear();
        if (!fetch || !fetch(record, ctx.evidence, target))
            return false;
        record.RunTimeTempFilePath = target;
        settleBody(record, ctx.log);
        record.CacheFileExists = true;
        return true;
    });
}

std::optional<fs::path> contentOf(URLClass &record, const Extraction &ctx) {
    if (!record.RunTimeTempFilePath.empty() && isPlainFile(record.RunTimeTempFilePath))
        return record.RunTimeTempFilePath;
    const Reader *reader = readerOfKind(record.cacheType);
    if (reader && reader->fetch) {
        if (!extractBody(record, reader->fetch, "", ctx, "ParserClass.ExtractCacheFile()"))
            return std::nullopt;
        return record.RunTimeTempFilePath;
    }
    if (record.IsCookie) // its path is that of the index
        return ctx.evidence.find(record.CacheRootPath, record.CacheFileName);
    if (record.CacheFileRelativePath.empty())
        return std::nullopt;
    const fs::path direct = record.RootPath + record.CacheFileRelativePath;
    if (!leadsUp(record.CacheFileRelativePath) && isPlainFile(direct))
        return direct;
    // Names that aren't UTF-8 on the disk are found through the folder's listing.
    return ctx.evidence.find(record.RootPath, record.CacheFileRelativePath);
}

} // namespace nv
