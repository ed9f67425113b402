#include "reports/report/Html.h"

#include "base/Text.h"
#include "views/rows/CellText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array<std::string_view, 4> kSchemes = {"http://", "https://", "ftp://", "file://"};

std::string inQuotes(std::string_view text) {
    std::string html;
    html.reserve(text.size());
    for (const char c : text)
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += c;
        }
    return html;
}

/// Marks that turn around what is read: U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069. `text`
/// begins with 0xE2.
bool turnsAround(std::string_view text) {
    if (text.size() < 3)
        return false;
    const auto second = static_cast<unsigned char>(text[1]);
    const auto third = static_cast<unsigned char>(text[2]);
    return (second == 0x80 &&
            (third == 0x8E || third == 0x8F || (third >= 0xAA && third <= 0xAE))) ||
           (second == 0x81 && third >= 0xA6 && third <= 0xA9);
}

/// As browsers would ask for it, without characters that act on whoever reads the page's source.
std::string percentCoded(std::string_view address) {
    constexpr std::size_t kMark = 3; // bytes
    std::string coded;
    coded.reserve(address.size());
    std::size_t markEnd = 0;
    for (std::size_t at = 0; at < address.size(); ++at) {
        const auto byte = static_cast<unsigned char>(address[at]);
        if (byte == 0xE2 && turnsAround(address.substr(at, kMark)))
            markEnd = at + kMark;
        if (byte < 0x20 || byte == 0x7F || at < markEnd)
            coded += fmt::format("%{:02X}", byte);
        else
            coded += address[at];
    }
    return coded;
}

} // namespace

std::string htmlText(std::string_view value) {
    return inQuotes(displayText(value, value.size()));
}

std::string htmlLines(std::string_view value) {
    std::string html;
    for (const std::string_view line : split(value, '\n'))
        html += htmlText(trim(line)) + "<br>";
    return html.substr(0, html.size() - std::string_view("<br>").size());
}

std::string htmlAddress(std::string_view value) {
    return inQuotes(percentCoded(decodeText(value)));
}

bool isLink(std::string_view url) {
    return std::ranges::any_of(
        kSchemes, [url](std::string_view scheme) { return startsWithNoCase(url, scheme); });
}

std::string htmlTable(std::string_view name, std::initializer_list<std::string_view> columns) {
    std::string text = fmt::format("<table name='{}' width='100%' border='1' cellspacing='0' "
                                   "cellpadding='2' style='border-collapse:collapse;'>\r\n<tr>",
                                   name);
    for (const std::string_view column : columns)
        text += fmt::format(
            "<td bgcolor='#E0E0E0' style='font-size:10px;'><strong>{}</strong></td>", column);
    return text + "</tr>\r\n";
}

std::string htmlRow(std::initializer_list<std::string> cells) {
    std::string text = "<tr>";
    for (const std::string &cell : cells)
        text += fmt::format("<td valign='top' style='font-size:10px;overflow-wrap:anywhere;'>{}"
                            "</td>",
                            cell.empty() ? "&nbsp;" : cell);
    return text + "</tr>\r\n";
}

} // namespace nv
