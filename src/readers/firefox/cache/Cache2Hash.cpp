#include "readers/firefox/cache/Cache2Hash.h"

namespace nv {

namespace {

constexpr std::size_t kBlock = 12; ///< bytes that are mixed at a time

/// Three words whose bits are mixed.
struct Mixed {
    std::uint32_t a = 0x9E3779B9;
    std::uint32_t b = 0x9E3779B9;
    std::uint32_t c = 0;

    void mix() {
        a = (a - b - c) ^ (c >> 13);
        b = (b - c - a) ^ (a << 8);
        c = (c - a - b) ^ (b >> 13);
        a = (a - b - c) ^ (c >> 12);
        b = (b - c - a) ^ (a << 16);
        c = (c - a - b) ^ (b >> 5);
        a = (a - b - c) ^ (c >> 3);
        b = (b - c - a) ^ (a << 10);
        c = (c - a - b) ^ (b >> 15);
    }
};

} // namespace

std::uint32_t cache2Hash(ByteView bytes) {
    Mixed mixed;
    std::size_t at = 0;
    for (; bytes.size() - at >= kBlock; at += kBlock) {
        mixed.a += bytes.u32le(at);
        mixed.b += bytes.u32le(at + 4);
        mixed.c += bytes.u32le(at + 8);
        mixed.mix();
    }
    mixed.c += static_cast<std::uint32_t>(bytes.size());
    for (std::size_t i = 0; at + i < bytes.size(); ++i) {
        const std::uint32_t byte = bytes.u8(at + i);
        if (i < 4)
            mixed.a += byte << (8 * i);
        else if (i < 8)
            mixed.b += byte << (8 * (i - 4));
        else // the lowest byte has the length
            mixed.c += byte << (8 * (i - 7));
    }
    mixed.mix();
    return mixed.c;
}

} // namespace nv
