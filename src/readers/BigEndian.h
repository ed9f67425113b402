#pragma once

#include "base/ByteView.h"

#include <cstdint>

namespace nv {

/// The number that the bytes are, most significant first: as many as there are, up to eight.
inline std::uint64_t bigEndian(ByteView bytes) {
    std::uint64_t number = 0;
    for (std::uint64_t at = 0; at < bytes.size(); ++at)
        number = number << 8 | bytes.u8(at);
    return number;
}

} // namespace nv
