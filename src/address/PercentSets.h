#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// The URL standard's percent-encode sets: which bytes a part of an address can't hold as they are.
/// Bytes beyond ASCII are in each of them.
enum class PercentSet : std::uint8_t { control, fragment, query, specialQuery, path, userinfo };

void appendEncoded(std::string &out, std::string_view bytes, PercentSet set);
std::string percentEncoded(std::string_view bytes, PercentSet set);
/// "%" and two upper-case hexadecimal digits, whatever the byte.
void appendEscape(std::string &out, char byte);

/// The bytes with their escapes undone, whatever they are; malformed escapes stay.
std::string bytesOfEscapes(std::string_view text);

/// What the hexadecimal digit stands for; -1 for other characters.
int hexDigitOf(char c);

} // namespace nv
