#include "views/record/Position.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace nv {

namespace {

/// A decimal number at the beginning of `text`, which it is taken from.
std::optional<double> takeNumber(std::string_view &text) {
    constexpr std::size_t kLongest = 24;
    std::size_t length = text.starts_with('-') ? 1 : 0;
    bool hasPoint = false;
    bool hasDigit = false;
    for (; length < text.size() && length < kLongest; ++length) {
        const char sign = text[length];
        if (sign == '.' && !hasPoint)
            hasPoint = true;
        else if (sign >= '0' && sign <= '9')
            hasDigit = true;
        else
            break;
    }
    double number = 0;
    const char *end = text.data() + length;
    if (!hasDigit || !hasPoint)
        return std::nullopt;
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
    return number;
}

/// "51.5072,-0.1276": both with a fraction, which plain numbers of pages and sizes don't have.
std::optional<Position> pairIn(std::string_view text) {
    const auto latitude = takeNumber(text);
    if (!latitude || !text.starts_with(','))
        return std::nullopt;
    text.remove_prefix(1);
    while (text.starts_with(' ') || text.starts_with('+'))
        text.remove_prefix(1);
    const auto longitude = takeNumber(text);
    return longitude ? positionAt(*latitude, *longitude) : std::nullopt;
}

std::optional<double> numberIn(std::string_view text) {
    const auto number = takeNumber(text);
    return text.empty() ? number : std::nullopt;
}

/// The value of a parameter in the query or the fragment of an address.
std::string_view parameter(std::string_view address, std::string_view name) {
    for (std::size_t at = address.find_first_of("?#&;"); at != std::string_view::npos;
         at = address.find_first_of("?#&;", at + 1)) {
        const std::string_view rest = address.substr(at + 1);
        if (rest.size() > name.size() && rest[name.size()] == '=' &&
            equalsNoCase(rest.substr(0, name.size()), name)) {
            const std::string_view value = rest.substr(name.size() + 1);
            return value.substr(0, value.find_first_of("&#;"));
        }
    }
    return {};
}

struct Names {
    std::string_view latitude;
    std::string_view longitude;
};
constexpr std::array<Names, 5> kTwo = {
    {{"lat", "lon"}, {"lat", "lng"}, {"mlat", "mlon"}, {"latitude", "longitude"}, {"lat", "long"}}};
/// Names that say of their values what these are.
constexpr std::array<std::string_view, 3> kOne = {"ll", "sll", "cll"};
/// Those of maps, which elsewhere hold anything.
constexpr std::array<std::string_view, 8> kOneOfMaps = {
    "center", "q", "query", "daddr", "saddr", "destination", "origin", "viewpoint"};

/// Whether a part of the host's name, or a folder of the path, says that it is a map.
bool isOfMaps(std::string_view address) {
    const std::size_t scheme = address.find("://");
    if (scheme == std::string_view::npos)
        return false;
    std::string_view rest = address.substr(scheme + 3);
    rest = rest.substr(0, rest.find_first_of("?#@"));
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find_first_of("./:"), rest.size());
        const std::string_view part = rest.substr(0, end);
        for (const std::string_view known : {"map", "maps", "openstreetmap"})
            if (equalsNoCase(part, known))
                return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

/// "/@51.5072,-0.1276,17z" of a map: a folder of its own, with the height or the zoom behind.
std::optional<Position> folderOfMap(std::string_view address) {
    for (std::size_t at = address.find("/@"); at != std::string_view::npos;
         at = address.find("/@", at + 1)) {
        const std::string_view folder = address.substr(at + 2, address.find('/', at + 2) - at - 2);
        if (std::ranges::count(folder, ',') > 1)
            if (const auto position = pairIn(folder))
                return position;
    }
    return std::nullopt;
}

} // namespace

std::optional<Position> positionAt(double latitude, double longitude) {
    constexpr double kMostLatitude = 90;
    constexpr double kMostLongitude = 180;
    // A comparison with what is no number is false.
    const bool isPlace =
        std::abs(latitude) <= kMostLatitude && std::abs(longitude) <= kMostLongitude;
    return isPlace ? std::optional(Position{latitude, longitude}) : std::nullopt;
}

std::optional<Position> positionInAddress(std::string_view address) {
    constexpr std::size_t kMostBytes = 8192; // what browsers themselves take for an address
    const std::string text = percentDecode(address.substr(0, kMostBytes));
    const std::string_view whole = text;
    if (startsWithNoCase(whole, "geo:"))
        return pairIn(whole.substr(4));
    for (const std::string_view name : kOne)
        if (const auto position = pairIn(parameter(whole, name)))
            return position;
    if (isOfMaps(whole)) {
        if (const auto position = folderOfMap(whole))
            return position;
        for (const std::string_view name : kOneOfMaps)
            if (const auto position = pairIn(parameter(whole, name)))
                return position;
    }
    for (const Names &names : kTwo) {
        const auto latitude = numberIn(parameter(whole, names.latitude));
        const auto longitude = numberIn(parameter(whole, names.longitude));
        if (latitude && longitude)
            return positionAt(*latitude, *longitude);
    }
    return std::nullopt;
}

} // namespace nv
