#pragma once

#include "base/ByteView.h"
#include "views/Gallery.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace nv::cli {

/// A gallery page as one HTML file that needs nothing else: thumbnails stand in it as data, and
/// texts of evidence as texts that lead nowhere.
struct ContactSheet {
    std::string title;
    std::vector<std::string> lines; ///< under the title: what is shown
    const TileCollection &tiles;
    std::function<Bytes(UrlId)> thumbnail;
};

void writeContactSheet(std::ostream &out, const ContactSheet &sheet);

} // namespace nv::cli
