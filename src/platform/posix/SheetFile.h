#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A contact sheet as the drawing program is told it. The picture of tile 0 lies beside this file
/// and is named "0", that of tile 1 "1" and so on. All texts are UTF-8, of one line each.
struct SheetFile {
    struct Tile {
        std::vector<std::string> captions; ///< the last one may take several lines
        bool isMarked = false;
    };
    std::string title;
    std::vector<std::string> lines; ///< under the title
    std::vector<Tile> tiles;
};

/// More tiles than this make a picture that hardly any viewer opens.
inline constexpr std::size_t kMostSheetTiles = 1000;

std::string textOf(const SheetFile &sheet);
/// Nothing when the text is no such sheet.
std::optional<SheetFile> sheetOf(std::string_view text);

} // namespace nv
