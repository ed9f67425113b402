#include "reports/pages/PageParts.h"

#include "base/Files.h"
#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "reports/pages/PictureKind.h"
#include "reports/pages/Playlists.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kHead = 1024; ///< bytes, in which browsers look for signs of a text

struct KindRow {
    PartKind kind;
    std::string_view extensions; ///< separated by blanks
};

// By their names, whatever they hold: so do browsers with files.
constexpr std::array<KindRow, 9> kKinds = {{
    {PartKind::picture, "gif jpg jpeg jpe png bmp tif tiff ico webp avif"},
    {PartKind::plain, "js txt vtt woff woff2 ttf otf eot"},
    {PartKind::media, "mp3 mp4 ogg oga ogv wav webm avi mpg mpeg mov wmv wma mid"},
    {PartKind::style, "css"},
    {PartKind::page, "htm html shtm shtml"},
    {PartKind::xhtml, "xht xhtml"},
    {PartKind::svg, "svg"},
    {PartKind::xml, "xml xsl xslt rss atom rdf"},
    // Programs, lists and mail that fetch what they name, and are read before any policy is.
    {PartKind::unknown, "mht mhtml maff eml hta htc sct wsc wsf wsh vbs vbe jse url lnk desktop "
                        "webloc website m3u m3u8 pls asx wax wvx wmx wpl xspf ram smi smil qtl"},
}};

/// Text in 16 bits a letter has its mark; any other zero byte means that this is no text.
bool isBinary(const fs::path &file) {
    const Bytes head = readHead(file, kHead);
    const std::string_view text = ByteView(head).raw();
    const bool isWide = text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
    return !isWide && text.find('\0') != std::string_view::npos;
}

/// What the name says, nothing for a name that says nothing.
std::optional<PartKind> kindByName(const fs::path &file) {
    const std::string extension = toLower(textOf(file.extension()));
    const std::string_view word = std::string_view(extension).substr(extension.empty() ? 0 : 1);
    for (const KindRow &row : kKinds)
        for (const std::string_view each : split(row.extensions, ' '))
            if (!word.empty() && word == each)
                return row.kind;
    return std::nullopt;
}

PartKind kindOf(const fs::path &file) {
    const auto named = kindByName(file);
    if (named == PartKind::media) {
        const Bytes head = readHead(file, kPlaylistHead);
        return mayBePlaylist(ByteView(head).raw()) ? PartKind::unknown : PartKind::media;
    }
    if (named && named != PartKind::picture)
        return *named;
    if (!pictureKindOf(file).empty())
        return PartKind::picture;
    if (named)
        return PartKind::plain;
    // Of any other name browsers look at the first bytes.
    return isBinary(file) ? PartKind::unknown : PartKind::text;
}

/// A name that stands for itself in an address, on every system.
bool isPlainName(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '.' || c == '_' || c == '-' || c == '~';
    });
}

void addStyle(const std::vector<HtmlAttribute> &link, std::vector<std::string> &styles) {
    const auto valueOf = [&link](std::string_view name) {
        const auto found = std::ranges::find(link, name, &HtmlAttribute::name);
        return found == link.end() ? std::string_view() : trim(found->value);
    };
    if (equalsNoCase(valueOf("rel"), "stylesheet"))
        styles.emplace_back(valueOf("href"));
}

/// What the page links as its styles, whatever it is called: style sheets of programs on servers
/// were often "style.php".
std::vector<std::string> stylesOf(std::string_view text) {
    const auto document = HtmlDocument::within(text);
    std::vector<std::string> styles;
    std::vector<const HtmlDocument::Node *> open;
    if (document)
        open.push_back(&document->root());
    while (!open.empty()) {
        const HtmlDocument::Node &node = *open.back();
        open.pop_back();
        const auto children = HtmlDocument::childrenOf(node);
        open.insert(open.end(), children.begin(), children.end());
        if (HtmlDocument::isElement(node) && HtmlDocument::nameOf(node) == "link")
            addStyle(document->attributesOf(node), styles);
    }
    return styles;
}

} // namespace

DecodedPage decodedPart(const Bytes &bytes) {
    const ByteView view(bytes);
    DecodedPage decoded = decodedPage(view, {});
    if (decoded.foundIn == kNoCharset && isUtf8(view.raw()))
        return {std::string(view.raw()), "utf-8", kNoCharset};
    return decoded;
}

PageParts partsBeside(const fs::path &page) {
    PageParts parts;
    for (const fs::directory_entry &entry : fs::directory_iterator(page.parent_path()))
        if (entry.is_symlink())
            parts.kinds.emplace(entry.path(), PartKind::unknown);
        else if (entry.is_regular_file())
            parts.kinds.emplace(entry.path(), kindOf(entry.path()));
    if (const auto first = parts.kinds.find(page); first != parts.kinds.end()) {
        first->second = PartKind::page;
        const DecodedPage decoded = decodedPart(readWhole(page));
        parts.charset = decoded.charset;
        for (const std::string &name : stylesOf(decoded.text))
            if (const auto found = parts.kinds.find(page.parent_path() / name);
                found != parts.kinds.end() && found->second == PartKind::text)
                found->second = PartKind::style;
    }
    for (const auto &[file, kind] : parts.kinds) {
        const std::string name = textOf(file.filename());
        if (kind != PartKind::unknown && isPlainName(name))
            parts.folder.emplace(name, kind);
    }
    return parts;
}

} // namespace nv
