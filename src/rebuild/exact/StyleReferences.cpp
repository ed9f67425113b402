#include "rebuild/exact/StyleReferences.h"

#include "base/Text.h"
#include "markup/CssItems.h"
#include "rebuild/exact/PageReferences.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

using Tokens = std::vector<CssToken>;

constexpr std::array<std::string_view, 10> kDrawings = {
    "filter", "backdrop-filter", "clip-path",  "fill",       "stroke",
    "marker", "marker-start",    "marker-mid", "marker-end", "offset-path"};

// Parts of these names that browsers want from the page's own server. "--" names are for any use.
constexpr std::array<std::string_view, 7> kMasks = {"mask",           "mask-image",
                                                    "mask-border",    "mask-border-source",
                                                    "mask-box-image", "mask-box-image-source",
                                                    "shape-outside"};

/// They name programs, which no browser of today runs.
constexpr std::array<std::string_view, 3> kPrograms = {"behavior", "-moz-binding", "-ms-behavior"};

template <std::size_t Count>
bool isOneOf(const std::array<std::string_view, Count> &list, std::string_view word) {
    return std::ranges::find(list, word) != list.end();
}

std::string_view withoutMaker(std::string_view name) {
    for (const std::string_view maker : {"-webkit-", "-moz-", "-ms-", "-o-"})
        if (name.starts_with(maker))
            return name.substr(maker.size());
    return name;
}

/// Functions in which a text is an address.
bool takesAddresses(std::string_view function) {
    const std::string_view name = withoutMaker(function);
    return name == "image-set" || name == "image" || name == "cross-fade";
}

bool isUrlFunction(std::string_view function) {
    return function == "url" || function == "src";
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

class StyleScan {
  public:
    explicit StyleScan(std::string_view css) : m_css(css), m_tokens(cssTokens(css)) {}

    std::vector<Reference> sheet();
    std::vector<Reference> declarations();
    std::vector<Reference> value(std::string_view property);

  private:
    /// A list of items that is being read, and the at-rule that holds it.
    struct Level {
        std::vector<CssItem> items;
        std::size_t next = 0;
        std::string rule; ///< in lower case
    };
    struct Context {
        RefUse use;
        std::string attribute;
        RefPlace place = RefPlace::beside;
    };
    static Context contextOf(const std::string &property);

    CssRange all() const { return {0, m_tokens.size()}; }
    void walk(std::vector<CssItem> items);
    void readDeclaration(const CssItem &item, const std::string &rule);
    void readImport(const CssItem &item);
    void readValue(CssRange part, const Context &context);
    const CssToken *stringIn(std::size_t function, CssRange part) const;
    void addUrl(const CssToken &token, const Context &context);
    void addString(const CssToken &token, RefForm form, const Context &context);
    void add(RefForm form, std::string_view address, SourceSpan at, const Context &context);

    std::string_view m_css;
    Tokens m_tokens;
    std::vector<Reference> m_found;
};

void StyleScan::add(RefForm form, std::string_view address, SourceSpan at, const Context &context) {
    const std::string_view trimmed = trimmedAddress(address);
    if (!isFollowed(trimmed))
        return;
    Reference reference;
    reference.use = context.use;
    reference.form = form;
    reference.attribute = context.attribute;
    reference.place = context.place;
    reference.address = trimmed;
    reference.at = at;
    m_found.push_back(std::move(reference));
}

/// The token begins with the name, in which no bracket can stand.
void StyleScan::addUrl(const CssToken &token, const Context &context) {
    SourceSpan at = token.at;
    at.begin = std::min(m_css.find('(', at.begin) + 1, at.end);
    at.end -= token.isClosed ? 1 : 0;
    while (at.begin < at.end && isBlank(m_css[at.begin]))
        ++at.begin;
    while (at.begin < at.end && isBlank(m_css[at.end - 1]))
        --at.end;
    add(RefForm::styleUrl, token.text, at, context);
}

void StyleScan::addString(const CssToken &token, RefForm form, const Context &context) {
    const SourceSpan at{token.at.begin + 1, token.at.end - (token.isClosed ? 1 : 0)};
    add(form, token.text, at, context);
}

/// The address of "url(" or "src(" whose name is at `function`.
const CssToken *StyleScan::stringIn(std::size_t function, CssRange part) const {
    const std::size_t end = std::min(m_tokens[function].partner, part.end);
    for (std::size_t at = function + 1; at < end; ++at)
        if (m_tokens[at].kind == CssKind::string)
            return &m_tokens[at];
        else if (m_tokens[at].kind != CssKind::blank)
            return nullptr;
    return nullptr;
}

void StyleScan::readValue(CssRange part, const Context &context) {
    struct Open {
        std::size_t end;
        bool takesAddresses;
    };
    std::vector<Open> open;
    for (std::size_t at = part.begin; at < part.end; ++at) {
        while (!open.empty() && at >= open.back().end)
            open.pop_back();
        const CssToken &token = m_tokens[at];
        if (token.kind == CssKind::url) {
            addUrl(token, context);
        } else if (token.kind == CssKind::string && !open.empty() && open.back().takesAddresses) {
            addString(token, RefForm::styleString, context);
        } else if (token.kind == CssKind::function && isUrlFunction(toLower(token.text))) {
            if (const CssToken *address = stringIn(at, part))
                addString(*address, RefForm::styleUrl, context);
            at = std::min(token.partner, part.end);
        } else if (opensBlock(token.kind)) {
            open.push_back({token.partner, token.kind == CssKind::function &&
                                               takesAddresses(toLower(token.text))});
        }
    }
}

StyleScan::Context StyleScan::contextOf(const std::string &property) {
    const std::string_view name = withoutMaker(property);
    if (property.starts_with("--"))
        return {RefUse::image, property, RefPlace::insideIfSmall};
    if (isOneOf(kDrawings, name))
        return {RefUse::svg, property, RefPlace::inside};
    return {RefUse::image, property, isOneOf(kMasks, name) ? RefPlace::inside : RefPlace::beside};
}

void StyleScan::readDeclaration(const CssItem &item, const std::string &rule) {
    const std::string property = item.name.starts_with("--") ? item.name : toLower(item.name);
    if (isOneOf(kPrograms, property) || property.starts_with('_'))
        return;
    if (rule != "font-face")
        return readValue(item.value, contextOf(property));
    if (property == "src")
        readValue(item.value, {RefUse::font, "@font-face src"});
}

void StyleScan::readImport(const CssItem &item) {
    const Context context{RefUse::style, "@import"};
    for (std::size_t at = item.value.begin; at < item.value.end; ++at) {
        const CssToken &token = m_tokens[at];
        if (token.kind == CssKind::blank)
            continue;
        if (token.kind == CssKind::url)
            addUrl(token, context);
        else if (token.kind == CssKind::string)
            addString(token, RefForm::styleString, context);
        else if (token.kind == CssKind::function && isUrlFunction(toLower(token.text)))
            if (const CssToken *address = stringIn(at, item.value))
                addString(*address, RefForm::styleUrl, context);
        return;
    }
}

/// Rules may lie in one another as deep as the text is long: no recursion.
void StyleScan::walk(std::vector<CssItem> items) {
    std::vector<Level> open;
    open.push_back({std::move(items), 0, {}});
    while (!open.empty()) {
        Level &level = open.back();
        if (level.next == level.items.size()) {
            open.pop_back();
            continue;
        }
        const CssItem item = level.items[level.next++];
        if (item.kind == CssItem::Kind::declaration)
            readDeclaration(item, level.rule);
        const bool isRule =
            item.kind == CssItem::Kind::atRule || item.kind == CssItem::Kind::qualifiedRule;
        if (isRule && item.hasBlock)
            open.push_back(
                {cssBlock(m_tokens, item.block), 0,
                 item.kind == CssItem::Kind::atRule ? toLower(item.name) : std::string()});
    }
}

std::vector<Reference> StyleScan::sheet() {
    std::vector<CssItem> items = cssStyleSheet(m_tokens, all());
    for (const CssItem &item : items) {
        const std::string name =
            item.kind == CssItem::Kind::atRule ? toLower(item.name) : std::string();
        // Behind any other rule an import is none.
        if (name != "import" && name != "charset" && (name != "layer" || item.hasBlock) &&
            item.kind != CssItem::Kind::invalid)
            break;
        if (name == "import" && !item.hasBlock)
            readImport(item);
    }
    walk(std::move(items));
    return std::move(m_found);
}

std::vector<Reference> StyleScan::declarations() {
    walk(cssDeclarations(m_tokens, all()));
    return std::move(m_found);
}

std::vector<Reference> StyleScan::value(std::string_view property) {
    readValue(all(), contextOf(toLower(property)));
    return std::move(m_found);
}

} // namespace

std::string_view trimmedAddress(std::string_view address) {
    const auto isOuter = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    while (!address.empty() && isOuter(address.front()))
        address.remove_prefix(1);
    while (!address.empty() && isOuter(address.back()))
        address.remove_suffix(1);
    return address;
}

bool isFollowed(std::string_view address) {
    address = trimmedAddress(address);
    if (address.empty() || address.starts_with('#'))
        return false;
    // Browsers read addresses without the line breaks and tabs in them.
    std::string start(address.substr(0, 64));
    std::erase_if(start, [](char c) { return c == '\t' || c == '\n' || c == '\r'; });
    for (const std::string_view scheme : {"data:", "javascript:", "about:", "blob:"})
        if (startsWithNoCase(start, scheme))
            return false;
    return true;
}

std::vector<Reference> scanStyle(std::string_view css) {
    return StyleScan(css).sheet();
}

std::vector<Reference> referencesOfDeclarations(std::string_view css) {
    return StyleScan(css).declarations();
}

std::vector<Reference> referencesOfValue(std::string_view property, std::string_view css) {
    return StyleScan(css).value(property);
}

} // namespace nv
