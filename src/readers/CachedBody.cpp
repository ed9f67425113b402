#include "readers/CachedBody.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Coding.h"
#include "readers/ContentProbe.h"
#include "readers/EvidenceGaps.h"
#include "readers/Limits.h"
#include "readers/Registry.h"
#include "readers/Scratch.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

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

void unpackClassic(Body &body, std::uint64_t inMemory, FailureLog &log) {
    const std::string gzip = "gzip";
    static_cast<void>(unpackBody(body, std::span(&gzip, 1), Damaged::staysPacked, inMemory, log));
}

void unpack(UrlRecord &record, Body &body, Packing packing, std::uint64_t inMemory,
            FailureLog &log) {
    const std::vector<std::string> codings = codingsOf(record.MetaData);
    const bool isClassic = packing != Packing::byHeaders;
    const bool namesOthers =
        packing == Packing::classic &&
        std::ranges::any_of(codings, [](const std::string &coding) { return coding != "gzip"; });
    if (!isClassic || namesOthers)
        static_cast<void>(unpackBody(body, codings, Damaged::givesPart, inMemory, log));
    if (isClassic && body.unpackedFrom.empty())
        unpackClassic(body, inMemory, log);
    record.GZipEncoded |= body.unpackedFrom.find("gzip") != std::string::npos;
}

Packing packingOf(const Reader &reader, const Extraction &ctx) {
    if (reader.isBeyondClassic)
        return Packing::byHeaders;
    return ctx.classicOnly ? Packing::classicOnly : Packing::classic;
}

/// Nothing when there is no body.
std::optional<Body> fetched(UrlRecord &record, const Reader &reader, const Extraction &ctx,
                            std::uint64_t inMemory) {
    const fs::path target = ctx.folder / kBodyName;
    const auto run = [&]() -> std::optional<Body> {
        record.RunTimeTempFilePath.clear();
        if (inMemory == 0)
            scratch::drop(target); // what an earlier record left must not pass for this one's
        BodyTarget into(target, inMemory);
        if (!tellingGaps(ctx.log, [&] { return reader.fetch(record, ctx.evidence, into); }))
            return std::nullopt;
        Body body = into.take();
        if (!body.isInMemory)
            record.RunTimeTempFilePath = body.file;
        if (!ctx.isAsStored)
            settleBody(record, body, packingOf(reader, ctx), inMemory, ctx.log);
        record.RunTimeTempFilePath = body.isInMemory ? fs::path() : body.file;
        record.CacheFileExists = true;
        return body;
    };
    return trapped(ctx.log, Severity::Warning, "ParserClass.ExtractCacheFile()", kContactSupport,
                   std::optional<Body>(), run);
}

} // namespace

void settleBody(UrlRecord &record, Body &body, Packing packing, std::uint64_t inMemory,
                FailureLog &log) {
    unpack(record, body, packing, inMemory, log);
    const std::string extension = getExtBySignature(ByteView(headOf(body)));
    if (std::ranges::find(kPictures, extension) != kPictures.end()) {
        record.IsPicture = true;
        record.CacheFileExt = extension;
    }
    record.IsWebPage |= extension == "htm" || extension == "html";
}

std::optional<Body> bodyOf(UrlRecord &record, const Extraction &ctx, std::uint64_t inMemory) {
    if (!record.RunTimeTempFilePath.empty() && scratch::isThere(record.RunTimeTempFilePath))
        return Body{record.RunTimeTempFilePath, false, {}};
    const Reader *reader =
        ctx.source == HistoryFileType::none ? sourceOf(record) : readerFor(ctx.source);
    if (reader && reader->fetch)
        return fetched(record, *reader, ctx, inMemory);
    if (const auto file = evidenceFileOf(record, ctx.evidence))
        return Body{*file, false, {}};
    return std::nullopt;
}

std::optional<fs::path> contentOf(UrlRecord &record, const Extraction &ctx) {
    const std::optional<Body> body = bodyOf(record, ctx, 0);
    return body ? std::optional(body->file) : std::nullopt;
}

} // namespace nv
