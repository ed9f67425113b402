#include "support/builders/MacCache.h"

#include <chrono>

namespace nv::test {

std::uint32_t macTime(int year, int month, int day, int hour, int minute, int second) {
    using namespace std::chrono;
    const sys_days date = std::chrono::year(year) / month / day;
    const sys_days begin = std::chrono::year(1904) / 1 / 1;
    const auto since = date - begin + hours(hour + 5) + minutes(minute) + seconds(second);
    return static_cast<std::uint32_t>(duration_cast<seconds>(since).count());
}

std::string big32(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift & 0xFF));
    return bytes;
}

std::string cateValue(std::uint32_t entry, std::uint32_t firstVisit, std::uint32_t lastVisit,
                      std::uint32_t dataSize) {
    return std::string(8, '\0') + big32(entry) + big32(firstVisit) + big32(lastVisit) +
           std::string(4, '\0') + big32(dataSize);
}

MacCache::MacCache() : m_bytes(kFirstBlock, '\0') {
    m_bytes.replace(0, 4, "FAKE");
}

std::size_t MacCache::block(std::string_view tag, std::string_view value, std::uint32_t length) {
    const std::size_t at = m_bytes.size();
    m_bytes.append(tag).append(big32(length)).append(value);
    return at;
}

std::size_t MacCache::block(std::string_view tag, std::string_view value) {
    return block(tag, value, static_cast<std::uint32_t>(value.size()));
}

std::size_t MacCache::add(const MacEntry &entry) {
    const std::size_t at = block("NTRY", "");
    const std::pair<std::string_view, const std::string &> texts[] = {{"URL ", entry.url},
                                                                      {"BSRL", entry.bsrl},
                                                                      {"MIME", entry.mime},
                                                                      {"HNTT", entry.hntt},
                                                                      {"POST", entry.post}};
    for (const auto &[tag, text] : texts)
        if (!text.empty())
            block(tag, text);
    if (entry.version)
        block("HVRS", big32(*entry.version));
    const std::string body = entry.body.value_or("");
    if (entry.body) {
        block("DATA", body);
        if (entry.marker) {
            raw("XXXX");
            block("cate", "    ");
        }
    }
    block("CATE", cateValue(static_cast<std::uint32_t>(at), entry.firstVisit, entry.lastVisit,
                            entry.dataSize.value_or(static_cast<std::uint32_t>(body.size()))));
    return at;
}

MacCache &MacCache::raw(std::string_view bytes) {
    m_bytes.append(bytes);
    return *this;
}

MacCache &MacCache::sizeField(std::uint32_t size) {
    m_sizeField = size;
    return *this;
}

MacCache &MacCache::firstBlock(std::uint32_t offset) {
    m_firstBlock = offset;
    return *this;
}

std::string MacCache::bytes() const {
    std::string bytes = m_bytes;
    bytes.replace(4, 4, big32(m_firstBlock));
    bytes.replace(0x2C, 4, big32(m_sizeField.value_or(static_cast<std::uint32_t>(bytes.size()))));
    return bytes;
}

} // namespace nv::test
