#include "support/builders/ExifJpeg.h"

namespace nv::test {

namespace {

std::string le(std::uint32_t value, int bytes) {
    std::string text;
    for (int at = 0; at < bytes; ++at)
        text += static_cast<char>((value >> (8 * at)) & 0xFF);
    return text;
}

std::string segment(char kind, const std::string &content) {
    const std::size_t length = content.size() + 2;
    return std::string("\xFF") + kind + static_cast<char>(length >> 8) +
           static_cast<char>(length & 0xFF) + content;
}

} // namespace

ExifJpeg &ExifJpeg::ascii(std::uint16_t tag, std::string_view text) {
    const std::string value = std::string(text) + '\0';
    m_entries.push_back({tag, 2, static_cast<std::uint32_t>(value.size()), value});
    return *this;
}

ExifJpeg &ExifJpeg::number(std::uint16_t tag, std::uint16_t value) {
    m_entries.push_back({tag, 3, 1, le(value, 2)});
    return *this;
}

ExifJpeg &ExifJpeg::rational(std::uint16_t tag, std::uint32_t numerator,
                             std::uint32_t denominator) {
    m_entries.push_back({tag, 5, 1, le(numerator, 4) + le(denominator, 4)});
    return *this;
}

ExifJpeg &ExifJpeg::undefined(std::uint16_t tag, std::string_view bytes) {
    m_entries.push_back({tag, 7, static_cast<std::uint32_t>(bytes.size()), std::string(bytes)});
    return *this;
}

ExifJpeg &ExifJpeg::position(std::vector<std::uint32_t> latitude, char northSouth,
                             std::vector<std::uint32_t> longitude, char eastWest) {
    const auto value = [](const std::vector<std::uint32_t> &parts) {
        return le(parts.at(0), 4) + le(1, 4) + le(parts.at(1), 4) + le(1, 4) + le(parts.at(2), 4) +
               le(100, 4);
    };
    m_position = {{1, 2, 2, std::string(1, northSouth) + '\0'},
                  {2, 5, 3, value(latitude)},
                  {3, 2, 2, std::string(1, eastWest) + '\0'},
                  {4, 5, 3, value(longitude)}};
    return *this;
}

std::string ExifJpeg::directoryOf(const std::vector<Entry> &entries, std::size_t at) {
    const std::size_t valuesAt = at + 2 + 12 * entries.size() + 4;
    std::string directory = le(static_cast<std::uint32_t>(entries.size()), 2);
    std::string values;
    for (const Entry &entry : entries) {
        directory += le(entry.tag, 2) + le(entry.type, 2) + le(entry.count, 4);
        if (entry.value.size() <= 4) {
            directory += entry.value + std::string(4 - entry.value.size(), '\0');
            continue;
        }
        directory += le(static_cast<std::uint32_t>(valuesAt + values.size()), 4);
        values += entry.value;
    }
    return directory + le(0, 4) + values;
}

std::string ExifJpeg::tiff() const {
    constexpr std::size_t kFirst = 8;
    const std::string head = std::string("II*\0", 4) + le(kFirst, 4);
    if (m_position.empty())
        return head + directoryOf(m_entries, kFirst);
    std::vector<Entry> entries = m_entries;
    entries.push_back({0x8825, 4, 1, le(0, 4)});
    const std::size_t behind = kFirst + directoryOf(entries, kFirst).size();
    entries.back().value = le(static_cast<std::uint32_t>(behind), 4);
    return head + directoryOf(entries, kFirst) + directoryOf(m_position, behind);
}

std::string ExifJpeg::bytes(int before) const {
    std::string file = "\xFF\xD8";
    for (int at = 0; at < before; ++at)
        file += segment('\xE2', "profile of colours");
    file += segment('\xE1', std::string("Exif\0\0", 6) + tiff());
    return file + "\xFF\xD9";
}

} // namespace nv::test
