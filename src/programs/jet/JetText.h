#pragma once

#include "base/ByteView.h"

#include <string>

namespace nv::jet {

/// Text of Jet 4 and later as UTF-8: UTF-16 little-endian, or, after the mark FF FE, packed: runs
/// of one byte a character and runs of UTF-16, with a zero byte between them. Half a surrogate pair
/// becomes U+FFFD.
std::string fromUnicode(ByteView stored);

} // namespace nv::jet
