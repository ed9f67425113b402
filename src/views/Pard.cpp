#include "views/Pard.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

namespace {

struct SizeClass {
    bool PARDClass::*flag;
    std::string_view condition;
};

// The 99 of the medium class and the gaps between the classes are as in earlier cases: a picture
// that is large on one side and small on the other falls in none, and counts stay comparable.
constexpr std::array<SizeClass, 5> kSizeClasses = {{
    {&PARDClass::ShowXSmallPics, "(PictureWidth <= 39 AND PictureHeight <= 39)"},
    {&PARDClass::ShowSmallPics, "(PictureWidth > 39 AND PictureWidth <= 299 AND PictureHeight > 39 "
                                "AND PictureHeight <= 299)"},
    {&PARDClass::ShowMediumPics, "(PictureWidth > 299 AND PictureWidth <= 599 AND PictureHeight > "
                                 "99 AND PictureHeight <= 599)"},
    {&PARDClass::ShowLargePics, "(PictureWidth > 599 AND PictureWidth <= 1199 AND PictureHeight > "
                                "599 AND PictureHeight <= 1199)"},
    {&PARDClass::ShowXLargePics, "(PictureWidth > 1199 AND PictureHeight > 1199)"},
}};

std::string sizesOf(const PARDClass &PARD) {
    std::string sizes;
    for (const SizeClass &each : kSizeClasses)
        if (PARD.*each.flag)
            sizes.append(sizes.empty() ? "" : " OR ").append(each.condition);
    return sizes;
}

/// Sizes count together with P.A.R.D. only: without it, and with a range that runs backwards,
/// pictures of all sizes are shown.
std::string shapeOf(const PARDClass &PARD) {
    if (!PARD.EnablePARD || PARD.FromValue > PARD.ToValue)
        return {};
    const std::string range =
        fmt::format("(PARDValue >= {} AND PARDValue <= {})", PARD.FromValue, PARD.ToValue);
    const std::string sizes = sizesOf(PARD);
    return sizes.empty() ? " AND " + range : fmt::format(" AND {} AND ({})", range, sizes);
}

/// Pages alone must be pictures too, which hardly any is: kept, as examiners compare counts with
/// earlier cases.
std::string_view mediaOf(const GalleryMedia &media) {
    if (media.GalleryIncludePictures && media.GalleryIncludeHTML)
        return " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML' OR IsPicture = "
               "True)";
    if (media.GalleryIncludeHTML)
        return " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML') AND IsPicture = "
               "True";
    return media.GalleryIncludePictures ? " AND IsPicture = True" : "";
}

} // namespace

std::int16_t pardValue(std::int64_t width, std::int64_t height) {
    constexpr std::int64_t kWhole = 100;
    // No picture has more: hostile sizes must not overflow.
    constexpr std::int64_t kMostPixels = INT32_MAX;
    width = std::clamp<std::int64_t>(width, 0, kMostPixels);
    height = std::clamp<std::int64_t>(height, 0, kMostPixels);
    if (width == height)
        return 0;
    const auto [smaller, larger] = std::minmax({width, height});
    return static_cast<std::int16_t>(kWhole - kWhole * smaller / larger);
}

std::string BuildGalleryFilter(const PARDClass &PARD, const GalleryMedia &media) {
    return shapeOf(PARD).append(mediaOf(media));
}

} // namespace nv
