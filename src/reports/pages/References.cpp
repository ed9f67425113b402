#include "reports/pages/References.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "markup/PageText.h"
#include "reports/pages/PartsInside.h"
#include "reports/pages/Playlists.h"
#include "reports/pages/SafePage.h"
#include "reports/pages/SafeStyle.h"
#include "reports/pages/SafeTrack.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

/// Documents within documents as data; what lies deeper goes.
constexpr int kDeepest = 3;

constexpr std::array<std::string_view, 9> kPictures = {
    "image/gif",  "image/jpeg",   "image/jpg",
    "image/png",  "image/bmp",    "image/webp",
    "image/avif", "image/x-icon", "image/vnd.microsoft.icon"};

constexpr std::array<std::string_view, 14> kFonts = {"font/woff",
                                                     "font/woff2",
                                                     "font/ttf",
                                                     "font/otf",
                                                     "font/opentype",
                                                     "font/truetype",
                                                     "application/font-woff",
                                                     "application/font-woff2",
                                                     "application/x-font-woff",
                                                     "application/x-font-ttf",
                                                     "application/x-font-truetype",
                                                     "application/x-font-opentype",
                                                     "application/vnd.ms-fontobject",
                                                     "application/octet-stream"};

constexpr std::array<std::string_view, 10> kMedia = {
    "audio/mpeg", "audio/ogg", "audio/wav",  "audio/mp4", "audio/webm",
    "audio/aac",  "video/mp4", "video/webm", "video/ogg", "video/mpeg"};

template <std::size_t Count>
bool isOneOf(const std::array<std::string_view, Count> &types, std::string_view type) {
    return std::ranges::find(types, type) != types.end();
}

/// As browsers read addresses: line breaks and tabs are nothing, and neither are blanks at the
/// ends.
std::string cleaned(std::string_view address) {
    const auto isOuter = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!address.empty() && isOuter(address.front()))
        address.remove_prefix(1);
    while (!address.empty() && isOuter(address.back()))
        address.remove_suffix(1);
    std::string clean(address);
    std::erase_if(clean, [](char c) { return c == '\t' || c == '\n' || c == '\r'; });
    return clean;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string percentBytes(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int high = at + 2 < text.size() && text[at] == '%' ? hexValue(text[at + 1]) : -1;
        const int low = high >= 0 ? hexValue(text[at + 2]) : -1;
        if (low < 0) {
            bytes += text[at];
            continue;
        }
        bytes += static_cast<char>(high * 16 + low);
        at += 2;
    }
    return bytes;
}

std::string dataOf(std::string_view type, std::string_view bytes) {
    return fmt::format("data:{};base64,{}", type, base64(viewOf(bytes)));
}

bool isDocument(Use use) {
    return use == Use::document || use == Use::link;
}

/// What decodes pictures and fonts makes nothing else of a file. Others go by what a file holds, so
/// that only what was looked into is given to them.
bool serves(PartKind kind, Use use) {
    switch (use) {
    case Use::style:
        return kind == PartKind::style;
    case Use::media:
        return kind == PartKind::media;
    case Use::track: // taken from a page's own server only, and a folder is none
        return false;
    case Use::document:
    case Use::link:
        return kind != PartKind::style && kind != PartKind::plain && kind != PartKind::unknown;
    default:
        return kind != PartKind::unknown;
    }
}

} // namespace

std::optional<std::string> References::kept(std::string_view address, Use use) const {
    const std::string clean = cleaned(address);
    if (startsWithNoCase(clean, "data:"))
        return keptData(std::string_view(clean).substr(5), use);
    const std::string_view name = std::string_view(clean).substr(0, clean.find('#'));
    // A place in the page itself, which read as a style would fetch what its text says.
    if (name.empty() && !clean.empty())
        return use == Use::image || isDocument(use) ? std::optional(clean) : std::nullopt;
    return keptPart(clean, use);
}

std::optional<std::string> References::keptPart(const std::string &address, Use use) const {
    const std::size_t hash = std::min(address.find('#'), address.size());
    const std::string_view name = std::string_view(address).substr(0, hash);
    const auto part = m_folder.find(name);
    if (part == m_folder.end() || !serves(part->second, use))
        return std::nullopt;
    const std::string_view place = std::string_view(address).substr(hash);
    return m_inside ? m_inside->address(*part, place, use) : std::optional(address);
}

std::optional<FramedPage> References::framed(std::string_view address) const {
    const std::string clean = cleaned(address);
    const auto part = m_folder.find(std::string_view(clean).substr(0, clean.find('#')));
    return m_inside && part != m_folder.end() ? m_inside->pageIn(*part) : std::nullopt;
}

/// Documents as data have no folder. While parts are files, their names stay in such a document all
/// the same, where they lead nowhere.
References References::within() const {
    static const PageFolder kNone;
    return References(m_inside ? kNone : m_folder, m_depth + 1);
}

bool References::isPicture(std::string_view address) const {
    const std::string clean = cleaned(address);
    if (startsWithNoCase(clean, "data:"))
        return startsWithNoCase(clean, "data:image/");
    const auto part = m_folder.find(std::string_view(clean).substr(0, clean.find('#')));
    return part != m_folder.end() &&
           (part->second == PartKind::picture || part->second == PartKind::svg);
}

/// It has the folder of the page that it stands in, unlike documents as data.
std::optional<std::string> References::keptText(std::string_view html) const {
    if (m_depth >= kDeepest)
        return std::nullopt;
    References within(*this);
    ++within.m_depth;
    return guardedPage(html, PageForm::html, within);
}

/// What is kept is written anew, so that it has one form only.
std::optional<std::string> References::keptData(std::string_view data, Use use) const {
    const std::size_t hash = std::min(data.find('#'), data.size());
    const std::string_view place = data.substr(hash);
    data = data.substr(0, hash);
    const std::size_t comma = data.find(',');
    if (comma == std::string_view::npos)
        return std::nullopt;
    const std::string head = toLower(data.substr(0, comma));
    const auto words = split(head, ';');
    const std::string_view type = trim(words.front());
    std::string_view charset;
    for (const std::string_view word : words)
        if (trim(word).starts_with("charset="))
            charset = trim(word).substr(8);
    std::string bytes = percentBytes(data.substr(comma + 1));
    if (words.size() > 1 && trim(words.back()) == "base64")
        bytes = fromBase64(bytes);
    if ((use == Use::image || isDocument(use)) && isOneOf(kPictures, type))
        return dataOf(type, bytes);
    if (use == Use::font && isOneOf(kFonts, type))
        return dataOf(type, bytes);
    if (use == Use::media && isOneOf(kMedia, type) && !mayBePlaylist(bytes))
        return dataOf(type, bytes);
    if (use == Use::track && type == "text/vtt")
        return dataOf(type, guardedTrack(decodedStyle(viewOf(bytes), "utf-8", {}).text));
    if (m_depth >= kDeepest)
        return std::nullopt;
    const References within = this->within();
    if (use == Use::style && type == "text/css")
        return dataOf(type, guardedStyle(decodedStyle(viewOf(bytes), charset, {}).text, within));
    if (use == Use::image && type == "image/svg+xml")
        if (auto drawing = keptDocument(type, bytes, charset))
            return *drawing + std::string(plainPlace(place)); // of a mask, a filter
    return isDocument(use) ? keptDocument(type, bytes, charset) : std::nullopt;
}

namespace {

/// XML is UTF-8 where nothing says otherwise.
std::string decodedData(const std::string &bytes, std::string_view charset, bool isXml) {
    DecodedPage page =
        decodedPage(viewOf(bytes), fmt::format("Content-Type: x; charset={}", charset));
    if (isXml && page.foundIn == kNoCharset && isUtf8(bytes))
        return bytes;
    return std::move(page.text);
}

} // namespace

std::optional<std::string> References::keptDocument(std::string_view type, const std::string &bytes,
                                                    std::string_view charset) const {
    const References within = this->within();
    const std::string text = decodedData(bytes, charset, type.ends_with("+xml"));
    if (type == "text/html" || type == "application/xhtml+xml")
        return dataOf("text/html",
                      std::string(kUtf8Mark) + guardedPage(text, PageForm::html, within));
    if (type == "image/svg+xml")
        return dataOf(type, guardedPage(text, PageForm::svg, within));
    if (type.empty() || type == "text/plain")
        return dataOf("text/plain;charset=utf-8", text);
    return std::nullopt;
}

} // namespace nv
