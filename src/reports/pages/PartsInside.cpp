#include "reports/pages/PartsInside.h"

#include "base/Base64.h"
#include "base/Files.h"
#include "base/Text.h"
#include "reports/pages/PageWriter.h"
#include "reports/pages/PictureKind.h"
#include "reports/pages/SafePage.h"
#include "reports/pages/SafeStyle.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Pages in frames of pages, sheets that sheets import.
constexpr std::size_t kDeepest = 8;
/// Base 64 has four letters for three bytes.
constexpr std::size_t kLettersOfThree = 4;
constexpr std::size_t kLongestAddress = 2'000'000;
constexpr std::string_view kTodaysDoctype = "<!DOCTYPE html>";
constexpr std::string_view kPageType = "text/html;charset=utf-8";

struct TypeRow {
    std::string_view extension;
    std::string_view type;
};

constexpr std::array<TypeRow, 9> kPictureTypes = {{{"gif", "image/gif"},
                                                   {"jpg", "image/jpeg"},
                                                   {"png", "image/png"},
                                                   {"bmp", "image/bmp"},
                                                   {"ico", "image/x-icon"},
                                                   {"webp", "image/webp"},
                                                   {"tif", "image/tiff"},
                                                   {"avif", "image/avif"},
                                                   {"", ""}}};

constexpr std::array<TypeRow, 6> kFontTypes = {{{"woff2", "font/woff2"},
                                                {"woff", "font/woff"},
                                                {"ttf", "font/ttf"},
                                                {"otf", "font/otf"},
                                                {"eot", "application/vnd.ms-fontobject"},
                                                {"", "application/octet-stream"}}};

constexpr std::array<TypeRow, 13> kMediaTypes = {{{"mp3", "audio/mpeg"},
                                                  {"wav", "audio/wav"},
                                                  {"oga", "audio/ogg"},
                                                  {"wma", "audio/x-ms-wma"},
                                                  {"mid", "audio/midi"},
                                                  {"ogg", "video/ogg"},
                                                  {"ogv", "video/ogg"},
                                                  {"webm", "video/webm"},
                                                  {"avi", "video/x-msvideo"},
                                                  {"mpg", "video/mpeg"},
                                                  {"mpeg", "video/mpeg"},
                                                  {"mov", "video/quicktime"},
                                                  {"", "video/mp4"}}};

/// The last row's for an extension that has none.
template <std::size_t Count>
std::string_view typeOf(const std::array<TypeRow, Count> &rows, std::string_view extension) {
    for (const TypeRow &row : rows)
        if (row.extension == extension)
            return row.type;
    return rows.back().type;
}

std::string_view typeOfPart(PartKind kind, Use use, const fs::path &file) {
    const std::string extension = toLower(textOf(file.extension()));
    const std::string_view word = std::string_view(extension).substr(extension.empty() ? 0 : 1);
    if (use == Use::font)
        return typeOf(kFontTypes, word);
    if (kind == PartKind::picture)
        return typeOf(kPictureTypes, pictureKindOf(file));
    if (kind == PartKind::media)
        return typeOf(kMediaTypes, word);
    return use == Use::image ? typeOf(kPictureTypes, word) : std::string_view();
}

bool isPage(PartKind kind) {
    return kind == PartKind::page || kind == PartKind::text || kind == PartKind::xhtml ||
           kind == PartKind::xml;
}

} // namespace

std::string_view plainPlace(std::string_view place) {
    const bool isPlain =
        std::ranges::all_of(place.substr(std::min<std::size_t>(1, place.size())), [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                   c == '_' || c == '-';
        });
    return isPlain ? place : std::string_view();
}

bool PartsInside::begin(const std::string &name) {
    if (m_open.size() >= kDeepest || std::ranges::find(m_open, name) != m_open.end())
        return false;
    m_open.push_back(name);
    return true;
}

/// `before` is what had been given when the text was begun: its own parts stand in it.
std::optional<std::string> PartsInside::given(std::string text, std::size_t before) {
    m_given = before + text.size();
    m_isFull |= m_given > m_most;
    return m_isFull ? std::nullopt : std::optional(std::move(text));
}

/// Sheets that show each other a thousand times are much work for a small page.
std::string PartsInside::textIn(const std::string &name) {
    std::string text = decodedPart(readWhole(fileOf(name))).text;
    m_read += text.size();
    m_isFull |= m_read > m_most;
    return text;
}

std::optional<std::string> PartsInside::document(const PageFolder::value_type &part,
                                                 PageForm form) {
    if (m_isFull || !begin(part.first))
        return std::nullopt;
    const std::size_t before = m_given;
    std::string text = textIn(part.first);
    // What was written for XML is read as HTML here, as everything in a frame's attribute.
    if (part.second == PartKind::xhtml || part.second == PartKind::xml)
        text = guardedPage(text, form, References(m_parts.folder));
    auto written = withReferences(text, form, References(m_parts.folder, *this));
    m_open.pop_back();
    m_isFull |= !written;
    return written ? given(std::move(*written), before) : std::nullopt;
}

/// Browsers read the text of an attribute by today's rules whatever its doctype is. Pages of other
/// rules are data, up to the length of an address that all browsers open.
std::optional<FramedPage> PartsInside::pageIn(const PageFolder::value_type &part) {
    const std::size_t before = m_given;
    auto page = isPage(part.second) ? document(part, PageForm::html) : std::nullopt;
    if (!page)
        return std::nullopt;
    if (page->starts_with(kTodaysDoctype) || page->size() > kLongestAddress / kLettersOfThree * 3)
        return FramedPage{"srcdoc", std::move(*page)};
    auto data = asData(kPageType, *page, before);
    return data ? std::optional(FramedPage{"src", std::move(*data)}) : std::nullopt;
}

std::optional<std::string> PartsInside::asData(std::string_view type, std::string_view text,
                                               std::size_t before) {
    return given(fmt::format("data:{};base64,{}", type, base64(viewOf(text))), before);
}

/// As a picture a drawing shows no other file, in any browser; as a page in a frame it does.
std::optional<std::string> PartsInside::drawing(const PageFolder::value_type &part, Use use) {
    static const PageFolder kNone;
    const std::size_t before = m_given;
    auto text = use == Use::document ? document(part, PageForm::svg)
                : m_isFull           ? std::nullopt
                           : withReferences(textIn(part.first), PageForm::svg, References(kNone));
    return text ? asData("image/svg+xml", *text, before) : std::nullopt;
}

std::optional<std::string> PartsInside::styleSheet(const PageFolder::value_type &part) {
    if (m_isFull || !begin(part.first))
        return std::nullopt;
    const std::size_t before = m_given;
    const std::string style = guardedStyle(textIn(part.first), References(m_parts.folder, *this));
    m_open.pop_back();
    return asData("text/css", style, before);
}

std::optional<std::string> PartsInside::plainPart(const std::string &name, std::string_view type) {
    const auto known = m_plain.find(name);
    if (known != m_plain.end())
        return given(known->second, m_given);
    const fs::path file = fileOf(name);
    if (m_isFull || FileReader(file).size() / 3 * kLettersOfThree > m_most) {
        m_isFull = true;
        return std::nullopt;
    }
    std::string data = fmt::format("data:{};base64,{}", type, base64(ByteView(readWhole(file))));
    m_plain.emplace(name, data);
    return given(std::move(data), m_given);
}

std::optional<std::string> PartsInside::made(const PageFolder::value_type &part, Use use) {
    const auto &[name, kind] = part;
    const std::size_t before = m_given;
    if (kind == PartKind::style)
        return styleSheet(part);
    if (kind == PartKind::svg)
        return drawing(part, use);
    if (use == Use::document && isPage(kind)) {
        const auto page = document(part, PageForm::html);
        return page ? asData(kPageType, *page, before) : std::nullopt;
    }
    const std::string_view type = typeOfPart(kind, use, fileOf(name));
    return type.empty() ? std::nullopt : plainPart(name, type);
}

std::optional<std::string> PartsInside::address(const PageFolder::value_type &part,
                                                std::string_view place, Use use) {
    if (use == Use::link) { // browsers follow no link to data
        const bool isHere = m_page.filename() == part.first && m_open.size() == 1;
        return isHere ? std::optional(std::string(place.empty() ? "#" : place)) : std::nullopt;
    }
    auto data = made(part, use);
    return data ? std::optional(*data + std::string(plainPlace(place))) : std::nullopt;
}

std::optional<std::string> PartsInside::whole() {
    const auto part = m_parts.folder.find(m_page.filename().native());
    auto page = part == m_parts.folder.end() ? std::nullopt : document(*part, PageForm::html);
    return m_isFull ? std::nullopt : std::move(page);
}

static_assert(kLongestSinglePage <= kLongestPage); // which is as far as the writer goes

std::optional<std::string> singlePage(const fs::path &page, std::size_t most) {
    PartsInside inside(page, partsBeside(page), most);
    auto whole = inside.whole();
    if (!whole || whole->size() > most)
        return std::nullopt;
    return std::string(kUtf8Mark) + *whole;
}

} // namespace nv
