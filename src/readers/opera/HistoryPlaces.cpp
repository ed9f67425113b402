#include "readers/opera/HistoryPlaces.h"

#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/TextPlaces.h"
#include "readers/opera/HistoryTyped.h"

#include <fmt/format.h>

#include <array>
#include <pugixml.hpp>
#include <stdexcept>

namespace nv {

namespace {

/// The lines of the record: title, address, seconds, popularity.
void placeLines(const TextPlaces &text, std::size_t at, TextPlaces &places) {
    std::array<std::string_view, 3> lines;
    for (std::string_view &line : lines) {
        const std::size_t end = std::min(text.text().find('\n', at), text.text().size());
        line = text.text().substr(at, end - at);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        at = std::min(end + 1, text.text().size());
    }
    places.value("WebPageTitle", lines[0], decodeText(lines[0]), "the record's first line");
    for (const std::string_view field : {"URL", "URLRawValue"})
        places.value(field, lines[1], decodeText(lines[1]), "its second line");
    for (const std::string_view field : {"ActionDateUTC", "LastVisited"})
        places.digits(field, lines[2], SourceForm::unixSeconds, "its third line");
}

/// The value of an attribute as it lies, between its quotes.
std::string_view attributeIn(std::string_view item, std::string_view name) {
    const std::string mark = fmt::format(" {}=", name);
    const std::size_t at = item.find(mark);
    if (at == std::string_view::npos || at + mark.size() >= item.size())
        return {};
    const std::size_t begin = at + mark.size() + 1;
    const std::size_t end = item.find(item[begin - 1], begin);
    return end == std::string_view::npos ? std::string_view() : item.substr(begin, end - begin);
}

/// "2011-03-05T09:30:00Z"
Date dateIn(std::string_view text) {
    if (text.size() != std::string_view("0000-00-00T00:00:00Z").size())
        return {};
    const auto number = [text](std::size_t at, std::size_t size) {
        return static_cast<int>(wholeNumberIn(text.substr(at, size)).value_or(0));
    };
    return Date::fromCivil({.year = number(0, 4),
                            .month = number(5, 2),
                            .day = number(8, 2),
                            .hour = number(11, 2),
                            .minute = number(14, 2),
                            .second = number(17, 2)});
}

void placeItem(const TextPlaces &text, std::size_t at, TextPlaces &places) {
    const std::size_t end = std::min(text.text().find('>', at), text.text().size());
    std::string_view item = text.text().substr(at, end - at);
    pugi::xml_document document;
    document.load_string(
        fmt::format("<{}/>", item.substr(0, item.find_last_not_of("/ ") + 1)).c_str());
    const std::string content = decodeText(document.first_child().attribute("content").value());
    if (const std::string_view own = attributeIn(item, "content"); !own.empty())
        for (const std::string_view field : {"URL", "URLRawValue"})
            places.value(field, own, content, "attribute \"content\"",
                         "text of XML, its references undone");
    if (const std::string_view own = attributeIn(item, "last_typed"); !own.empty())
        for (const std::string_view field : {"ActionDateUTC", "LastVisited"})
            places.value(field, own, dateIn(own), "attribute \"last_typed\"",
                         "date and time of ISO 8601, UTC");
}

} // namespace

void locateInOperaHistory(const PlaceSearch &search, FieldPlaces &places) {
    TextPlaces text(search, search.source, limits::kOperaFileBytes, places);
    const auto at = static_cast<std::size_t>(search.record.MapFileOffset);
    if (at >= text.text().size())
        throw std::runtime_error(fmt::format("the file ends before byte {}", at));
    if (beginsAsXml(text.view()))
        placeItem(text, at, text);
    else
        placeLines(text, at, text);
}

} // namespace nv
