#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

using Bytes = std::vector<std::uint8_t>;

/// A read past the end of a view. `place()` is the offset in the evidence file, 0-based.
class OutOfBytes : public std::runtime_error {
  public:
    OutOfBytes(std::uint64_t place, std::uint64_t wanted, std::uint64_t available);
    std::uint64_t place() const { return m_place; }

  private:
    std::uint64_t m_place;
};

/// Read-only bytes of evidence that know where they lie in it. Owns nothing: the buffer must
/// outlive the view. Offsets are 0-based; `has()` is the only bounds test, and every read throws
/// OutOfBytes when it fails.
class ByteView {
  public:
    ByteView() = default;
    /// `place` is the offset of the first byte in the evidence file.
    explicit ByteView(std::span<const std::uint8_t> bytes, std::uint64_t place = 0)
        : m_bytes(bytes), m_place(place) {}

    std::size_t size() const { return m_bytes.size(); }
    bool empty() const { return m_bytes.empty(); }
    std::uint64_t place() const { return m_place; }

    bool has(std::uint64_t at, std::uint64_t count) const {
        return at <= m_bytes.size() && count <= m_bytes.size() - at;
    }

    std::uint8_t u8(std::uint64_t at) const;
    std::uint16_t u16le(std::uint64_t at) const;
    std::uint32_t u32le(std::uint64_t at) const;
    std::int32_t i32le(std::uint64_t at) const;
    std::uint32_t u32be(std::uint64_t at) const;
    std::uint64_t u64le(std::uint64_t at) const;

    ByteView sub(std::uint64_t at, std::uint64_t count) const;
    /// From `at` to the end.
    ByteView from(std::uint64_t at) const;
    /// From `at` up to, not including, the first zero byte, or to the end when there is none.
    ByteView untilZero(std::uint64_t at) const;

    /// The bytes as they are, undecoded; lives as long as the buffer.
    std::string_view raw() const;
    /// Offset in this view of the first `needle` at or after `from`.
    std::optional<std::size_t> find(std::string_view needle, std::size_t from = 0) const;

  private:
    const std::uint8_t *need(std::uint64_t at, std::uint64_t count) const;

    std::span<const std::uint8_t> m_bytes;
    std::uint64_t m_place = 0;
};

/// A view over text that is already in memory, for helpers that take bytes.
ByteView viewOf(std::string_view text);

} // namespace nv
