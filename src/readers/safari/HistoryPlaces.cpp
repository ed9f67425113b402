#include "readers/safari/HistoryPlaces.h"

#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/TextPlaces.h"
#include "readers/plist/PropertyList.h"
#include "time/SourceClocks.h"

#include <charconv>
#include <optional>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::string_view kClock =
    "seconds since 2001-01-01 00:00:00 UTC, in digits with one decimal: the clock of Safari and "
    "macOS, which has no time zone. 978307200 more are seconds since 1970";

std::optional<double> secondsIn(std::string_view text) {
    text = trim(text);
    double seconds = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    return error == std::errc() && stop == end && !text.empty() ? std::optional(seconds)
                                                                : std::nullopt;
}

Date dateIn(const std::string &text) {
    const auto seconds = secondsIn(text);
    return seconds ? secondsToDate2001(*seconds) : Date();
}

/// The entry's text of a key; empty without it.
std::string textOfKey(pugi::xml_node entry, std::string_view wanted) {
    std::string text;
    eachValue(entry, [&](std::string_view key, pugi::xml_node value) {
        if (key == wanted)
            text = textOf(value);
    });
    return text;
}

/// The entry of the record's address; of several that with its date and its count.
pugi::xml_node entryOf(const PropertyList &list, const UrlRecord &record) {
    pugi::xml_node found;
    for (const pugi::xml_node entry : list.arrays().first().node().children("dict")) {
        if (textOfKey(entry, "") != record.URLRawValue)
            continue;
        const Date date = dateIn(textOfKey(entry, "lastVisitedDate"));
        const bool isSame =
            date.has() == record.ActionDateUTC.has() &&
            (!date.has() || date.unixSeconds() == record.ActionDateUTC.unixSeconds());
        if (!found || isSame)
            found = entry;
        if (isSame && textOfKey(entry, "visitCount") == std::to_string(record.Visits))
            break;
    }
    return found;
}

/// What stands between the tags of an element, as it lies.
std::string_view insideOf(pugi::xml_node element, std::string_view xml) {
    const auto at = static_cast<std::size_t>(std::max<std::ptrdiff_t>(element.offset_debug(), 0));
    const std::size_t begin = xml.find('>', at);
    if (begin == std::string_view::npos || xml[begin - 1] == '/')
        return {};
    const std::size_t end = xml.find("</", begin);
    return end == std::string_view::npos ? std::string_view()
                                         : xml.substr(begin + 1, end - begin - 1);
}

void placeValue(std::string_view key, pugi::xml_node value, TextPlaces &text) {
    const std::string_view own = insideOf(value, text.text());
    const std::string read = textOf(value);
    if (own.empty())
        return;
    if (key.empty()) {
        for (const std::string_view field : {"URL", "URLRawValue"})
            text.value(field, own, read, "value of the key without a name",
                       "the address as it stands, references of XML undone");
    } else if (key == "lastVisitedDate") {
        for (const std::string_view field : {"ActionDateUTC", "LastVisited"})
            text.value(field, own, dateIn(read), "value of key \"lastVisitedDate\"",
                       std::string(kClock));
    } else if (key == "title") {
        text.value("WebPageTitle", own, read, "value of key \"title\"");
    } else if (key == "visitCount") {
        text.digits("Visits", own, SourceForm::number, "value of key \"visitCount\"");
    }
}

} // namespace

void locateInSafariHistory(const PlaceSearch &search, FieldPlaces &places) {
    TextPlaces text(search, search.source, limits::kPropertyListBytes, places);
    const PropertyList list(text.text(), limits::kPropertyListBytes);
    const pugi::xml_node entry = entryOf(list, search.record);
    if (!entry)
        throw std::runtime_error("the file has no entry of this address any more");
    eachValue(entry, [&text](std::string_view key, pugi::xml_node value) {
        placeValue(key, value, text);
    });
    places.derived("Visits", "the entry has no count");
}

} // namespace nv
