#include "rebuild/exact/OwnParts.h"

#include "base/Text.h"
#include "markup/PageText.h"
#include "rebuild/exact/Spelling.h"

#include <fmt/format.h>

#include <iterator>

namespace nv {

namespace {

/// Of an address that is shown, in bytes.
constexpr std::size_t kLongestShown = 2000;

constexpr std::string_view kPolicy =
    "default-src 'none'; img-src 'self' data:; style-src 'self' 'unsafe-inline' data:; "
    "font-src 'self' data:; media-src 'self' data:; frame-src 'self' data:; "
    "object-src 'self' data:; base-uri 'none'; form-action 'none'";

std::string cutShort(std::string_view address) {
    if (address.size() <= kLongestShown)
        return std::string(address);
    std::size_t end = kLongestShown;
    while (end > 0 && (static_cast<unsigned char>(address[end]) & 0xC0) == 0x80)
        --end;
    return std::string(address.substr(0, end)) + "...";
}

/// Text for HTML and XML alike, in ASCII.
std::string shown(std::string_view text) {
    std::string plain(text);
    std::erase_if(plain, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; });
    if (!isUtf8(plain))
        plain = fromAnsi(plain);
    // XML has no reference for these.
    for (const std::string_view noCharacter : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})
        plain = replaceAll(plain, noCharacter, {});
    return attributeValue(plain);
}

/// All but letters and digits in their percent form: no comma, blank or quotation mark stays.
std::string percentEncoded(std::string_view text) {
    std::string encoded;
    encoded.reserve(text.size() * 2);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                             (byte >= 'a' && byte <= 'z') || c == '-' || c == '.' || c == '_';
        if (isPlain)
            encoded += c;
        else
            fmt::format_to(std::back_inserter(encoded), "%{:02X}", byte);
    }
    return encoded;
}

std::string missingPage(std::string_view address) {
    return "data:text/html;charset=utf-8," +
           percentEncoded(fmt::format(
               "<!DOCTYPE html><html><head><title>Not cached</title></head>"
               "<body style=\"margin:0;font:12px sans-serif;color:#555;background:#f4f4f4\">"
               "<div style=\"border:1px dashed #999;padding:4px;overflow-wrap:anywhere\">"
               "Not cached: {}</div></body></html>",
               shown(cutShort(address))));
}

std::string pictureWith(std::string_view size, std::string_view ground, std::string_view address) {
    return "data:image/svg+xml," +
           percentEncoded(
               fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" {}>{}"
                           "<rect width=\"100%\" height=\"100%\" fill=\"#f4f4f4\" stroke=\"#999\" "
                           "stroke-width=\"2\" stroke-dasharray=\"6 4\"></rect>"
                           "<text x=\"6\" y=\"20\" font-family=\"sans-serif\" font-size=\"11\" "
                           "fill=\"#555\">Not cached: {}</text></svg>",
                           size, ground, shown(cutShort(address))));
}

// What a page says of all its elements would hold for the banner too. How it is displayed is left
// to what puts it away.
constexpr std::string_view kAround = "all:initial;display:contents";
constexpr std::string_view kBox =
    "all:initial;display:block;position:fixed!important;right:8px!important;"
    "bottom:8px!important;z-index:2147483647!important;max-width:26em!important;"
    "padding:6px 10px!important;border:1px solid #8a6d00!important;"
    "background:#fff8dc!important;color:#222!important;font:12px/1.4 sans-serif!important;"
    "overflow-wrap:anywhere!important";
constexpr std::string_view kLine =
    "all:initial;display:block;color:#222!important;"
    "font:12px/1.4 sans-serif!important;overflow-wrap:anywhere!important";
constexpr std::string_view kTitle =
    "all:initial;display:block;cursor:pointer!important;color:#222!important;"
    "font:bold 12px/1.4 sans-serif!important";
constexpr std::string_view kHide =
    "all:initial;float:right!important;margin-left:12px!important;"
    "cursor:pointer!important;color:#06c!important;font:12px/1.4 sans-serif!important";

std::string line(std::string_view text) {
    return fmt::format("<span style=\"{}\">{}</span>", kLine, shown(text));
}

std::string partsLine(const BannerFacts &facts) {
    std::string text = fmt::format("{} of {} found", facts.found, counted(facts.parts, "part"));
    if (!facts.oldestPart.empty())
        text += facts.oldestPart == facts.newestPart
                    ? fmt::format(", of {}", facts.oldestPart)
                    : fmt::format(", of {} to {}", facts.oldestPart, facts.newestPart);
    return text;
}

} // namespace

std::string_view contentPolicy() {
    return kPolicy;
}

std::string ownHead(std::string_view charset) {
    const std::string encoding =
        charset.empty() ? std::string() : fmt::format("<meta charset=\"{}\"/>", shown(charset));
    return fmt::format("{}<meta http-equiv=\"Content-Security-Policy\" content=\"{}\"/>"
                       "<meta http-equiv=\"x-dns-prefetch-control\" content=\"off\"/>"
                       "<meta name=\"referrer\" content=\"no-referrer\"/>",
                       encoding, kPolicy);
}

std::string ownSheetStart(std::string_view charset, std::string_view foundIn) {
    const bool isSaid = foundIn == "byte-order mark" || foundIn == "@charset";
    return isSaid || charset.empty() ? std::string()
                                     : fmt::format("@charset \"{}\";", shown(charset));
}

std::string missingPicture(std::string_view address) {
    // What is drawn is made as large as the place, and the ground goes beyond it where its shape is
    // another one.
    return pictureWith(
        "width=\"240\" height=\"32\" viewBox=\"0 0 240 32\" "
        "preserveAspectRatio=\"xMinYMin\"",
        "<rect x=\"-10000\" y=\"-10000\" width=\"20000\" height=\"20000\" fill=\"#eee\"></rect>",
        address);
}

std::string missingBackground(std::string_view address) {
    return pictureWith("width=\"100%\" height=\"100%\"", {}, address);
}

std::string missingPart(RefUse use, std::string_view address, RefForm form) {
    const bool isInStyle = form == RefForm::styleUrl || form == RefForm::styleString;
    switch (use) {
    case RefUse::image:
        return isInStyle ? missingBackground(address) : missingPicture(address);
    case RefUse::style:
    case RefUse::quirkyStyle:
        return "data:text/css,";
    case RefUse::font:
        return "data:font/woff2,";
    case RefUse::media:
        return "data:video/mp4,";
    case RefUse::track:
        return "data:text/vtt,WEBVTT";
    case RefUse::frame:
    case RefUse::object:
        return missingPage(address);
    case RefUse::icon:
        return "data:,";
    case RefUse::svg:
        return missingPicture(address);
    case RefUse::link:
        break;
    }
    return std::string(address);
}

std::string bannerFor(const BannerFacts &facts) {
    const std::string_view id = kBannerOff.substr(1);
    std::string text;
    for (const std::string &cache : facts.caches)
        text += line("From " + cache);
    if (!facts.address.empty())
        text += line(cutShort(facts.address));
    if (!facts.pageDate.empty())
        text += line("Page of " + facts.pageDate);
    text += line(partsLine(facts));
    return fmt::format(
        "<div id=\"{0}\" style=\"{1}\"><style>#{0}:target{{display:none!important}}"
        "#{0}-off:checked~*{{display:none!important}}"
        "@media print{{#{0}{{display:none!important}}}}</style>"
        "<input type=\"checkbox\" id=\"{0}-off\" style=\"display:none!important\"/>"
        "<div style=\"{2}\"><label for=\"{0}-off\" style=\"{3}\">Hide</label>"
        "<details open=\"\" style=\"{4}\"><summary style=\"{5}\">Rebuilt from caches</summary>{6}"
        "</details></div></div>",
        id, kAround, kBox, kHide, kLine, kTitle, text);
}

} // namespace nv
