#include "support/builders/Opera.h"

#include <fmt/format.h>

namespace nv::test {

std::string bigEndian(std::uint64_t number, std::size_t width) {
    std::string bytes(width, '\0');
    for (std::size_t at = width; at > 0; --at, number >>= 8)
        bytes[at - 1] = static_cast<char>(number & 0xFF);
    return bytes;
}

std::string operaField(std::uint8_t tag, std::string_view value) {
    return bigEndian(tag, 1) + bigEndian(value.size(), 2) + std::string(value);
}

// The header: versions of the file and of the browser, and the widths of tags and lengths.
OperaCache::OperaCache()
    : m_bytes(bigEndian(0x00020000, 4) + bigEndian(0x0A000000, 4) + bigEndian(1, 2) +
              bigEndian(2, 2)) {}

OperaCache &OperaCache::field(std::uint8_t tag, std::string_view value) {
    return raw(operaField(tag, value));
}

OperaCache &OperaCache::raw(std::string_view bytes) {
    m_bytes += bytes;
    return *this;
}

OperaCache &OperaCache::add(const OperaCached &record) {
    std::string fields = operaField(3, record.url);
    if (record.visited != 0)
        fields += operaField(5, bigEndian(record.visited, 8));
    if (record.status != 0)
        fields += operaField(7, bigEndian(record.status, 4));
    if (record.size != 0)
        fields += operaField(8, bigEndian(record.size, 4));
    if (!record.mimeType.empty())
        fields += operaField(9, record.mimeType);
    if (!record.fileName.empty())
        fields += operaField(13, record.fileName);
    return field(1, fields);
}

OperaHistory &OperaHistory::line(std::string_view text) {
    m_bytes += std::string(text) + m_lineEnd;
    return *this;
}

OperaHistory &OperaHistory::add(std::string_view title, std::string_view url,
                                std::string_view visited, std::string_view popularity) {
    return line(title).line(url).line(visited).line(popularity);
}

OperaTyped &OperaTyped::add(std::string_view content, std::string_view lastTyped,
                            std::string_view type) {
    return raw(fmt::format("  <typed_history_item content=\"{}\" type=\"{}\"\n"
                           "                      last_typed=\"{}\"/>\n",
                           content, type, lastTyped));
}

OperaTyped &OperaTyped::raw(std::string_view text) {
    m_items += text;
    return *this;
}

std::string OperaTyped::bytes() const {
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<typed_history>\n" + m_items +
           "</typed_history>\n";
}

void addExampleFiles(OperaCache &cache) {
    cache.add({.url = "http://www.example.com/",
               .visited = 1300000000,
               .status = 2,
               .size = 700,
               .mimeType = "text/html",
               .fileName = "opr00021.htm"});
    cache.add({.url = "http://www.example.com/logo.gif?v=2",
               .visited = 1300000001,
               .status = 4,
               .mimeType = "image/gif",
               .fileName = "opr00022.gif"});
    cache.add({.url = "http://www.example.com/gone", .visited = 1300000002, .status = 5});
}

void addExampleVisits(OperaHistory &history) {
    history.add("Example", "http://www.example.com/", "1300000000");
    history.add("http://www.example.com/a?b=c", "http://www.example.com/a?b=c", "1300000060");
    history.add("Caf\xC3\xA9", "http://www.example.org/", "1300000120", "2419966");
}

} // namespace nv::test
