#pragma once

#include <string>
#include <string_view>

namespace nv {

/// What is read of a text that somebody has written as an address: valid UTF-8 without blanks and
/// controls at its ends, and without tabs and breaks anywhere. Bytes that are no text become
/// U+FFFD.
std::string addressText(std::string_view text);

} // namespace nv
