#include "readers/HttpHeaders.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

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

std::string mimeTypeOf(std::string_view headers) {
    constexpr std::string_view kName = "content-type:";
    while (!headers.empty()) {
        const std::size_t end = std::min(headers.find('\n'), headers.size());
        const std::string_view line = headers.substr(0, end);
        if (startsWithNoCase(line, kName))
            return toLower(trim(line.substr(kName.size(), line.find(';') - kName.size())));
        headers.remove_prefix(std::min(end + 1, headers.size()));
    }
    return {};
}

} // namespace nv
