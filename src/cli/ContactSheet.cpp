#include "cli/ContactSheet.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "readers/ContentProbe.h"
#include "reports/report/Html.h"
#include "views/rows/CellText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv::cli {

namespace {

// Whatever a hostile project holds: nothing but the file's own pictures and style is loaded.
constexpr std::string_view kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; img-src data:; style-src 'unsafe-inline'">
<title>{0}</title>
<style>
body {{ font: 14px sans-serif; margin: 1.5em; color: #222; background: #fff }}
main {{ display: flex; flex-wrap: wrap; gap: 12px }}
figure {{ width: 220px; margin: 0; padding: 8px; border: 1px solid #bbb; break-inside: avoid }}
figure.tagged {{ border: 3px solid #b30000; padding: 6px }}
.picture {{ height: 170px; display: flex; align-items: center; justify-content: center }}
img {{ max-width: 100%; max-height: 100% }}
figcaption {{ overflow-wrap: anywhere }}
small {{ display: block; color: #555; unicode-bidi: isolate }}
</style>
</head>
<body>
<h1>{0}</h1>
)";

/// The picture as data, when it is one of a form that browsers draw and that can't hold a script.
std::string pictureOf(const Bytes &thumbnail) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kForms = {
        {{"bmp", "bmp"}, {"jpg", "jpeg"}, {"gif", "gif"}, {"png", "png"}}};
    const std::string extension = getExtBySignature(ByteView(thumbnail));
    const auto *form = std::ranges::find(kForms, extension, [](auto &each) { return each.first; });
    if (form == kForms.end())
        return "no picture";
    return fmt::format("<img alt=\"\" src=\"data:image/{};base64,{}\">", form->second,
                       base64(ByteView(thumbnail)));
}

std::string tileText(const Tile &tile, const Bytes &thumbnail) {
    std::string shape = shapeText(tile);
    if (!shape.empty())
        shape = "<small>" + shape + "</small>";
    if (!tile.rebuiltMethod.empty())
        shape += fmt::format("<small>{}</small>", htmlText(rebuiltText(tile)));
    return fmt::format("<figure{}><div class=\"picture\">{}</div><figcaption>{}{}{}<small>{}"
                       "</small></figcaption></figure>\n",
                       tile.tagged ? " class=\"tagged\"" : "", pictureOf(thumbnail),
                       captionOf(tile), tile.tagged ? ", ticked" : "", shape,
                       htmlText(plainLine(tile.toolTip)));
}

} // namespace

std::string plainLine(std::string_view text) {
    constexpr std::size_t kMostChars = 4096; // some cached URLs are longer than any sheet
    return displayText(isUtf8(text) ? std::string(text) : decodeText(text), kMostChars);
}

std::string shapeText(const Tile &tile) {
    if (tile.pictureWidth <= 0 || tile.pictureHeight <= 0)
        return {};
    return fmt::format("{} x {}, P.A.R.D. {}", tile.pictureWidth, tile.pictureHeight,
                       tile.pardValue);
}

std::string rebuiltText(const Tile &tile) {
    return tile.rebuiltMethod.empty() ? "" : "Rebuilt: " + plainLine(tile.rebuiltMethod);
}

void writeContactSheet(const std::function<void(std::string_view)> &write,
                       const ContactSheet &sheet) {
    write(fmt::format(kHead, htmlText(plainLine(sheet.title))));
    for (const std::string &line : sheet.lines)
        write("<p>" + htmlText(plainLine(line)) + "</p>\n");
    write("<main>\n");
    for (const Tile &tile : sheet.tiles)
        write(tileText(tile, sheet.thumbnail(UrlId{tile.urlID})));
    write("</main>\n</body>\n</html>\n");
}

} // namespace nv::cli
