#include "cli/SheetPicture.h"

#include "base/Files.h"
#include "platform/posix/SheetFile.h"

#include <fmt/format.h>

#include <chrono>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

constexpr int kPictureWidth = 204; ///< of a tile, in pixels
constexpr int kPictureHeight = 153;
constexpr std::chrono::seconds kLongest{120}; ///< a thousand tiles take some seconds

/// The sheet's folder in scratch, gone at its end.
class SheetFolder {
  public:
    explicit SheetFolder(const fs::path &scratch) : m_path(scratch / "~sheet") {
        fs::remove_all(m_path);
        fs::create_directories(m_path);
    }
    ~SheetFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    SheetFolder(const SheetFolder &) = delete;
    SheetFolder &operator=(const SheetFolder &) = delete;

    fs::path file(std::string_view name) const { return m_path / name; }

  private:
    fs::path m_path;
};

SheetFile::Tile tileOf(const Tile &tile) {
    SheetFile::Tile told{{captionOf(tile) + (tile.tagged ? ", ticked" : "")}, tile.tagged};
    if (std::string shape = shapeText(tile); !shape.empty())
        told.captions.push_back(std::move(shape));
    if (std::string method = rebuiltText(tile); !method.empty())
        told.captions.push_back(std::move(method));
    told.captions.push_back(plainLine(tile.toolTip));
    return told;
}

fs::path writeParts(const ContactSheet &sheet, const SheetFolder &folder) {
    SheetFile file{plainLine(sheet.title), {}, {}};
    for (const std::string &line : sheet.lines)
        file.lines.push_back(plainLine(line));
    for (const Tile &tile : sheet.tiles) {
        writeWhole(folder.file(std::to_string(file.tiles.size())),
                   std::string(ByteView(sheet.thumbnail(UrlId{tile.urlID})).raw()));
        file.tiles.push_back(tileOf(tile));
    }
    writeWhole(folder.file("sheet"), textOf(file));
    return folder.file("sheet");
}

} // namespace

void drawContactSheet(const ContactSheet &sheet, Drawing &drawing, const fs::path &scratch,
                      const fs::path &target) {
    const SheetFolder folder(scratch);
    const DrawJob job{DrawJob::Kind::sheet, writeParts(sheet, folder), folder.file("sheet.png"),
                      kPictureWidth, kPictureHeight};
    Drawn result;
    drawing.draw(
        std::span(&job, 1), kLongest,
        [&result](std::size_t, const Drawn &drawn) {
            result = drawn;
            return true;
        },
        [] { return true; });
    if (!result.done)
        throw StorageFailure(fmt::format("the contact sheet can't be drawn. {}", result.failure));
    copyToScratch(job.target, target);
}

} // namespace nv::cli
