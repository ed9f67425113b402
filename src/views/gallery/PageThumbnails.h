#pragma once

#include "views/gallery/Thumbnails.h"

#include <filesystem>
#include <span>
#include <vector>

namespace nv {

/// A rebuilt page, and where its drawing goes.
struct PageDrawing {
    UrlId urlID = UrlId::none;
    std::filesystem::path page;
    std::filesystem::path destination;
};

/// Draws rebuilt pages, all in one run of the drawing, and stores each drawing as its row's
/// thumbnail. Drawings that fail are tried once more, together; every failure is logged. For each
/// page whether it was drawn and stored: a cancel leaves the rest as it was. Throws what the
/// project or the drawing as a whole can't do.
std::vector<bool> createHTMLThumbnails(std::span<const PageDrawing> pages, int width,
                                       const ThumbnailContext &ctx, TaskMonitor &task);

enum class Stored { written, sameBytes };
/// Reads a finished thumbnail into the row; one that holds the same bytes already isn't written.
/// Throws.
Stored storeThumbnail(UrlId urlID, const std::filesystem::path &path, const ThumbnailContext &ctx);

} // namespace nv
