#include "reports/pages/Playlists.h"

#include <algorithm>

namespace nv {

namespace {

/// Frames of MPEG sound may hold any bytes, but each begins with eleven bits that are set.
bool beginsAsMpegSound(std::string_view head) {
    return head.size() > 1 && head[0] == '\xFF' && (head[1] & 0xE0) == 0xE0;
}

bool isOfText(char c) {
    constexpr std::string_view kBlanks = "\t\n\v\f\r";
    return static_cast<unsigned char>(c) >= ' ' || kBlanks.find(c) != std::string_view::npos;
}

} // namespace

bool mayBePlaylist(std::string_view media) {
    const std::string_view head = media.substr(0, kPlaylistHead);
    if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")) // text of 16 bits a letter
        return true;
    // Four letters and a size, of which each byte may be one of text.
    if (head.empty() || head.starts_with("RIFF") || beginsAsMpegSound(head))
        return false;
    return std::ranges::all_of(head, isOfText);
}

} // namespace nv
