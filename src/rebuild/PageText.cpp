#include "rebuild/PageText.h"

#include "base/Files.h"
#include "base/Text.h"

namespace nv {

namespace {

constexpr std::string_view kBreaks = "\r\n";

/// The length of the line break at `at`: CR LF, or either alone.
std::size_t breakAt(std::string_view text, std::size_t at) {
    return text.substr(at).starts_with(kBreaks) ? kBreaks.size() : 1;
}

} // namespace

std::string readTextFile(const std::filesystem::path &path, LineBreaks lineBreaks) {
    if (path.empty() || !std::filesystem::exists(path))
        return {};
    const Bytes bytes = readWhole(path);
    const std::string_view text = ByteView(bytes).raw();
    std::string joined;
    joined.reserve(text.size() + kBreaks.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(kBreaks, at), text.size());
        joined.append(text, at, end - at);
        if (lineBreaks == LineBreaks::keep)
            joined.append(kBreaks);
        at = end < text.size() ? end + breakAt(text, end) : end;
    }
    return joined;
}

std::size_t findTextFrom(std::size_t start, std::string_view text, std::string_view pattern) {
    const std::size_t found = findNoCase(text, pattern, start > 0 ? start - 1 : 0);
    return found == std::string_view::npos ? 0 : found + 1;
}

std::string replaceAllText(std::string_view text, std::string_view find,
                           std::string_view replacement) {
    std::string replaced;
    if (find.empty())
        return std::string(text);
    replaced.reserve(text.size());
    std::size_t at = 0;
    for (std::size_t found = findNoCase(text, find); found != std::string_view::npos;
         found = findNoCase(text, find, at)) {
        replaced.append(text, at, found - at).append(replacement);
        at = found + find.size();
    }
    return replaced.append(text, at);
}

} // namespace nv
