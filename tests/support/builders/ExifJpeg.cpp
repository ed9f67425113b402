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

std::string ExifJpeg::tiff() const {
    const std::size_t valuesAt = 8 + 2 + 12 * m_entries.size() + 4;
    std::string directory = le(static_cast<std::uint32_t>(m_entries.size()), 2);
    std::string values;
    for (const Entry &entry : m_entries) {
        directory += le(entry.tag, 2) + le(entry.type, 2) + le(entry.count, 4);
        if (entry.value.size() <= 4) {
            directory += entry.value + std::string(4 - entry.value.size(), '\0');
            continue;
        }
        directory += le(static_cast<std::uint32_t>(valuesAt + values.size()), 4);
        values += entry.value;
    }
    return std::string("II*\0", 4) + le(8, 4) + directory + le(0, 4) + values;
}

std::string ExifJpeg::bytes(int before) const {
    std::string file = "\xFF\xD8";
    for (int at = 0; at < before; ++at)
        file += segment('\xE2', "profile of colours");
    file += segment('\xE1', std::string("Exif\0\0", 6) + tiff());
    return file + "\xFF\xD9";
}

} // namespace nv::test
