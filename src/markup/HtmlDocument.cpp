#include "markup/HtmlDocument.h"

#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <functional>
#include <gumbo.h>

namespace nv {

namespace {

/// As the library counts them: the error texts of a damaged page would take many times its memory.
GumboOptions parserOptions() {
    GumboOptions options = kGumboDefaultOptions;
    options.max_errors = 0;
    return options;
}

bool isQuoted(std::string_view value) {
    return value.size() > 1 && (value.front() == '"' || value.front() == '\'') &&
           value.back() == value.front();
}

/// Where the value behind a name stands, quotation marks included; `end` is after it. The place
/// behind the name where there is none.
SourceSpan behindName(std::string_view html, SourceSpan name, std::size_t end) {
    constexpr std::string_view kBlanks = " \t\n\f\r";
    const SourceSpan none{name.end, name.end};
    const std::size_t sign = html.find_first_not_of(kBlanks, name.end);
    if (end > html.size() || sign == std::string_view::npos || sign >= end || html[sign] != '=')
        return none;
    const std::size_t begin = html.find_first_not_of(kBlanks, sign + 1);
    return begin < end ? SourceSpan{begin, end} : none;
}

std::string_view checked(std::string_view html, const std::filesystem::path &file) {
    const HtmlLimits limits;
    if (const std::string beyond = costOf(html, limits).beyond(limits); !beyond.empty())
        throw PageTooLarge(file, beyond);
    return html;
}

} // namespace

void HtmlDocument::Destroy::operator()(GumboInternalOutput *output) const {
    gumbo_destroy_output(&kGumboDefaultOptions, output);
}

PageTooLarge::PageTooLarge(const std::filesystem::path &file, std::string_view why)
    : std::runtime_error(fmt::format("{} is not read as a page: {}", textOf(file), why)) {}

HtmlDocument::HtmlDocument(std::string_view html) : m_html(html) {
    const GumboOptions options = parserOptions();
    m_output.reset(gumbo_parse_with_options(&options, html.data(), html.size()));
}

HtmlDocument::HtmlDocument(std::string_view html, const std::filesystem::path &file)
    : HtmlDocument(checked(html, file)) {}

std::optional<HtmlDocument> HtmlDocument::within(std::string_view html) {
    const HtmlLimits limits;
    if (!costOf(html, limits).beyond(limits).empty())
        return std::nullopt;
    return HtmlDocument(html);
}

std::optional<HtmlDoctype> HtmlDocument::doctype() const {
    const GumboDocument &document = m_output->document->v.document;
    if (!document.has_doctype)
        return std::nullopt;
    return HtmlDoctype{document.name, document.public_identifier, document.system_identifier};
}

bool HtmlDocument::isQuirky() const {
    return m_output->document->v.document.doc_type_quirks_mode == GUMBO_DOCTYPE_QUIRKS;
}

const HtmlDocument::Node &HtmlDocument::root() const {
    return *m_output->root;
}

const HtmlDocument::Node &HtmlDocument::document() const {
    return *m_output->document;
}

std::span<const HtmlDocument::Node *const> HtmlDocument::childrenOf(const Node &node) {
    if (!isElement(node) && node.type != GUMBO_NODE_DOCUMENT)
        return {};
    const GumboVector &children =
        node.type == GUMBO_NODE_DOCUMENT ? node.v.document.children : node.v.element.children;
    // What has no children has no array either.
    if (children.length == 0)
        return {};
    // The library keeps untyped pointers.
    return {reinterpret_cast<const Node *const *>(children.data), children.length};
}

bool HtmlDocument::isElement(const Node &node) {
    return node.type == GUMBO_NODE_ELEMENT || node.type == GUMBO_NODE_TEMPLATE;
}

std::string_view HtmlDocument::writtenIn(const Node &node) {
    const bool isText = node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE ||
                        node.type == GUMBO_NODE_CDATA;
    return isText ? std::string_view(node.v.text.text) : std::string_view();
}

bool HtmlDocument::isCdata(const Node &node) {
    return node.type == GUMBO_NODE_CDATA;
}

HtmlSpace HtmlDocument::spaceOf(const Node &element) {
    switch (element.v.element.tag_namespace) {
    case GUMBO_NAMESPACE_SVG:
        return HtmlSpace::svg;
    case GUMBO_NAMESPACE_MATHML:
        return HtmlSpace::mathMl;
    default:
        return HtmlSpace::html;
    }
}

std::string HtmlDocument::nameOf(const Node &element) {
    GumboStringPiece name = element.v.element.original_tag;
    gumbo_tag_from_original_text(&name);
    if (name.data && spaceOf(element) == HtmlSpace::svg)
        if (const char *proper = gumbo_normalize_svg_tagname(&name))
            return proper;
    if (element.v.element.tag != GUMBO_TAG_UNKNOWN)
        return gumbo_normalized_tagname(element.v.element.tag);
    return name.data ? toLower({name.data, name.length}) : std::string();
}

std::string_view HtmlDocument::plainNameOf(const Node &element) {
    return gumbo_normalized_tagname(element.v.element.tag);
}

std::optional<std::string_view> HtmlDocument::valueOf(const Node &element, const char *attribute) {
    const GumboAttribute *found = gumbo_get_attribute(&element.v.element.attributes, attribute);
    return found ? std::optional<std::string_view>(found->value) : std::nullopt;
}

bool HtmlDocument::isShadowTree(const Node &element) {
    if (element.type != GUMBO_NODE_TEMPLATE)
        return false;
    const auto mode = valueOf(element, "shadowrootmode");
    return mode && (equalsNoCase(*mode, "open") || equalsNoCase(*mode, "closed"));
}

std::vector<HtmlAttribute> HtmlDocument::attributesOf(const Node &element) const {
    std::vector<HtmlAttribute> attributes;
    const GumboVector &found = element.v.element.attributes;
    attributes.reserve(found.length);
    for (unsigned i = 0; i < found.length; ++i) {
        const auto &each = *static_cast<const GumboAttribute *>(found.data[i]);
        HtmlAttribute attribute;
        attribute.name = each.name;
        attribute.value = each.value;
        attribute.isPrefixed = each.attr_namespace != GUMBO_ATTR_NAMESPACE_NONE;
        attribute.nameAt = spanOf(each.original_name.data, each.original_name.length);
        if (attribute.nameAt.end > 0) {
            // Of a value that begins with "&" the library has the end right, and not the length.
            const std::size_t value = spanOf(each.original_value.data, 0).begin;
            attribute.valueAt =
                behindName(m_html, attribute.nameAt, value + each.original_value.length);
        }
        if (isQuoted(attribute.valueAt.in(m_html)))
            attribute.valueAt = {attribute.valueAt.begin + 1, attribute.valueAt.end - 1};
        attributes.push_back(attribute);
    }
    return attributes;
}

SourceSpan HtmlDocument::tagOf(const Node &element) const {
    const GumboStringPiece &tag = element.v.element.original_tag;
    return spanOf(tag.data, tag.length);
}

SourceSpan HtmlDocument::endTagOf(const Node &element) const {
    const GumboStringPiece &tag = element.v.element.original_end_tag;
    return spanOf(tag.data, tag.length);
}

SourceSpan HtmlDocument::textAt(const Node &text) const {
    if (isElement(text) || text.type == GUMBO_NODE_DOCUMENT)
        return {};
    const GumboStringPiece &written = text.v.text.original_text;
    return spanOf(written.data, written.length);
}

/// Nothing where the library points elsewhere, as it does for what it made by itself.
SourceSpan HtmlDocument::spanOf(const char *begin, std::size_t length) const {
    const std::less<> isBefore;
    if (!begin || isBefore(begin, m_html.data()) ||
        isBefore(m_html.data() + m_html.size(), begin + length))
        return {};
    const auto at = static_cast<std::size_t>(begin - m_html.data());
    return {at, at + length};
}

} // namespace nv
