#include "platform/posix/SheetFile.h"

#include <nlohmann/json.hpp>

namespace nv {

using nlohmann::json;

namespace {

/// Only the texts of a list of texts.
std::vector<std::string> textsOf(const json &list) {
    std::vector<std::string> texts;
    for (const json &each : list)
        if (each.is_string())
            texts.push_back(each.get<std::string>());
    return texts;
}

json arrayIn(const json &object, const char *name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_array() ? *found : json::array();
}

} // namespace

std::string textOf(const SheetFile &sheet) {
    json tiles = json::array();
    for (const SheetFile::Tile &tile : sheet.tiles)
        tiles.push_back({{"captions", tile.captions}, {"marked", tile.isMarked}});
    const json object{{"title", sheet.title}, {"lines", sheet.lines}, {"tiles", std::move(tiles)}};
    return object.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<SheetFile> sheetOf(std::string_view text) {
    const json object = json::parse(text, nullptr, false);
    const json tiles = object.is_object() ? arrayIn(object, "tiles") : json();
    if (!tiles.is_array() || tiles.size() > kMostSheetTiles)
        return std::nullopt;
    SheetFile sheet;
    const auto title = object.find("title");
    if (title != object.end() && title->is_string())
        sheet.title = title->get<std::string>();
    sheet.lines = textsOf(arrayIn(object, "lines"));
    for (const json &tile : tiles) {
        if (!tile.is_object())
            return std::nullopt;
        const auto marked = tile.find("marked");
        sheet.tiles.push_back({textsOf(arrayIn(tile, "captions")), marked != tile.end() &&
                                                                       marked->is_boolean() &&
                                                                       marked->get<bool>()});
    }
    return sheet;
}

} // namespace nv
