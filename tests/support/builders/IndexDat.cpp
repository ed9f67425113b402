#include "support/builders/IndexDat.h"

#include <chrono>

namespace nv::test {

namespace {

constexpr std::size_t kBlock = 0x80;
constexpr std::size_t kTableHeader = 0x10;
constexpr std::size_t kUrl = 0x68;
constexpr std::uint32_t kFiller = 0xDEADBEEF;
constexpr std::uint32_t kFreeSlot = 3;

void put(std::string &bytes, std::size_t at, std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i)
        bytes.at(at + i) = static_cast<char>(value >> (8 * i));
}

void putText(std::string &bytes, std::size_t at, std::string_view text) {
    bytes.replace(at, text.size(), text);
}

/// Fills up to whole blocks and writes the length.
std::string inBlocks(std::string record) {
    record.resize((record.size() + kBlock - 1) / kBlock * kBlock);
    put32(record, 4, static_cast<std::uint32_t>(record.size() / kBlock));
    return record;
}

/// Appends a text that ends in a zero byte, and writes its offset at `field`.
void putBehind(std::string &record, std::size_t field, std::string_view text) {
    if (text.empty())
        return;
    put32(record, field, static_cast<std::uint32_t>(record.size()));
    record.append(text).push_back('\0');
}

} // namespace

std::string recordBytes(const IndexRecord &record) {
    std::string bytes(kUrl, '\0');
    putText(bytes, 0, record.signature);
    put64(bytes, 0x08, record.firstDate);
    put64(bytes, 0x10, record.secondDate);
    put64(bytes, 0x18, record.expiry);
    put32(bytes, 0x20, record.fileSize);
    put32(bytes, 0x34, kUrl);
    put(bytes, 0x38, record.folder, 1);
    put32(bytes, 0x54, record.hits);
    put64(bytes, 0x5C, record.created);
    bytes.append(record.url).push_back('\0');
    putBehind(bytes, 0x3C, record.fileName);
    putBehind(bytes, 0x44, record.headers);
    return inBlocks(std::move(bytes));
}

std::string redirectBytes(std::string_view url) {
    std::string record(0x10, '\0');
    putText(record, 0, "REDR");
    return inBlocks(record.append(url) + '\0');
}

void put16(std::string &bytes, std::size_t at, std::uint16_t value) {
    put(bytes, at, value, 2);
}
void put32(std::string &bytes, std::size_t at, std::uint32_t value) {
    put(bytes, at, value, 4);
}
void put64(std::string &bytes, std::size_t at, std::uint64_t value) {
    put(bytes, at, value, 8);
}

std::uint64_t fileTime(int year, int month, int day, int hour, int minute, int second) {
    namespace c = std::chrono;
    const c::sys_days date{c::year(year) / month / day};
    const c::sys_days epoch{c::year(1601) / 1 / 1};
    const c::seconds since =
        (date - epoch) + c::hours(hour) + c::minutes(minute) + c::seconds(second);
    return static_cast<std::uint64_t>(since.count()) * 10'000'000;
}

std::uint32_t dosDate(int year, int month, int day, int hour, int minute, int second) {
    const int date = (year - 1980) << 9 | month << 5 | day;
    const int time = hour << 11 | minute << 5 | second / 2;
    return static_cast<std::uint32_t>(time) << 16 | static_cast<std::uint32_t>(date);
}

IndexDat::IndexDat(std::uint32_t blocks, std::size_t filler)
    : m_blocks(blocks), m_filler(filler), m_bytes(kFirstTable, '\0') {
    openTable();
}

IndexDat &IndexDat::version(std::string_view text) {
    m_version = text;
    return *this;
}

IndexDat &IndexDat::folder(std::string_view name) {
    m_folders.emplace_back(name);
    return *this;
}

std::size_t IndexDat::add(const IndexRecord &record) {
    const std::size_t at = addUnreferenced(record);
    entry(static_cast<std::uint32_t>(at) << 6 | 0x40, static_cast<std::uint32_t>(at));
    return at;
}

std::size_t IndexDat::addRedirect(std::string_view url) {
    const std::size_t at = append(redirectBytes(url));
    entry(static_cast<std::uint32_t>(at) << 6 | 0x05, static_cast<std::uint32_t>(at));
    return at;
}

std::size_t IndexDat::addUnreferenced(const IndexRecord &record) {
    return append(recordBytes(record));
}

IndexDat &IndexDat::entry(std::uint32_t status, std::uint32_t recordOffset) {
    if (m_used == capacity())
        openTable();
    const std::size_t at = m_tables.back() + kTableHeader + 8 * m_used++;
    put32(m_bytes, at, status);
    put32(m_bytes, at + 4, recordOffset);
    return *this;
}

IndexDat &IndexDat::endTable() {
    m_used = capacity();
    return *this;
}

IndexDat &IndexDat::sizeField(std::uint32_t size) {
    m_sizeField = size;
    return *this;
}

std::string IndexDat::bytes() const {
    std::string file = m_bytes;
    putText(file, 0, "Client UrlCache MMF Ver " + m_version);
    put32(file, 0x1C, m_sizeField.value_or(static_cast<std::uint32_t>(file.size())));
    put32(file, 0x20, kFirstTable);
    put32(file, 0x48, static_cast<std::uint32_t>(m_folders.size()));
    for (std::size_t i = 0; i < m_folders.size(); ++i)
        putText(file, 0x50 + 12 * i, m_folders[i]);
    return file;
}

std::size_t IndexDat::append(const std::string &record) {
    const std::size_t at = m_bytes.size();
    m_bytes.append(record);
    return at;
}

void IndexDat::openTable() {
    const std::size_t at = m_bytes.size();
    if (!m_tables.empty())
        put32(m_bytes, m_tables.back() + 8, static_cast<std::uint32_t>(at));
    m_bytes.resize(at + m_blocks * kBlock);
    putText(m_bytes, at, "HASH");
    put32(m_bytes, at + 4, m_blocks);
    put32(m_bytes, at + 0xC, static_cast<std::uint32_t>(m_tables.size()));
    m_tables.push_back(at);
    m_used = 0;
    for (std::size_t i = 0; i < capacity() + m_filler; ++i) {
        const std::uint32_t word = i < capacity() ? kFreeSlot : kFiller;
        put32(m_bytes, at + kTableHeader + 8 * i, word);
        put32(m_bytes, at + kTableHeader + 8 * i + 4, word);
    }
}

std::size_t IndexDat::capacity() const {
    return (m_blocks * kBlock - kTableHeader) / 8 - m_filler;
}

} // namespace nv::test
