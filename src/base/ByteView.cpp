#include "base/ByteView.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

OutOfBytes::OutOfBytes(std::uint64_t place, std::uint64_t wanted, std::uint64_t available)
    : std::runtime_error(fmt::format("read past the end: {} bytes wanted at offset {}, {} there",
                                     wanted, place, available)),
      m_place(place) {}

const std::uint8_t *ByteView::need(std::uint64_t at, std::uint64_t count) const {
    if (!has(at, count)) {
        const std::uint64_t available = at < m_bytes.size() ? m_bytes.size() - at : 0;
        throw OutOfBytes(m_place + at, count, available);
    }
    return m_bytes.data() + at;
}

std::uint8_t ByteView::u8(std::uint64_t at) const {
    return *need(at, 1);
}

std::uint16_t ByteView::u16le(std::uint64_t at) const {
    const std::uint8_t *p = need(at, 2);
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}

std::uint32_t ByteView::u32le(std::uint64_t at) const {
    const std::uint8_t *p = need(at, 4);
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
           std::uint32_t{p[3]} << 24;
}

std::int32_t ByteView::i32le(std::uint64_t at) const {
    return static_cast<std::int32_t>(u32le(at));
}

std::uint32_t ByteView::u32be(std::uint64_t at) const {
    const std::uint8_t *p = need(at, 4);
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 |
           std::uint32_t{p[3]};
}

std::uint64_t ByteView::u64le(std::uint64_t at) const {
    need(at, 8);
    return std::uint64_t{u32le(at)} | std::uint64_t{u32le(at + 4)} << 32;
}

ByteView ByteView::sub(std::uint64_t at, std::uint64_t count) const {
    need(at, count);
    return ByteView(m_bytes.subspan(at, count), m_place + at);
}

ByteView ByteView::from(std::uint64_t at) const {
    need(at, 0);
    return ByteView(m_bytes.subspan(at), m_place + at);
}

ByteView ByteView::untilZero(std::uint64_t at) const {
    const ByteView rest = from(at);
    const auto zero = std::find(rest.m_bytes.begin(), rest.m_bytes.end(), std::uint8_t{0});
    return rest.sub(0, static_cast<std::uint64_t>(zero - rest.m_bytes.begin()));
}

std::string_view ByteView::raw() const {
    return {reinterpret_cast<const char *>(m_bytes.data()), m_bytes.size()};
}

std::optional<std::size_t> ByteView::find(std::string_view needle, std::size_t from) const {
    const std::size_t at = raw().find(needle, from);
    return at == std::string_view::npos ? std::nullopt : std::optional(at);
}

ByteView viewOf(std::string_view text) {
    return ByteView({reinterpret_cast<const std::uint8_t *>(text.data()), text.size()});
}

} // namespace nv
