#include "support/builders/HistEx.h"

namespace nv::test {

namespace {

constexpr std::size_t kBlock = 0x80;
constexpr std::size_t kVersion = 0x1F;

} // namespace

HistEx::HistEx(std::string_view version) : m_bytes(kBlock, '\0') {
    m_bytes.replace(kVersion, version.size(), version);
}

HistEx HistEx::withoutHeader() {
    HistEx file;
    file.m_bytes.clear();
    return file;
}

std::size_t HistEx::add(const IndexRecord &record) {
    const std::size_t at = m_bytes.size();
    m_bytes += recordBytes(record);
    return at;
}

std::size_t HistEx::addRedirect(std::string_view url) {
    const std::size_t at = m_bytes.size();
    m_bytes += redirectBytes(url);
    return at;
}

HistEx &HistEx::filler(std::size_t blocks) {
    m_bytes.append(blocks * kBlock, '\0');
    return *this;
}

HistEx &HistEx::raw(std::string_view bytes) {
    m_bytes += bytes;
    return *this;
}

HistEx &HistEx::mark(std::string_view text) {
    m_bytes.replace(0, text.size(), text);
    return *this;
}

} // namespace nv::test
