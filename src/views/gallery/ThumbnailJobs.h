#pragma once

#include "views/gallery/Thumbnails.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace nv {

/// How files of this extension, in lower case, are drawn; nothing for all that aren't.
std::optional<DrawJob::Kind> drawnAs(std::string_view extension);

/// A thumbnail's height for its width, in pixels.
constexpr int thumbnailHeight(int width) {
    return width * 3 / 4;
}

/// A record whose content lies in scratch, and its drawing.
struct ThumbnailJob {
    UrlRecord record;
    DrawJob drawing;
};

enum class Preparation { ready, noContent, otherKind };

/// Copies the record's content into `folder`, which is made, and where nothing else lies: a page
/// must not show what belongs to another. The target lies beside the folder. Throws.
Preparation prepareThumbnail(ThumbnailJob &job, const std::filesystem::path &folder,
                             const ThumbnailContext &ctx);
/// The same for a row; nothing when there is nothing to draw, which is counted. A failure is
/// logged. Throws StorageFailure.
std::optional<ThumbnailJob> jobOfRow(UrlId urlID, const std::filesystem::path &folder,
                                     const ThumbnailContext &ctx, ThumbnailTotals &totals);

/// Reads the finished drawing into the record and its row, in one write. Throws.
void keepThumbnail(ThumbnailJob &job, const Drawn &drawn, const ThumbnailContext &ctx);
/// Keeps what came of the drawing, when something did, and counts it. A failure is logged. Throws
/// StorageFailure.
void settleThumbnail(ThumbnailJob &job, const Drawn &drawn, const ThumbnailContext &ctx,
                     ThumbnailTotals &totals);

/// Counts a drawing, and logs one that failed.
void countDrawn(const ThumbnailJob &job, const Drawn &drawn, bool kept, const ThumbnailContext &ctx,
                ThumbnailTotals &totals);
void logUndrawn(UrlId urlID, std::string_view failure, FailureLog &log);

} // namespace nv
