#include "reports/case/CaseText.h"

#include "base/Text.h"
#include "reports/report/Html.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

std::string cutNote(std::size_t chars) {
    return fmt::format("<span class=\"dim\"> … ({} letters in all)</span>", grouped(chars));
}

} // namespace

std::string caseText(std::string_view value, std::size_t mostChars) {
    if (value.size() <= mostChars)
        return htmlText(value);
    const std::string text = decodeText(value);
    const std::size_t chars = charCount(text);
    return chars <= mostChars ? htmlText(text)
                              : htmlText(charSub(text, 0, mostChars)) + cutNote(chars);
}

std::string caseAddress(std::string_view address) {
    if (address.empty())
        return {};
    const bool isCut = address.size() > kShownValue && charCount(address) > kShownValue;
    return fmt::format("<bdi class=\"{}\">{}</bdi>", isCut ? "hash" : "u", caseText(address));
}

std::string caseSize(std::int64_t bytes) {
    constexpr std::array<std::string_view, 4> kUnits = {"KB", "MB", "GB", "TB"};
    if (bytes < 1000)
        return fmt::format("{} bytes", bytes);
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (size /= 1000; size >= 1000 && unit + 1 < kUnits.size(); size /= 1000)
        ++unit;
    return fmt::format("{:.1f} {}", size, kUnits.at(unit));
}

std::string caseSwatch(std::string_view color) {
    return color.empty() ? std::string()
                         : fmt::format("<svg class=\"dot\" viewBox=\"0 0 10 10\" "
                                       "aria-hidden=\"true\"><circle cx=\"5\" cy=\"5\" r=\"4.5\" "
                                       "fill=\"{}\"/></svg>",
                                       htmlText(color));
}

std::string caseField(std::string_view name, std::string_view value) {
    return value.empty() ? std::string()
                         : fmt::format("<dt>{}</dt><dd>{}</dd>\n", htmlText(name), value);
}

std::string caseCell(std::string_view heading, std::string_view value, std::string_view kind) {
    std::string cell = "<td";
    if (!heading.empty())
        cell += fmt::format(" data-h=\"{}\"", htmlText(heading));
    if (!kind.empty())
        cell += fmt::format(" class=\"{}\"", kind);
    return (cell += '>').append(value).append("</td>");
}

} // namespace nv
