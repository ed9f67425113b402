#include "rebuild/exact/OpenedXml.h"

#include "base/Text.h"
#include "markup/HtmlTags.h"
#include "readers/HttpHeaders.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace nv {

namespace {

/// They have no end tag in HTML.
bool isVoid(std::string_view name) {
    constexpr std::array<std::string_view, 17> kVoid = {
        "area", "base",  "basefont", "bgsound", "br",    "col",    "embed", "frame", "hr",
        "img",  "input", "link",     "meta",    "param", "source", "track", "wbr"};
    return std::ranges::find(kVoid, toLower(name)) != kVoid.end();
}

/// "<" stays a reference: it would end the style.
void readStyle(std::string_view style, std::size_t at, std::vector<TextEdit> &edits) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kMarks = {{
        {"<![CDATA[", ""},
        {"]]>", ""},
        {"&gt;", ">"},
        {"&quot;", "\""},
        {"&amp;", "&"},
    }};
    for (std::size_t i = 0; (i = style.find_first_of("<]&", i)) != std::string_view::npos; ++i)
        for (const auto &[mark, meant] : kMarks)
            if (style.substr(i).starts_with(mark))
                edits.push_back({{at + i, at + i + mark.size()}, std::string(meant)});
}

} // namespace

bool isSentAsXml(std::string_view headers) {
    const std::string type = mimeTypeOf(headers);
    return type.ends_with("+xml") || type == "text/xml" || type == "application/xml";
}

std::vector<TextEdit> openedXml(std::string_view xhtml) {
    std::vector<TextEdit> edits;
    HtmlTags tags(xhtml);
    HtmlTag tag;
    bool isFirst = true;
    while (tags.next(tag)) {
        const auto begin = static_cast<std::size_t>(tag.name.data() - xhtml.data()) - 1;
        const std::size_t end = begin + tag.size;
        if (std::exchange(isFirst, false) && !containsNoCase(xhtml.substr(0, begin), "<!doctype"))
            edits.push_back({{begin, begin}, "<!DOCTYPE html>"});
        if (tag.isEnd)
            continue;
        if (xhtml.substr(begin, tag.size).ends_with("/>")) {
            if (!isVoid(tag.name))
                edits.push_back({{end - 2, end}, fmt::format("></{}>", tag.name)});
            continue;
        }
        const bool isStyle = equalsNoCase(tag.name, "style");
        if (isStyle || equalsNoCase(tag.name, "script"))
            tags.skipText(tag.name);
        if (isStyle)
            readStyle(xhtml.substr(end, xhtml.size() - tags.rest().size() - end), end, edits);
    }
    return edits;
}

} // namespace nv
