#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace nv {

/// Where in `bytes` characters stand, of which `places` names bytes of the same text in UTF-8, in
/// rising order. Nothing for an encoding that nobody knows, or a place within a character. Reads
/// the bytes once, and keeps nothing of them.
std::optional<std::vector<std::size_t>> bytePlaces(std::string_view bytes, std::string_view charset,
                                                   const std::vector<std::size_t> &places);

} // namespace nv
