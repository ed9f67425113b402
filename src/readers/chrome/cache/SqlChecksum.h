#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <zlib.h>

namespace nv {

/// What the SQL cache stores beside a head and a piece of a body: CRC-32 of the bytes and then of
/// the key's hash, big-endian, so that the same bytes of two entries have two checksums.
class SqlChecksum {
  public:
    void add(std::string_view bytes) {
        m_crc = crc32_z(m_crc, reinterpret_cast<const Bytef *>(bytes.data()), bytes.size());
    }
    /// Where none is stored, which 0 says too, it is right.
    bool is(std::optional<std::int64_t> stored, std::optional<std::int64_t> keyHash) {
        constexpr std::uint32_t kByte = 0xFF;
        if (stored.value_or(0) == 0 || !keyHash)
            return true;
        const auto hash = static_cast<std::uint32_t>(*keyHash);
        for (const unsigned shift : {24U, 16U, 8U, 0U}) {
            const char byte = static_cast<char>(hash >> shift & kByte);
            add({&byte, 1});
        }
        return static_cast<std::uint32_t>(m_crc) == static_cast<std::uint32_t>(*stored);
    }

  private:
    uLong m_crc = crc32(0, nullptr, 0);
};

} // namespace nv
