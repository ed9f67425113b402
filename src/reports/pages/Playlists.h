#pragma once

#include <cstddef>
#include <string_view>

namespace nv {

/// Bytes that mayBePlaylist() looks at.
inline constexpr std::size_t kPlaylistHead = 8;

/// Whether what is called a sound or a film may be a list of addresses: players go by the content,
/// and fetch what the list names. Lists are text, sounds and films never begin as text does.
bool mayBePlaylist(std::string_view media);

} // namespace nv
