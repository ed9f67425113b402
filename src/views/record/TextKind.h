#pragma once

#include <cstddef>
#include <string_view>

namespace nv {

/// What the first bytes of a content say, whatever its cache or its address call it.
enum class TextKind { page, text, none };
TextKind textKindOf(std::string_view head);

/// So many first bytes tell it.
inline constexpr std::size_t kTextHead = 4096;

} // namespace nv
