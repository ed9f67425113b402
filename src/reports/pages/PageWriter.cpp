#include "reports/pages/PageWriter.h"

#include "base/Text.h"
#include "markup/SrcSet.h"
#include "markup/Utf8.h"
#include "reports/pages/SafeStyle.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

namespace nv {

namespace {

// Short: browsers look for a page's encoding in its first 1024 bytes. "base-uri" keeps a page from
// calling its parts those of its site.
constexpr std::string_view kGuard =
    R"(<meta charset="utf-8"/><meta http-equiv="Content-Security-Policy" )"
    R"(content="default-src 'none'; img-src 'self' data:; style-src 'self' 'unsafe-inline' data:; )"
    R"(font-src 'self' data:; media-src 'self' data:; frame-src 'self' data:; base-uri 'none'; )"
    R"(form-action 'none'"/><meta http-equiv="x-dns-prefetch-control" content="off"/>)"
    R"(<meta name="referrer" content="no-referrer"/>)";

constexpr std::array<std::string_view, 5> kTold = {"author", "description", "generator", "keywords",
                                                   "viewport"};
constexpr std::array<std::string_view, 7> kPlain = {"html", "head", "title", "body",
                                                    "div",  "br",   "img"};

constexpr std::uint32_t kNoCharacter = 0xFFFD;

/// Elements whose first line break isn't read.
bool eatsLine(std::string_view name) {
    return name == "pre" || name == "textarea";
}

std::string attributeText(std::string_view name, std::string_view value) {
    return fmt::format(" {}=\"{}\"", name, markupText(value));
}

std::string toldLink(std::string_view address) {
    return address.empty() ? std::string() : attributeText("data-href", address);
}

bool isQuotable(std::string_view id) {
    return std::ranges::all_of(id, [](char c) {
        return c >= ' ' && c < 0x7F && c != '"' && c != '<' && c != '>' && c != '&';
    });
}

const HtmlAttribute *find(const std::vector<HtmlAttribute> &attributes, std::string_view name) {
    const auto found = std::ranges::find(attributes, name, &HtmlAttribute::name);
    return found == attributes.end() ? nullptr : &*found;
}

std::string_view valueOf(const std::vector<HtmlAttribute> &attributes, std::string_view name) {
    const HtmlAttribute *found = find(attributes, name);
    return found ? found->value : std::string_view();
}

bool holdsWord(std::string_view list, std::string_view wanted) {
    const std::string words = replaceAll(list, "\n", " ");
    for (const std::string_view word : split(words, ' '))
        if (equalsNoCase(trim(word), wanted))
            return true;
    return false;
}

/// What the parser reads as U+FFFD, though it is well written: controls after ASCII's, and what
/// will never be a character.
bool isNoCharacter(std::uint32_t code) {
    return (code >= 0x7F && code < 0xA0) || (code >= 0xFDD0 && code <= 0xFDEF) ||
           (code > 0xFFFF && (code & 0xFFFE) == 0xFFFE);
}

} // namespace

std::string_view guardOfHead() {
    return kGuard;
}

/// Where all parts are inside, no file beside the page is one.
std::string PageWriter::guardHere() const {
    return m_references.haveInside() ? replaceAll(kGuard, "'self' ", "") : std::string(kGuard);
}

std::string markupText(std::string_view text) {
    std::string written;
    written.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const std::uint32_t code = nextCode(text, at);
        if (code == '&')
            written += "&amp;";
        else if (code == '<')
            written += "&lt;";
        else if (code == '>')
            written += "&gt;";
        else if (code == '"')
            written += "&quot;";
        else if (code == '\r' || code == '\n')
            written += '\n';
        else if (code == '\f')
            written += ' ';
        else if (isNoCharacter(code))
            written += utf8Of(kNoCharacter);
        else if ((code >= ' ' || code == '\t') && (code & 0xFFFFFFFEU) != 0xFFFE)
            written += at - begin == 1 && code == kNoCharacter
                           ? utf8Of(kNoCharacter)
                           : std::string(text.substr(begin, at - begin));
    }
    return written;
}

std::string PageWriter::doctype() const {
    const auto type = m_page.doctype();
    if (m_form != PageForm::html || !type || !equalsNoCase(type->name, "html"))
        return {};
    if (!isQuotable(type->publicId) || !isQuotable(type->systemId))
        return "<!DOCTYPE html>";
    if (!type->publicId.empty())
        return fmt::format("<!DOCTYPE html PUBLIC \"{}\"{}>", type->publicId,
                           type->systemId.empty() ? "" : fmt::format(" \"{}\"", type->systemId));
    return type->systemId.empty() ? "<!DOCTYPE html>"
                                  : fmt::format("<!DOCTYPE html SYSTEM \"{}\">", type->systemId);
}

std::string PageWriter::write(const Node &root) {
    enter(root);
    while (!m_path.empty() && m_text.size() <= kLongestPage) {
        Step &step = m_path.back();
        const auto children = HtmlDocument::childrenOf(*step.node);
        if (step.next < children.size()) {
            enter(*children[step.next++]);
            continue;
        }
        m_text += step.end;
        m_path.pop_back();
    }
    return std::move(m_text);
}

void PageWriter::enter(const Node &node) {
    if (HtmlDocument::isElement(node))
        enterElement(node);
    else
        writeText(HtmlDocument::writtenIn(node));
}

void PageWriter::writeText(std::string_view text) {
    const std::string written = markupText(text);
    // Readers pass over a line break right after such a tag: of two the second one stays.
    if (m_text.size() == m_lineEaten && written.starts_with('\n'))
        m_text += '\n';
    m_text += written;
}

Fate PageWriter::fateHere(const Node &element, std::string_view name) const {
    const HtmlSpace space = HtmlDocument::spaceOf(element);
    // Readers of XML make no tree of it.
    const bool isShadow =
        m_form == PageForm::html && m_detail == Detail::all && HtmlDocument::isShadowTree(element);
    const Fate fate = isShadow ? Fate::keep : fateOf(space, name);
    const bool isSimple =
        fate == Fate::drop || fate == Fate::meta || fate == Fate::style ||
        (space == HtmlSpace::html && std::ranges::find(kPlain, name) != kPlain.end());
    return m_detail == Detail::all || isSimple ? fate : Fate::unwrap;
}

void PageWriter::enterElement(const Node &element) {
    const std::string name = HtmlDocument::nameOf(element);
    switch (fateHere(element, name)) {
    case Fate::keep:
        return keep(element, name, name == "head" ? guardHere() : std::string());
    case Fate::unwrap:
        m_path.push_back({&element, 0, {}});
        return;
    case Fate::rename:
        return keep(element, "span");
    case Fate::lines:
        return keep(element, "pre");
    case Fate::text:
        return writeWithText(element, name);
    case Fate::empty:
        openTag(element, name, attributesOf(element, name));
        m_text += fmt::format("</{}>", name);
        return;
    case Fate::embedded:
        return writeEmbedded(element, name);
    case Fate::style:
        return writeStyle(element);
    case Fate::link:
        return writeLink(element);
    case Fate::meta:
        return writeMeta(element);
    case Fate::drop:
        return;
    }
}

void PageWriter::keep(const Node &element, std::string_view name, std::string_view inside) {
    openTag(element, name, attributesOf(element, name));
    m_text += inside;
    if (HtmlDocument::spaceOf(element) != HtmlSpace::html || !isVoid(name))
        m_path.push_back({&element, 0, fmt::format("</{}>", name)});
}

void PageWriter::openTag(const Node &element, std::string_view name, std::string_view attributes) {
    const HtmlSpace space = HtmlDocument::spaceOf(element);
    std::string_view nameSpace;
    if (space == HtmlSpace::svg && name == "svg")
        nameSpace = " xmlns=\"http://www.w3.org/2000/svg\"";
    else if (space == HtmlSpace::mathMl && name == "math")
        nameSpace = " xmlns=\"http://www.w3.org/1998/Math/MathML\"";
    else if (name == "html" && m_form == PageForm::xhtml)
        nameSpace = " xmlns=\"http://www.w3.org/1999/xhtml\"";
    const bool isClosed = space == HtmlSpace::html && isVoid(name);
    m_text += fmt::format("<{}{}{}{}>", name, nameSpace, attributes, isClosed ? "/" : "");
    m_lineEaten = eatsLine(name) ? m_text.size() : std::string::npos;
}

std::string PageWriter::attributesOf(const Node &element, std::string_view name) const {
    std::string text;
    std::set<std::string> written; // "href" may stand there with a prefix as well
    for (const HtmlAttribute &attribute : m_page.attributesOf(element)) {
        const std::string each = attributeOf(element, name, attribute);
        if (!each.empty() && written.insert(each.substr(0, each.find('='))).second)
            text += each;
    }
    return text;
}

std::string PageWriter::attributeOf(const Node &element, std::string_view name,
                                    const HtmlAttribute &attribute) const {
    const HtmlSpace space = HtmlDocument::spaceOf(element);
    const std::string_view value = attribute.value;
    if (attribute.name == "style" && !attribute.isPrefixed) {
        const std::string style = guardedDeclarations(value, m_references);
        return style.empty() ? "" : attributeText("style", style);
    }
    if (space == HtmlSpace::mathMl && attribute.name == "href")
        return toldLink(value);
    if (std::string reference = referenceOf(element, name, attribute);
        space != HtmlSpace::mathMl && !reference.empty())
        return reference;
    if (attribute.isPrefixed)
        return {};
    const std::string_view property = propertyOf(space, attribute.name);
    if (!property.empty()) {
        const auto safe = guardedValue(property, value, m_references);
        return safe ? attributeText(attribute.name, *safe) : std::string();
    }
    return isPlainAttribute(space, attribute.name) ? attributeText(attribute.name, value) : "";
}

/// Of the pictures of several sizes those that may stay, each in one form.
std::string PageWriter::candidatesOf(std::string_view srcset) const {
    std::string written;
    for (const SrcSetCandidate &candidate : srcSetCandidates(srcset)) {
        const auto kept = m_references.kept(candidate.at.in(srcset), Use::image);
        // A comma at its end would be read as the list's own.
        if (!kept || kept->ends_with(',') || !isDescriptor(candidate.descriptor))
            continue;
        written += written.empty() ? "" : ", ";
        written += *kept;
        written += candidate.descriptor.empty() ? "" : " " + candidate.descriptor;
    }
    return written;
}

std::string PageWriter::addressOf(std::string_view name, std::string_view attribute,
                                  std::string_view value, Use use) const {
    if (name == "iframe")
        if (const auto page = m_references.framed(value))
            return attributeText(page->attribute, page->value);
    const auto kept = m_references.kept(value, use);
    return kept ? attributeText(attribute, *kept) : std::string();
}

/// Where a link led is still told, where nothing follows it.
std::string PageWriter::referenceOf(const Node &element, std::string_view name,
                                    const HtmlAttribute &attribute) const {
    std::optional<Use> use;
    if (HtmlDocument::spaceOf(element) == HtmlSpace::svg) {
        const bool isPlace = attribute.value.starts_with('#');
        if (attribute.name == "href" && (name == "image" || isPlace))
            use = Use::image;
    } else if (attribute.name == "srcset") {
        const bool isUsed = name == "img" || name == "source";
        const std::string kept = isUsed ? candidatesOf(attribute.value) : std::string();
        return kept.empty() ? "" : attributeText(attribute.name, kept);
    } else if (attribute.name == "srcdoc") {
        const auto kept = name == "iframe" ? m_references.keptText(attribute.value) : std::nullopt;
        return kept ? attributeText(attribute.name, *kept) : "";
    } else if (attribute.name == "usemap" && attribute.value.starts_with('#')) {
        return attributeText(attribute.name, attribute.value);
    } else {
        use = useOf(name, attribute.name);
    }
    if (!use)
        return {};
    if (std::string kept = addressOf(name, attribute.name, attribute.value, *use); !kept.empty())
        return kept;
    return use == Use::link && !attribute.value.empty()
               ? attributeText("data-href", attribute.value)
               : "";
}

std::string PageWriter::textWithin(const Node &element) const {
    std::string text;
    std::vector<const Node *> open{&element};
    while (!open.empty()) {
        const Node *node = open.back();
        open.pop_back();
        text += HtmlDocument::writtenIn(*node);
        const auto children = HtmlDocument::childrenOf(*node);
        open.insert(open.end(), children.rbegin(), children.rend());
    }
    return text;
}

void PageWriter::writeWithText(const Node &element, std::string_view name) {
    openTag(element, name, attributesOf(element, name));
    writeText(textWithin(element));
    m_text += fmt::format("</{}>", name);
}

/// What would need a program of its own leaves what it shows without one.
void PageWriter::writeEmbedded(const Node &element, std::string_view name) {
    const auto attributes = m_page.attributesOf(element);
    const bool isObject = name == "object";
    const std::string_view address = valueOf(attributes, isObject ? "data" : "src");
    const bool isPicture = m_references.isPicture(address);
    const std::string_view plain = isPicture ? "img" : "iframe";
    const std::string source =
        addressOf(plain, "src", address, isPicture ? Use::image : Use::document);
    if (source.empty() || trim(address).starts_with('#') || (isObject && find(attributes, "src"))) {
        if (isObject)
            m_path.push_back({&element, 0, {}});
        return;
    }
    // Unlike a frame's, its edge shows no border.
    const bool isBorderless = !isPicture && !find(attributes, "frameborder");
    openTag(element, plain,
            (isObject ? source : std::string()) + attributesOf(element, plain) +
                (isBorderless ? attributeText("frameborder", "0") : std::string()));
    m_text += isPicture ? "" : "</iframe>";
}

void PageWriter::writeStyle(const Node &element) {
    const auto attributes = m_page.attributesOf(element);
    const std::string_view type = trim(valueOf(attributes, "type"));
    if (!type.empty() && !equalsNoCase(type, "text/css"))
        return;
    const std::string style = guardedStyle(textWithin(element), m_references);
    if (style.empty())
        return;
    const std::string_view media = valueOf(attributes, "media");
    openTag(element, "style", media.empty() ? "" : attributeText("media", media));
    m_text += style + "</style>";
}

void PageWriter::writeLink(const Node &element) {
    const auto attributes = m_page.attributesOf(element);
    const std::string_view relation = valueOf(attributes, "rel");
    const bool isStyle = holdsWord(relation, "stylesheet") && !holdsWord(relation, "alternate");
    if (!isStyle && !holdsWord(relation, "icon"))
        return;
    const auto kept =
        m_references.kept(valueOf(attributes, "href"), isStyle ? Use::style : Use::image);
    if (!kept)
        return;
    const std::string_view media = valueOf(attributes, "media");
    openTag(element, "link",
            attributeText("rel", isStyle ? "stylesheet" : "icon") + attributeText("href", *kept) +
                (media.empty() ? "" : attributeText("media", media)) +
                (isStyle && find(attributes, "disabled") ? attributeText("disabled", "") : ""));
}

void PageWriter::writeMeta(const Node &element) {
    const auto attributes = m_page.attributesOf(element);
    const std::string name = toLower(trim(valueOf(attributes, "name")));
    if (std::ranges::find(kTold, name) != kTold.end())
        openTag(element, "meta",
                attributeText("name", name) +
                    attributeText("content", valueOf(attributes, "content")));
}

} // namespace nv
