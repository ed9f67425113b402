#include "views/record/HttpHeaders.h"

#include "base/Text.h"

namespace nv {

namespace {

// Firefox joins its own names and values with zero bytes, which the record has as blanks. The
// response stands after this name.
constexpr std::string_view kResponse = "response-head ";

void addLines(std::vector<std::string> &lines, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.emplace_back(text.substr(0, end));
        const std::size_t feed = text.substr(end).starts_with("\r\n") ? 2 : 1;
        text.remove_prefix(std::min(end + feed, text.size()));
    }
}

} // namespace

std::vector<std::string> httpHeaderLines(std::string_view metaData) {
    std::vector<std::string> lines;
    const std::size_t response = metaData.find(kResponse);
    if (response != std::string_view::npos) {
        const std::size_t headers = response + kResponse.size();
        addLines(lines, trim(metaData.substr(0, headers)));
        metaData.remove_prefix(headers);
    }
    addLines(lines, metaData);
    while (!lines.empty() && trim(lines.back()).empty())
        lines.pop_back();
    return lines;
}

} // namespace nv
