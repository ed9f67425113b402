#include "rebuild/exact/PartForm.h"

#include "base/Text.h"
#include "markup/PageText.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

using namespace std::string_view_literals;

// Signs of a page, each ended by a blank or ">" in the text.
constexpr std::array<std::string_view, 18> kPageSigns = {
    "<!doctype html", "<html", "<head",  "<script", "<iframe", "<h1",   "<div", "<font",
    "<table",         "<a",    "<style", "<title",  "<b",      "<body", "<br",  "<p",
    "<frameset",      "<meta"};

struct Sign {
    std::size_t at; ///< bytes from the beginning
    std::string_view bytes;
    std::string_view extension;
};

// By which browsers know a file whatever it is called; longer ones before those they begin with.
// Extensions of parts have four letters at most, and browsers look into fonts.
constexpr std::array<Sign, 20> kSigns = {{
    {0, "GIF8"sv, "gif"},
    {0, "\xFF\xD8\xFF"sv, "jpg"},
    {0, "\x89PNG"sv, "png"},
    {8, "WEBP"sv, "webp"},
    {4, "ftypavif"sv, "avif"},
    {4, "ftypavis"sv, "avif"},
    {0, "\0\0\1\0"sv, "ico"},
    {0, "wOFF"sv, "woff"},
    {0, "wOF2"sv, "woff"},
    {0, "OTTO"sv, "otf"},
    {0, "\0\1\0\0\0"sv, "ttf"},
    {4, "ftyp"sv, "mp4"},
    {0, "\x1A\x45\xDF\xA3"sv, "webm"},
    {0, "OggS"sv, "ogg"},
    {0, "ID3"sv, "mp3"},
    {0, "\xFF\xFB"sv, "mp3"},
    {8, "WAVE"sv, "wav"},
    {8, "AVI "sv, "avi"},
    {0, "WEBVTT"sv, "vtt"},
    {0, "%PDF-"sv, "pdf"},
}};

constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kTypes = {{
    {"image/jpeg", "jpg"},
    {"image/png", "png"},
    {"image/gif", "gif"},
    {"image/webp", "webp"},
    {"image/avif", "avif"},
    {"image/x-icon", "ico"},
    {"image/vnd.microsoft.icon", "ico"},
    {"image/bmp", "bmp"},
    {"video/mp4", "mp4"},
    {"video/webm", "webm"},
    {"audio/mpeg", "mp3"},
    {"text/vtt", "vtt"},
}};

// What browsers would run or read as a document when it is opened by itself.
constexpr std::array<std::string_view, 20> kActive = {
    "htm", "html", "shtm", "xht", "xhtm", "svg",  "svgz", "xml", "xsl", "xslt",
    "css", "js",   "mjs",  "php", "asp",  "aspx", "jsp",  "mht", "hta", "htc"};

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

std::string_view withoutLead(std::string_view head) {
    if (head.starts_with(kUtf8Mark))
        head.remove_prefix(kUtf8Mark.size());
    while (!head.empty() && isBlank(head.front()))
        head.remove_prefix(1);
    return head;
}

bool beginsLikeSvg(std::string_view head) {
    head = withoutLead(head);
    const bool isXml = head.starts_with("<?xml") || head.starts_with("<!--") ||
                       startsWithNoCase(head, "<!doctype svg");
    return head.starts_with("<svg") || (isXml && head.find("<svg") != std::string_view::npos);
}

bool isPageType(std::string_view type) {
    return type == "text/html" || type == "application/xhtml+xml";
}

/// Types that servers give to what they don't know.
bool saysNothing(std::string_view type) {
    return type.empty() || type == "text/plain" || type == "application/octet-stream" ||
           type == "unknown/unknown" || type == "application/unknown" || type == "*/*" ||
           type == "text/xml" || type == "application/xml";
}

std::string plainExtension(const UrlRecord &record, std::string_view head) {
    for (const Sign &sign : kSigns)
        if (head.size() > sign.at && head.substr(sign.at).starts_with(sign.bytes))
            return std::string(sign.extension);
    const std::string type = toLower(trim(record.MIMEType));
    const auto known = std::ranges::find(kTypes, type, &decltype(kTypes)::value_type::first);
    if (known != kTypes.end())
        return std::string(known->second);
    const std::string own = toLower(trim(record.URLFileExt));
    if (own == "woff2")
        return "woff";
    return std::ranges::find(kActive, own) == kActive.end() ? own : std::string();
}

} // namespace

std::string_view insideTypeOf(std::string_view extension) {
    if (extension == "svg")
        return "image/svg+xml";
    const auto known = std::ranges::find(kTypes, extension, &decltype(kTypes)::value_type::second);
    const bool isKnown =
        known != kTypes.end() && (known->first.starts_with("image/") || known->first == "text/vtt");
    return isKnown ? known->first : std::string_view();
}

namespace {

bool textBeginsLikePage(std::string_view head) {
    const std::string_view text = withoutLead(head);
    // Comments may be long, and scripts begin with "<!--" too: browsers take it for a page.
    if (text.starts_with("<!--"))
        return true;
    if (text.starts_with("<?xml"))
        return text.find("<html") != std::string_view::npos;
    return std::ranges::any_of(kPageSigns, [text](std::string_view sign) {
        return startsWithNoCase(text, sign) && text.size() > sign.size() &&
               (isBlank(text[sign.size()]) || text[sign.size()] == '>');
    });
}

} // namespace

bool beginsLikePage(std::string_view head) {
    // By its mark only: nothing else here tells UTF-16 from what is no text.
    if (wideCharsetOf(head, {}).empty())
        return textBeginsLikePage(head);
    const Bytes bytes(head.begin(), head.end());
    return textBeginsLikePage(decodedPage(ByteView(bytes), {}).text);
}

PartForm partForm(RefUse use, std::string_view mimeType, std::string_view head) {
    const std::string type = toLower(trim(mimeType));
    if (use == RefUse::style || use == RefUse::quirkyStyle)
        return PartForm::style;
    if (type == "image/svg+xml" || (saysNothing(type) && beginsLikeSvg(head)))
        return PartForm::svg;
    const bool showsPages = use == RefUse::frame || use == RefUse::object;
    if (showsPages && (isPageType(type) || (saysNothing(type) && beginsLikePage(head))))
        return PartForm::page;
    return PartForm::plain;
}

std::string partExtension(PartForm form, const UrlRecord &record, std::string_view head) {
    switch (form) {
    case PartForm::style:
        return "css";
    case PartForm::page:
        return "htm";
    case PartForm::svg:
        return "svg";
    case PartForm::plain:
        break;
    }
    return plainExtension(record, head);
}

} // namespace nv
