#include "readers/chrome/profile/ProfilePlaces.h"

#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/json/JsonPlaces.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace nv {

namespace {

using F = SourceForm;

constexpr auto kBookmark = std::to_array<JsonFieldRule>({
    {"URL", "url"},
    {"URLRawValue", "url"},
    {"WebPageTitle", "name"},
    {"guid", "guid"},
    {"guid", "id"},
    {"ActionDateUTC", "date_added", F::chromeOrUnixTime},
    {"LastVisited", "date_added", F::chromeOrUnixTime},
    {"created", "date_added", F::chromeOrUnixTime},
    {"last_updated", "date_modified", F::chromeOrUnixTime},
    {"OtherDate", "date_last_used", F::chromeOrUnixTime},
    {"last_used", "date_last_used", F::chromeOrUnixTime},
});

constexpr auto kSite = std::to_array<JsonFieldRule>({
    {"ActionDateUTC", "last_modified", F::chromeOrUnixTime},
    {"LastVisited", "last_modified", F::chromeOrUnixTime},
    {"last_modified", "last_modified", F::chromeOrUnixTime},
    {"ExpiryDate", "expiration", F::chromeOrUnixTime},
    {"last_used", "setting.lastEngagementTime", F::chromeOrUnixTime},
    {"last_used", "setting.lastMediaPlaybackTime", F::chromeOrUnixTime},
    {"last_used", "last_visit", F::chromeOrUnixTime},
    {"setting", "setting", F::number},
});

constexpr auto kAccount = std::to_array<JsonFieldRule>({
    {"User", "email"},
    {"account", "email"},
    {"User", "user_name"},
    {"account", "user_name"},
    {"WebPageTitle", "full_name"},
    {"full_name", "full_name"},
    {"WebPageTitle", "gaia_name"},
    {"full_name", "gaia_name"},
    {"account_id", "gaia"},
    {"account_id", "gaia_id"},
    {"profile_name", "name"},
    {"ActionDateUTC", "active_time", F::chromeOrUnixTime},
    {"LastVisited", "active_time", F::chromeOrUnixTime},
    {"last_used", "active_time", F::chromeOrUnixTime},
});

/// Of the whole file.
constexpr auto kRest = std::to_array<JsonFieldRule>({
    {"profile_name", "profile.name"},
    {"ActionDateUTC", "profile.creation_time", F::chromeOrUnixTime},
    {"LastVisited", "profile.creation_time", F::chromeOrUnixTime},
    {"created", "profile.creation_time", F::chromeOrUnixTime},
});

/// The object that begins where the record lies.
JsonFound objectAt(const TextPlaces &text, std::uint64_t offset) {
    std::optional<JsonFound> found;
    findJsonObjects(
        text.text(), [offset](const auto &, std::uint64_t at) { return at == offset; },
        [&found](const JsonFound &object) {
            found = object;
            return false;
        });
    if (!found)
        throw std::runtime_error(fmt::format("no record begins at byte {}", offset));
    return std::move(*found);
}

std::uint64_t offsetOf(const UrlRecord &record) {
    return static_cast<std::uint64_t>(
        factNumber(record, "source_offset").value_or(record.MapFileOffset));
}

/// The names of what a site setting lies in are its pattern and its permission.
void placeNames(const UrlRecord &record, const JsonFound &object, TextPlaces &text) {
    std::vector<JsonSpan> names = object.above;
    names.push_back(object.own);
    for (const JsonSpan &name : names) {
        if (name.path == factWords(record, "permission") && !name.name.empty())
            text.value("permission", name.name, name.path, "name of a member");
        if (name.path != record.URLRawValue || name.name.empty())
            continue;
        const std::size_t comma = name.path.find(',');
        text.value("URLRawValue", name.name, name.path, "name of a member");
        text.value("URL", name.name, replaceAll(name.path.substr(0, comma), "[*.]", ""),
                   "name of a member", "what stands before \",\", without \"[*.]\"");
        if (comma != std::string::npos)
            text.value("embedded_in", name.name, name.path.substr(comma + 1), "name of a member",
                       "what stands behind \",\"");
    }
}

std::string zoomText(std::string_view level) {
    constexpr double kStep = 1.2;
    constexpr double kFigures = 100;
    const double number = std::strtod(std::string(level.substr(0, 40)).c_str(), nullptr);
    return fmt::format("{}", std::round(std::pow(kStep, number) * kFigures) / kFigures);
}

/// As the reader writes them: "0.0" is the number 0.
std::string settingText(std::string_view raw) {
    double number = 0;
    const char *end = raw.data() + raw.size();
    const auto [stop, error] = std::from_chars(raw.data(), end, number);
    const bool isReal = error == std::errc() && stop == end && !wholeNumberIn(raw);
    return isReal ? fmt::format("{}", number) : jsonText(raw);
}

/// Permissions whose setting is an object, and levels of zoom.
void placeSettings(const UrlRecord &record, const JsonFound &object, TextPlaces &text) {
    const bool isZoom = factWords(record, "permission").empty();
    constexpr std::string_view kBegin = "setting.";
    std::string parts;
    std::string_view first;
    for (const JsonSpan &member : object.members) {
        if (isZoom && (member.path == "zoom_level" || member.path.empty()))
            text.value("zoom", member.value, zoomText(member.value),
                       fmt::format("member \"{}\"", member.path),
                       "1.2 to the power of the number, to two figures");
        else if (member.path == factWords(record, "permission")) // up to 2014
            text.digits("setting", member.value, F::number, "member of that name");
        else if (member.path.starts_with(kBegin)) {
            const std::string value = settingText(member.value);
            parts +=
                fmt::format("{}{}={}", parts.empty() ? "" : "; ", member.path.substr(kBegin.size()),
                            value == "true"    ? "yes"
                            : value == "false" ? "no"
                                               : value);
            if (first.empty())
                first = member.value;
        }
    }
    if (!first.empty())
        text.value("setting", first, std::move(parts), "the first of the members of \"setting\"",
                   "all members of that object, with their names");
}

/// The bookmark's folders are the objects that it lies in; each has its name as a member.
void placeFolder(const JsonFound &bookmark, TextPlaces &text, FieldPlaces &places) {
    std::string path;
    std::string_view own;
    for (const JsonSpan &above : bookmark.above) {
        if (text.text().substr(above.offset, 1) != "{")
            continue;
        const JsonFound folder = objectAt(text, above.offset);
        const bool isRoot = !folder.above.empty() && folder.above.back().path == "roots";
        std::string name = isRoot ? folder.own.path : std::string(); // unless it is told
        std::string_view place = isRoot ? folder.own.name : std::string_view();
        for (const JsonSpan &member : folder.members)
            if (member.path == "name" && jsonText(member.value) != "") {
                name = jsonText(member.value);
                place = member.value;
            }
        if (name.empty())
            continue;
        path += (path.empty() ? "" : "/") + name;
        own = place;
    }
    if (own.empty())
        return places.derived("folder", "names of the folders that the bookmark lies in");
    text.value("folder", own, std::move(path), "member \"name\" of its folder",
               "the names of the folders that it lies in, outermost first, with \"/\" between");
}

} // namespace

void locateInBookmarks(const PlaceSearch &search, FieldPlaces &places) {
    TextPlaces text(search, search.source, limits::kJsonBytes, places);
    const JsonFound bookmark = objectAt(text, offsetOf(search.record));
    placeJsonMembers(bookmark, kBookmark, text);
    placeFolder(bookmark, text, places);
}

void locateInSettings(const PlaceSearch &search, FieldPlaces &places) {
    TextPlaces text(search, search.source, limits::kJsonBytes, places);
    const std::uint64_t at = offsetOf(search.record);
    const JsonFound object = objectAt(text, at); // 0 is the whole file
    if (at == 0) {
        placeJsonMembers(object, kRest, text);
        for (const JsonSpan &member : object.members)
            if (member.path.starts_with("google.services.") &&
                jsonText(member.value) == search.record.User)
                for (const std::string_view field : {"User", "account"})
                    text.value(field, member.value, jsonText(member.value),
                               fmt::format("member \"{}\"", member.path));
        return;
    }
    placeNames(search.record, object, text);
    const bool isAccount = search.record.Status == "Account" || search.record.Status == "Profile";
    if (isAccount)
        return placeJsonMembers(object, kAccount, text);
    placeJsonMembers(object, kSite, text);
    placeSettings(search.record, object, text);
}

} // namespace nv
