#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/records/RecordStore.h"
#include "import/Categories.h"
#include "platform/Drawing.h"
#include "readers/Evidence.h"
#include "views/rows/UnreadRows.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace nv {

struct ThumbnailSettings {
    int viewerThumbnailWidth = 120; ///< pixels; thumbnails are three quarters as high
    std::chrono::seconds thumbnailRedrawTimeout{5};
    Signatures signatures = Signatures::verify;
};

/// All that making thumbnails needs. Everything must outlive it.
struct ThumbnailContext {
    SQLite::Database &project;
    RecordStore &records;
    const Evidence &evidence;
    std::filesystem::path tempFolderPath; ///< an existing folder of the program's own
    Drawing &drawing;
    const Clock &clock;
    FailureLog &log;
    ThumbnailSettings settings;
};

/// What became of the records of a run.
struct ThumbnailTotals {
    std::uint64_t made = 0;
    std::uint64_t failed = 0; ///< drawings that failed; each is logged
    std::uint64_t withoutContent = 0;
    std::uint64_t otherKinds = 0; ///< neither a picture nor a page that can be drawn
    UnreadRows unread; ///< rows that could not be read; nobody knows whether they can be drawn
    bool cancelled = false;
};

/// Makes the thumbnails of many rows: their cached contents are copied to scratch and drawn in
/// batches, and each row is written as its drawing comes. A drawing that fails leaves its row as it
/// was, and so does a cancel the rows that it didn't reach. Throws what the project, the scratch
/// folder or the drawing as a whole can't do; `totals` tells what was done before, and is kept.
void makeThumbnails(const ThumbnailContext &ctx, std::span<const UrlId> ids, TaskMonitor &task,
                    ThumbnailTotals &totals);

/// Draws one picture file, `width` pixels wide, and measures it into the record. A failure is
/// logged.
bool makePictureThumbnail(const std::filesystem::path &source,
                          const std::filesystem::path &destination, UrlRecord &url, int width,
                          const ThumbnailContext &ctx);

} // namespace nv
