#pragma once

#include <string_view>

namespace nv {

// The sections of the settings file.
inline constexpr std::string_view kOptionsSection = "OPTIONS";
inline constexpr std::string_view kThumbnailsSection = "THUMBNAILS";
inline constexpr std::string_view kPathsSection = "FILE PATHS";
inline constexpr std::string_view kBeyondSection = "BEYOND";

} // namespace nv
