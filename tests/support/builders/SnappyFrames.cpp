#include "support/builders/SnappyFrames.h"

#include <algorithm>

namespace nv::test {

namespace {

constexpr std::size_t kMostOfAFrame = 65536;

void put(std::string &bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFFU));
}

void putVarint(std::string &bytes, std::size_t number) {
    for (; number >= 0x80; number >>= 7U)
        bytes.push_back(static_cast<char>((number & 0x7FU) | 0x80U));
    bytes.push_back(static_cast<char>(number));
}

} // namespace

/// CRC-32C, bit by bit, turned and added to.
std::uint32_t maskedCrc(std::string_view bytes, SnappyBy by) {
    std::uint32_t crc = 0xFFFF'FFFF;
    for (const char c : bytes) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? crc >> 1U ^ 0x82F6'3B78U : crc >> 1U;
    }
    if (by == SnappyBy::standard)
        crc = ~crc;
    return (crc >> 15U | crc << 17U) + 0xA282'EAD8U;
}

/// The text as it is, then copies of the last byte, 64 at a time.
std::string snappyPacked(std::string_view text) {
    const std::size_t last = text.find_last_not_of('\0');
    const std::size_t literal =
        std::min(text.size(), last == std::string_view::npos ? 1 : last + 2);
    std::string bytes;
    putVarint(bytes, text.size());
    constexpr char kLiteralOfTwoBytes = static_cast<char>(61U << 2U);
    bytes.push_back(kLiteralOfTwoBytes);
    put(bytes, static_cast<std::uint32_t>(literal - 1), 2);
    bytes += text.substr(0, literal);
    for (std::size_t left = text.size() - literal; left > 0;) {
        const std::size_t part = std::min<std::size_t>(left, 64);
        bytes.push_back(static_cast<char>(((part - 1) << 2U) | 2U));
        put(bytes, 1, 2);
        left -= part;
    }
    return bytes;
}

std::string snappyFrame(std::uint8_t kind, std::string_view unpacked, std::string_view stored,
                        SnappyBy by) {
    std::string frame(1, static_cast<char>(kind));
    put(frame, static_cast<std::uint32_t>(stored.size() + 4), 3);
    put(frame, maskedCrc(unpacked, by), 4);
    return frame.append(stored);
}

std::string snappyFrames(std::string_view text) {
    std::string frames("\xFF\x06\0\0sNaPpY", 10);
    for (; !text.empty(); text.remove_prefix(std::min(kMostOfAFrame, text.size()))) {
        const std::string_view part = text.substr(0, kMostOfAFrame);
        frames += part.ends_with('\0') ? snappyFrame(0, part, snappyPacked(part))
                                       : snappyFrame(1, part, part);
    }
    return frames;
}

} // namespace nv::test
