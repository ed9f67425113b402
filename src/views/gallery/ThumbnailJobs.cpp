#include "views/gallery/ThumbnailJobs.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/NoLog.h"
#include "base/Storage.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "readers/CachedBody.h"
#include "readers/ContentProbe.h"
#include "views/gallery/Pard.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kScratchName = "~tmp";
constexpr std::string_view kProcedure = "MainBAS.MakeThumbnail()";

constexpr std::array<std::string_view, 5> kPictures = {"jpg", "jpeg", "bmp", "png", "gif"};
constexpr std::array<std::string_view, 4> kPages = {"html", "htm", "asp", "aspx"};

bool holds(std::span<const std::string_view> words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

/// As an import knows the record: its extension is that of its content, when that speaks for one.
/// Rows keep the reader's words.
void takeVerdict(UrlRecord &record, SavedContent &content, Signatures signatures, FailureLog &log) {
    const Verdict verdict = Categories(signatures, log).verdictOn(record, content);
    if (!verdict.extension.empty())
        record.CacheFileExt = verdict.extension;
}

std::string extensionOf(const UrlRecord &record, const fs::path &content) {
    if (!record.CacheFileExt.empty())
        return toLower(record.CacheFileExt);
    if (!record.URLFileExt.empty())
        return toLower(record.URLFileExt);
    constexpr std::size_t kHeadBytes = 4096;
    return getExtBySignature(ByteView(readHead(content, kHeadBytes)));
}

/// Brings the content to the fixed name by which it is drawn.
fs::path toScratch(const fs::path &content, const fs::path &folder, std::string_view suffix) {
    const fs::path scratch = folder / fmt::format("{}{}", kScratchName, suffix);
    if (content.parent_path() == folder)
        moveFile(content, scratch);
    else
        copyToScratch(content, scratch);
    return scratch;
}

void setKind(UrlRecord &record, DrawJob::Kind kind) {
    record.IsPicture = kind == DrawJob::Kind::picture;
    record.IsWebPage = kind == DrawJob::Kind::page;
    record.ThumbnailFormat = record.IsPicture ? "Bitmap" : "JPEG";
}

void fill(UrlRecord &record, const DrawJob &job, const Drawn &drawn, const ThumbnailContext &ctx) {
    record.RunTimeThumbnailPath = job.target;
    record.ThumbnailBLOB = readWhole(job.target);
    record.ThumbnailMD5Hash = fileMD5(job.target).value_or("");
    record.ThumbnailCreated = Date::fromTimePoint(ctx.clock.now());
    record.ThumbnailWidth = job.width;
    record.ThumbnailHeight = job.height;
    record.ThumbnailDirty = false;
    if (job.kind == DrawJob::Kind::page)
        return;
    record.PictureHeight = drawn.pictureHeight;
    record.PictureWidth = drawn.pictureWidth;
    record.PARDValue = pardValue(drawn.pictureWidth, drawn.pictureHeight);
}

void writeRow(const UrlRecord &record, SQLite::Database &project) {
    onRow(project, [&] {
        SQLite::Statement update(
            project, "UPDATE URLs SET ThumbnailBLOB = ?, ThumbnailWidth = ?, ThumbnailHeight = ?, "
                     "ThumbnailCreated = ?, ThumbnailMD5Hash = ?, ThumbnailDirty = ?, "
                     "IsPicture = ?, PARDValue = ?, PictureHeight = ?, PictureWidth = ? "
                     "WHERE URL_ID = ?");
        update.bindNoCopy(1, record.ThumbnailBLOB.data(),
                          static_cast<int>(record.ThumbnailBLOB.size()));
        update.bind(2, record.ThumbnailWidth);
        update.bind(3, record.ThumbnailHeight);
        update.bind(4, record.ThumbnailCreated.days());
        update.bind(5, record.ThumbnailMD5Hash);
        update.bind(6, record.ThumbnailDirty ? 1 : 0);
        update.bind(7, record.IsPicture ? 1 : 0);
        update.bind(8, record.PARDValue);
        update.bind(9, record.PictureHeight);
        update.bind(10, record.PictureWidth);
        bindId(update, 11, record.URLID);
        update.exec();
    });
}

/// The log has why another row can't be read.
bool isGone(UrlId urlID, const ThumbnailContext &ctx) {
    NoLog unheard;
    return trapped(unheard, Severity::Low, {}, {}, false, [&] {
        SQLite::Statement row(ctx.project, "SELECT Count(*) FROM URLs WHERE URL_ID = ?");
        bindId(row, 1, urlID);
        return row.executeStep() && row.getColumn(0).getInt() == 0;
    });
}

} // namespace

std::optional<DrawJob::Kind> drawnAs(std::string_view extension) {
    if (holds(kPictures, extension))
        return DrawJob::Kind::picture;
    return holds(kPages, extension) ? std::optional(DrawJob::Kind::page) : std::nullopt;
}

Preparation prepareThumbnail(ThumbnailJob &job, const fs::path &folder,
                             const ThumbnailContext &ctx) {
    UrlRecord &record = job.record;
    if (!record.CacheFileExists)
        return Preparation::noContent;
    if (record.IsCookie) // its URL may be that of a page or of a picture, its content is neither
        return Preparation::otherKind;
    makeEmptyFolder(folder);
    record.RunTimeTempFilePath.clear();
    const Extraction extraction{ctx.evidence, folder, ctx.log};
    ContentProbe probe;
    SavedContent content(record, extraction, probe, 0);
    takeVerdict(record, content, ctx.settings.signatures, ctx.log);
    const fs::path file = content.file();
    if (file.empty())
        return Preparation::noContent;
    const auto kind = drawnAs(extensionOf(record, file));
    if (!kind)
        return Preparation::otherKind;
    const bool picture = *kind == DrawJob::Kind::picture;
    record.RunTimeTempFilePath = toScratch(file, folder, picture ? ".jpg" : ".htm");
    setKind(record, *kind);
    job.drawing = {*kind, record.RunTimeTempFilePath, folder, ctx.settings.viewerThumbnailWidth,
                   thumbnailHeight(ctx.settings.viewerThumbnailWidth)};
    job.drawing.target += picture ? ".thumb.bmp" : ".thumb.jpg";
    fs::remove(job.drawing.target);
    return Preparation::ready;
}

std::optional<ThumbnailJob> jobOfRow(UrlId urlID, const fs::path &folder,
                                     const ThumbnailContext &ctx, ThumbnailTotals &totals) {
    auto record = ctx.records.getURL(urlID);
    if (!record) {
        if (isGone(urlID, ctx))
            ++totals.withoutContent;
        else
            noteUnread(totals.unread, urlID);
        return std::nullopt;
    }
    ThumbnailJob job{std::move(*record), {}};
    const auto state =
        trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, Preparation::noContent,
                [&] { return prepareThumbnail(job, folder, ctx); });
    if (state == Preparation::ready)
        return job;
    ++(state == Preparation::noContent ? totals.withoutContent : totals.otherKinds);
    return std::nullopt;
}

void keepThumbnail(ThumbnailJob &job, const Drawn &drawn, const ThumbnailContext &ctx) {
    fill(job.record, job.drawing, drawn, ctx);
    writeRow(job.record, ctx.project);
}

void settleThumbnail(ThumbnailJob &job, const Drawn &drawn, const ThumbnailContext &ctx,
                     ThumbnailTotals &totals) {
    const bool kept =
        drawn.done && succeeds(ctx.log, Severity::Warning, kProcedure, kContactSupport,
                               [&] { keepThumbnail(job, drawn, ctx); });
    countDrawn(job, drawn, kept, ctx, totals);
}

void countDrawn(const ThumbnailJob &job, const Drawn &drawn, bool kept, const ThumbnailContext &ctx,
                ThumbnailTotals &totals) {
    if (!drawn.done)
        logUndrawn(job.record.URLID, drawn.failure, ctx.log);
    ++(kept ? totals.made : totals.failed);
}

void logUndrawn(UrlId urlID, std::string_view failure, FailureLog &log) {
    log.write({fmt::format("URL ID: {} {}", urlID, failure), std::string(kProcedure), Severity::Low,
               std::string(kNotSerious)});
}

} // namespace nv
