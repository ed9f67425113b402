#include "views/gallery/Pard.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

namespace {

struct PictureSize {
    bool PardChoice::*flag;
    std::string_view condition;
};

// The 99 of the medium class and the gaps between the classes are as in earlier cases: a picture
// that is large on one side and small on the other falls in none, and counts stay comparable.
constexpr std::array<PictureSize, 5> kSizeClasses = {{
    {&PardChoice::showXSmallPics, "(PictureWidth <= 39 AND PictureHeight <= 39)"},
    {&PardChoice::showSmallPics,
     "(PictureWidth > 39 AND PictureWidth <= 299 AND PictureHeight > 39 "
     "AND PictureHeight <= 299)"},
    {&PardChoice::showMediumPics, "(PictureWidth > 299 AND PictureWidth <= 599 AND PictureHeight > "
                                  "99 AND PictureHeight <= 599)"},
    {&PardChoice::showLargePics, "(PictureWidth > 599 AND PictureWidth <= 1199 AND PictureHeight > "
                                 "599 AND PictureHeight <= 1199)"},
    {&PardChoice::showXLargePics, "(PictureWidth > 1199 AND PictureHeight > 1199)"},
}};

std::string sizesOf(const PardChoice &pard) {
    std::string sizes;
    for (const PictureSize &each : kSizeClasses)
        if (pard.*each.flag)
            sizes.append(sizes.empty() ? "" : " OR ").append(each.condition);
    return sizes;
}

/// Sizes count together with P.A.R.D. only: without it, and with a range that runs backwards,
/// pictures of all sizes are shown.
std::string shapeOf(const PardChoice &pard) {
    if (!pard.enablePARD || pard.fromValue > pard.toValue)
        return {};
    const std::string range =
        fmt::format("(PARDValue >= {} AND PARDValue <= {})", pard.fromValue, pard.toValue);
    const std::string sizes = sizesOf(pard);
    return sizes.empty() ? " AND " + range : fmt::format(" AND {} AND ({})", range, sizes);
}

/// Pages alone must be pictures too, which hardly any is: kept, as examiners compare counts with
/// earlier cases.
std::string_view mediaOf(const GalleryMedia &media) {
    if (media.galleryIncludePictures && media.galleryIncludeHTML)
        return " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML' OR IsPicture = "
               "True)";
    if (media.galleryIncludeHTML)
        return " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML') AND IsPicture = "
               "True";
    return media.galleryIncludePictures ? " AND IsPicture = True" : "";
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

std::string buildGalleryFilter(const PardChoice &pard, const GalleryMedia &media) {
    return shapeOf(pard).append(mediaOf(media));
}

} // namespace nv
