#include "readers/CachedBody.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "readers/ContentProbe.h"
#include "readers/EvidenceGaps.h"
#include "readers/GZip.h"
#include "readers/Limits.h"
#include "readers/Registry.h"
#include "readers/Scratch.h"

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

// The name under which bodies of all readers lie in the scratch folder, one at a time.
constexpr std::string_view kBodyName = "~body";

constexpr std::array<std::string_view, 6> kPictures = {"jpg", "gif", "bmp", "png", "jpe", "jpeg"};

bool leadsUp(const fs::path &relative) {
    return std::ranges::find(relative, fs::path("..")) != relative.end();
}

/// Content that is a file of its own in the evidence.
std::optional<fs::path> evidenceFileOf(const UrlRecord &record, const Evidence &evidence) {
    if (record.IsCookie) // its path is that of the index
        return evidence.find(record.CacheRootPath, record.CacheFileName);
    if (record.CacheFileRelativePath.empty())
        return std::nullopt;
    const fs::path direct = record.RootPath + record.CacheFileRelativePath;
    const bool goesUp = leadsUp(record.CacheFileRelativePath);
    if (!goesUp && evidence.isPlainFile(direct))
        return direct;
    // Names that aren't UTF-8 on the disk are found through the folder's listing.
    if (const auto found = evidence.find(record.RootPath, record.CacheFileRelativePath))
        return found;
    // Earlier builds decoded a path as a whole: one such name changed the text of its folders.
    const auto decoded = goesUp ? std::nullopt : evidence.byText(direct.native());
    return decoded && evidence.isPlainFile(*decoded) ? decoded : std::nullopt;
}

Bytes headOf(const Body &body) {
    if (!body.isInMemory)
        return ScratchFile(body.file).read(0, limits::kHeadBytes);
    const std::size_t size = std::min(body.bytes.size(), limits::kHeadBytes);
    return {body.bytes.data(), body.bytes.data() + size};
}

/// What the first bytes of the body say of the record; a packed body is unpacked first.
void settleBody(UrlRecord &record, Body &body, std::uint64_t inMemory, FailureLog &log) {
    Bytes head = headOf(body);
    if (beginsAsGZip(ByteView(head)) && unpackBody(body, inMemory, log)) {
        record.GZipEncoded = true;
        head = headOf(body);
    }
    const std::string extension = getExtBySignature(ByteView(head));
    if (std::ranges::find(kPictures, extension) != kPictures.end()) {
        record.IsPicture = true;
        record.CacheFileExt = extension;
    }
    record.IsWebPage |= extension == "htm" || extension == "html";
}

/// Nothing when there is no body.
std::optional<Body> fetched(UrlRecord &record, Fetch fetch, const Extraction &ctx,
                            std::uint64_t inMemory) {
    const fs::path target = ctx.folder / kBodyName;
    const auto run = [&]() -> std::optional<Body> {
        record.RunTimeTempFilePath.clear();
        if (inMemory == 0)
            scratch::drop(target); // what an earlier record left must not pass for this one's
        BodyTarget into(target, inMemory);
        if (!tellingGaps(ctx.log, [&] { return fetch(record, ctx.evidence, into); }))
            return std::nullopt;
        Body body = into.take();
        if (!body.isInMemory)
            record.RunTimeTempFilePath = body.file;
        settleBody(record, body, inMemory, ctx.log);
        record.RunTimeTempFilePath = body.isInMemory ? fs::path() : body.file;
        record.CacheFileExists = true;
        return body;
    };
    return trapped(ctx.log, Severity::Warning, "ParserClass.ExtractCacheFile()", kContactSupport,
                   std::optional<Body>(), run);
}

} // namespace

std::optional<Body> bodyOf(UrlRecord &record, const Extraction &ctx, std::uint64_t inMemory) {
    if (!record.RunTimeTempFilePath.empty() && scratch::isThere(record.RunTimeTempFilePath))
        return Body{record.RunTimeTempFilePath, false, {}};
    const Reader *reader =
        ctx.source == HistoryFileType::none ? sourceOf(record) : readerFor(ctx.source);
    if (reader && reader->fetch)
        return fetched(record, reader->fetch, ctx, inMemory);
    if (const auto file = evidenceFileOf(record, ctx.evidence))
        return Body{*file, false, {}};
    return std::nullopt;
}

std::optional<fs::path> contentOf(UrlRecord &record, const Extraction &ctx) {
    const std::optional<Body> body = bodyOf(record, ctx, 0);
    return body ? std::optional(body->file) : std::nullopt;
}

} // namespace nv
