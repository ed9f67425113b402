#include "views/record/ExifPosition.h"

#include "base/Text.h"

#include <array>
#include <charconv>
#include <string>

namespace nv {

namespace {

/// "51" and "2643/100" as ExifPicture gives them.
std::optional<double> rationalIn(std::string_view text) {
    const std::size_t slash = std::min(text.find('/'), text.size());
    double above = 0;
    double below = 1;
    const auto read = [](std::string_view part, double &number) {
        const auto end = std::from_chars(part.data(), part.data() + part.size(), number);
        return end.ec == std::errc() && end.ptr == part.data() + part.size();
    };
    if (!read(text.substr(0, slash), above) ||
        (slash < text.size() && !read(text.substr(slash + 1), below)) || below == 0)
        return std::nullopt;
    return above / below;
}

/// "51 30 2643/100": degrees, minutes and seconds, of which the last two may be missing.
std::optional<double> degreesIn(const std::string &text) {
    constexpr std::array<double, 3> kUnits = {1, 60, 3600};
    double degrees = 0;
    std::size_t at = 0;
    if (text.empty())
        return std::nullopt;
    for (const std::string_view part : split(text, ' ')) {
        const auto number = at < kUnits.size() ? rationalIn(part) : std::nullopt;
        if (!number || *number < 0)
            return std::nullopt;
        degrees += *number / kUnits.at(at++);
    }
    return degrees;
}

/// Positive or negative by the letter; nothing without one, since half the earth would be wrong.
std::optional<double> signedDegrees(const ExifPicture &picture, std::string_view name,
                                    std::string_view letters) {
    const auto degrees = degreesIn(Exif::getEXIFValue(name, picture));
    const std::string side = Exif::getEXIFValue(std::string(name) + "Ref", picture);
    if (!degrees || side.size() != 1 || letters.find(side[0]) == std::string_view::npos)
        return std::nullopt;
    return side[0] == letters[0] ? *degrees : -*degrees;
}

} // namespace

std::optional<Position> positionOf(const ExifPicture &picture) {
    const auto latitude = signedDegrees(picture, "GpsLatitude", "NS");
    const auto longitude = signedDegrees(picture, "GpsLongitude", "EW");
    return latitude && longitude ? positionAt(*latitude, *longitude) : std::nullopt;
}

} // namespace nv
