#include "readers/Crc32c.h"

#include <array>
#include <cstddef>

namespace nv {

namespace {

constexpr std::size_t kSlices = 8; ///< bytes that are taken at a time
constexpr std::size_t kValues = 256;
using Table = std::array<std::array<std::uint32_t, kValues>, kSlices>;

constexpr Table makeTable() {
    constexpr std::uint32_t kPolynomial = 0x82F6'3B78;
    constexpr int kBits = 8;
    Table table{};
    for (std::uint32_t value = 0; value < kValues; ++value) {
        std::uint32_t crc = value;
        for (int bit = 0; bit < kBits; ++bit)
            crc = (crc & 1U) != 0 ? crc >> 1U ^ kPolynomial : crc >> 1U;
        table[0][value] = crc;
    }
    for (std::size_t slice = 1; slice < kSlices; ++slice)
        for (std::size_t value = 0; value < kValues; ++value) {
            const std::uint32_t before = table[slice - 1][value];
            table[slice][value] = before >> 8U ^ table[0][before & 0xFFU];
        }
    return table;
}

constexpr Table kTable = makeTable();

std::uint32_t byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

std::uint32_t eight(std::uint32_t crc, std::string_view bytes) {
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < kSlices; ++i) {
        const std::uint32_t own = i < 4 ? crc >> (8 * i) & 0xFFU : 0;
        next ^= kTable[kSlices - 1 - i][byteAt(bytes, i) ^ own];
    }
    return next;
}

} // namespace

std::uint32_t crc32c(std::string_view bytes) {
    std::uint32_t crc = ~std::uint32_t{0};
    for (; bytes.size() >= kSlices; bytes.remove_prefix(kSlices))
        crc = eight(crc, bytes);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        crc = crc >> 8U ^ kTable[0][(crc ^ byteAt(bytes, i)) & 0xFFU];
    return ~crc;
}

std::uint32_t maskedCrc(std::uint32_t crc) {
    constexpr std::uint32_t kAdded = 0xA282'EAD8;
    return (crc >> 15U | crc << 17U) + kAdded;
}

} // namespace nv
