#pragma once

#include <cstdint>
#include <string>

namespace nv {

/// The examiner's choice of pictures by shape and size.
struct PardChoice {
    bool showXSmallPics = false;
    bool showXLargePics = false;
    bool showSmallPics = false;
    bool showMediumPics = false;
    bool showLargePics = false;
    bool enablePARD = false;
    std::int16_t toValue = 0;
    std::int16_t fromValue = 0;
};

/// The "Photograph Aspect Ratio Differential", 0 to 100, of a picture's sides in pixels: 0 is a
/// square, photographs lie between 15 and 40, banners and spacers above.
std::int16_t pardValue(std::int64_t width, std::int64_t height);

/// What a gallery shows besides P.A.R.D. and size.
struct GalleryMedia {
    bool galleryIncludePictures = true;
    bool galleryIncludeHTML = true;
};

/// The conditions of the gallery's query, each with " AND " before it, in the project's dialect.
std::string buildGalleryFilter(const PardChoice &pard, const GalleryMedia &media);

} // namespace nv
