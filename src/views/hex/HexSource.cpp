#include "views/hex/HexSource.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// A row of fewer bytes has its characters below those of the others.
constexpr std::size_t kHexWidth = kHexRowBytes * 3 - 1;

} // namespace

int HexSource::offsetDigits() const {
    constexpr int kFewest = 8;
    int digits = 1;
    for (std::uint64_t rest = size() >> 4; rest != 0; rest >>= 4)
        ++digits;
    return std::max(digits, kFewest);
}

Bytes HexSource::row(std::uint64_t index) {
    if (index >= rowCount())
        return {};
    const std::uint64_t at = index * kHexRowBytes; // below the file's size
    const bool kept = at >= m_windowAt && at - m_windowAt < m_window.size();
    if (!kept) {
        m_windowAt = at - at % kWindowBytes;
        m_window = m_file.read(m_windowAt, kWindowBytes);
    }
    const ByteView window(m_window, m_windowAt);
    if (!window.has(at - m_windowAt, 0)) // the file has become shorter
        return {};
    const ByteView rest = window.from(at - m_windowAt);
    const ByteView bytes = rest.sub(0, std::min<std::uint64_t>(kHexRowBytes, rest.size()));
    const std::string_view raw = bytes.raw();
    return {raw.begin(), raw.end()};
}

std::string hexOffset(std::uint64_t offset, int digits) {
    return fmt::format("{:0{}X}", offset, digits);
}

std::string hexBytes(ByteView bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); ++at)
        text += fmt::format("{}{:02X}", at == 0 ? "" : " ", bytes.u8(at));
    return text;
}

std::string hexLine(ByteView bytes, int digits) {
    return fmt::format("{}  {:<{}}  {}", hexOffset(bytes.place(), digits), hexBytes(bytes),
                       kHexWidth, hexChars(bytes));
}

std::string hexChars(ByteView bytes) {
    std::string text(bytes.raw());
    std::ranges::replace_if(
        text, [](char c) { return c < 0x20 || c >= 0x7F; }, '.');
    return text;
}

} // namespace nv
