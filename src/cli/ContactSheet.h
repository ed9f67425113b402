#pragma once

#include "base/ByteView.h"
#include "views/gallery/Gallery.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv::cli {

/// A gallery page on one sheet.
struct ContactSheet {
    std::string title;
    std::vector<std::string> lines; ///< under the title: what is shown
    const TileCollection &tiles;
    std::function<Bytes(UrlId)> thumbnail;
};

/// A text of evidence as one line of UTF-8.
std::string plainLine(std::string_view text);
/// "468 x 60, P.A.R.D. 88"; empty for a tile that was not measured.
std::string shapeText(const Tile &tile);
/// "Rebuilt: Cache, exact"; empty for a tile whose picture is of no rebuilt page.
std::string rebuiltText(const Tile &tile);

/// As one HTML file that needs nothing else: thumbnails stand in it as data, and texts of evidence
/// as texts that lead nowhere.
void writeContactSheet(const std::function<void(std::string_view)> &write,
                       const ContactSheet &sheet);

} // namespace nv::cli
