#pragma once

#include <string>
#include <string_view>

namespace nv {

/// Subtitles (WebVTT) with nothing but their times, how they stand, and their words with the marks
/// of that format: no styles, no notes, no other tags. `text` is UTF-8. Empty for what is none.
std::string guardedTrack(std::string_view text);

} // namespace nv
