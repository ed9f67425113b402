#include "support/builders/Nvd.h"

namespace nv::test {

namespace {

constexpr std::size_t kHeader = 0x80;
constexpr std::size_t kTableHead = 8;
constexpr std::size_t kEntry = 8;

} // namespace

Nvd::Nvd() : m_records(kHeader, '\0'), m_table(kTableHead, '\0') {}

std::size_t Nvd::add(const IndexRecord &record) {
    return append(recordBytes(record));
}

std::size_t Nvd::addRedirect(std::string_view url) {
    return append(redirectBytes(url));
}

Nvd &Nvd::entry(std::uint32_t offset, std::uint32_t size) {
    const std::size_t at = m_table.size();
    m_table.resize(at + kEntry);
    put32(m_table, at, offset);
    put32(m_table, at + 4, size);
    return *this;
}

Nvd &Nvd::count(std::uint32_t entries) {
    m_count = entries;
    return *this;
}

Nvd &Nvd::table(std::uint32_t offset) {
    m_offset = offset;
    return *this;
}

std::string Nvd::bytes() const {
    std::string file = m_records + m_table;
    const std::size_t entries = (m_table.size() - kTableHead) / kEntry;
    put32(file, 0x64, m_count.value_or(static_cast<std::uint32_t>(entries)));
    put32(file, 0x6C, m_offset.value_or(static_cast<std::uint32_t>(tableOffset())));
    return file;
}

std::size_t Nvd::append(const std::string &record) {
    const std::size_t at = m_records.size();
    m_records += record;
    entry(static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(record.size()));
    return at;
}

} // namespace nv::test
