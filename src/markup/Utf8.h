#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// Whether a code is a character's: not half of a pair, and not beyond the last.
bool isScalar(std::uint32_t code);

/// The bytes of a character.
std::string utf8Of(std::uint32_t code);

/// The character at byte `at`, which is moved after it; U+FFFD for bytes that are none.
std::uint32_t nextCode(std::string_view text, std::size_t &at);

} // namespace nv
