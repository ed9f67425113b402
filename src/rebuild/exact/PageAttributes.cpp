#include "rebuild/exact/PageAttributes.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace nv {

namespace {

struct UseRow {
    std::string_view attribute;
    std::string_view elements; ///< separated by blanks
    RefUse use;
};
constexpr std::array<UseRow, 9> kUses = {{
    {"src", "img input", RefUse::image},
    {"srcset", "img source", RefUse::image},
    {"poster", "video", RefUse::image},
    {"background", "body table thead tbody tfoot tr td th", RefUse::image},
    {"src", "video audio source", RefUse::media},
    {"src", "track", RefUse::track},
    {"src", "iframe frame embed", RefUse::frame},
    {"data", "object", RefUse::object},
    {"href", "a area", RefUse::link},
}};

constexpr std::string_view kDrawings = "image feImage use";
constexpr std::string_view kPaints =
    "fill stroke filter mask clip-path marker marker-start marker-mid marker-end cursor";
constexpr std::string_view kUnseen =
    "ping attributionsrc manifest integrity imagesrcset archive classid codebase";
constexpr std::string_view kMetas =
    "refresh content-security-policy content-security-policy-report-only "
    "x-content-security-policy x-webkit-csp x-dns-prefetch-control set-cookie origin-trial "
    "accept-ch delegate-ch";
constexpr std::string_view kIcons =
    "icon apple-touch-icon apple-touch-icon-precomposed mask-icon fluid-icon";
constexpr std::string_view kFetched =
    "preload prefetch dns-prefetch preconnect modulepreload prerender subresource import manifest "
    "serviceworker compression-dictionary expect";

bool isAmong(std::string_view list, std::string_view wanted) {
    const auto words = split(list, ' ');
    return std::ranges::find(words, wanted) != words.end();
}

bool sharesWord(std::string_view list, std::string_view words) {
    std::string plain = toLower(words);
    std::ranges::replace_if(
        plain, [](char c) { return c == '\t' || c == '\n' || c == '\r' || c == '\f'; }, ' ');
    const auto each = split(plain, ' ');
    return std::ranges::any_of(
        each, [list](std::string_view word) { return !word.empty() && isAmong(list, word); });
}

} // namespace

std::optional<RefUse> useOfAttribute(std::string_view element, std::string_view attribute) {
    for (const UseRow &row : kUses)
        if (row.attribute == attribute && isAmong(row.elements, element))
            return row.use;
    return std::nullopt;
}

bool isSvgDrawing(std::string_view element) {
    return isAmong(kDrawings, element);
}

bool isSvgPaint(std::string_view attribute) {
    return isAmong(kPaints, attribute);
}

bool isHandler(std::string_view attribute) {
    return attribute.size() > 2 && startsWithNoCase(attribute, "on");
}

bool isFetchedUnseen(std::string_view attribute) {
    return isAmong(kUnseen, attribute);
}

bool isDisarmedMeta(std::string_view act) {
    return isAmong(kMetas, act);
}

LinkKind linkKind(const HtmlAttributes &link) {
    const std::string_view relation = valueOf(link, "rel");
    const std::string_view type = valueOf(link, "type");
    if (sharesWord("stylesheet", relation) && (type.empty() || startsWithNoCase(type, "text/css")))
        return LinkKind::style;
    if (sharesWord(kIcons, relation))
        return LinkKind::icon;
    if (!sharesWord(kFetched, relation))
        return LinkKind::other;
    const bool isLate = sharesWord("preload prefetch", relation) &&
                        containsNoCase(valueOf(link, "onload"), "stylesheet");
    return isLate ? LinkKind::lateStyle : LinkKind::fetched;
}

const HtmlAttribute *lateMedia(const HtmlAttributes &link) {
    const HtmlAttribute *media = attributeOf(link, "media");
    return media && containsNoCase(valueOf(link, "onload"), "media") ? media : nullptr;
}

} // namespace nv
