#include "markup/PlainSelects.h"

#include "base/Text.h"

namespace nv {

namespace {

constexpr std::string_view kSelect = "select";
static_assert(kSelect.size() == kPlainSelect.size());

bool endsName(std::string_view html, std::size_t at) {
    return at < html.size() &&
           std::string_view(" \t\n\f\r/>").find(html[at]) != std::string_view::npos;
}

} // namespace

/// Also where it is no tag: what is one depends on what stands in front of it.
std::string withPlainSelects(std::string_view html) {
    std::string made;
    for (std::size_t at = 0; (at = html.find('<', at)) != std::string_view::npos;) {
        at += at + 1 < html.size() && html[at + 1] == '/' ? 2 : 1;
        if (!startsWithNoCase(html.substr(at), kSelect) || !endsName(html, at + kSelect.size()))
            continue;
        if (made.empty())
            made = html;
        made.replace(at, kSelect.size(), kPlainSelect);
    }
    return made;
}

} // namespace nv
