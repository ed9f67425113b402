#include "readers/HttpHeaders.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace nv {

namespace {

constexpr std::string_view kContentType = "content-type";

} // namespace

std::string headersInLines(std::string_view partedByZeros) {
    std::string lines;
    while (!partedByZeros.empty()) {
        const std::size_t end = std::min(partedByZeros.find('\0'), partedByZeros.size());
        if (end > 0)
            lines.append(partedByZeros.substr(0, end)).append("\r\n");
        partedByZeros.remove_prefix(std::min(end + 1, partedByZeros.size()));
    }
    return lines;
}

std::vector<std::string_view> headerValues(std::string_view headers, std::string_view name) {
    std::vector<std::string_view> values;
    while (!headers.empty()) {
        const std::size_t end = std::min(headers.find('\n'), headers.size());
        const std::string_view line = headers.substr(0, end);
        if (startsWithNoCase(line, name) && line.substr(name.size()).starts_with(':'))
            values.push_back(trim(line.substr(name.size() + 1)));
        headers.remove_prefix(std::min(end + 1, headers.size()));
    }
    return values;
}

std::string mimeTypeOf(std::string_view headers) {
    const auto values = headerValues(headers, kContentType);
    return values.empty() ? std::string()
                          : toLower(trim(values.front().substr(0, values.front().find(';'))));
}

std::string charsetOf(std::string_view headers) {
    constexpr std::string_view kName = "charset=";
    const auto values = headerValues(headers, kContentType);
    if (values.empty())
        return {};
    for (const std::string_view parameter : split(values.front(), ';'))
        if (startsWithNoCase(trim(parameter), kName))
            return replaceAll(trim(parameter).substr(kName.size()), "\"", "");
    return {};
}

int statusOf(std::string_view headers) {
    constexpr std::ptrdiff_t kDigits = 3;
    const std::string_view line = headers.substr(0, headers.find('\n'));
    const std::size_t blank = line.find(' ');
    if (!startsWithNoCase(line, "HTTP") || blank == std::string_view::npos)
        return 0;
    int status = 0;
    const std::string_view digits = line.substr(blank + 1, kDigits);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), status);
    return error == std::errc() && end - digits.data() == kDigits ? status : 0;
}

std::string_view answerHeadIn(std::string_view stored) {
    constexpr std::string_view kBefore = "response-head ";
    if (statusOf(stored) != 0)
        return stored;
    const std::size_t at = stored.find(kBefore);
    const std::string_view head =
        at == std::string_view::npos ? std::string_view() : stored.substr(at + kBefore.size());
    return statusOf(head) != 0 ? head : std::string_view();
}

} // namespace nv
