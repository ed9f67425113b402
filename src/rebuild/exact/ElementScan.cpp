#include "rebuild/exact/ElementScan.h"

#include "base/Text.h"
#include "markup/SrcSet.h"
#include "rebuild/exact/BasePolicy.h"
#include "rebuild/exact/LazyParts.h"
#include "rebuild/exact/PageAttributes.h"
#include "rebuild/exact/Spelling.h"
#include "rebuild/exact/StyleReferences.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

/// Pages in "srcdoc" within one another; what lies deeper is emptied.
constexpr int kDeepestSrcdoc = 4;
/// Content policies that say something of the base; what more of them say isn't read.
constexpr std::size_t kMostBaseSources = 16;

bool isScript(std::string_view address) {
    std::string start(trimmedAddress(address).substr(0, 64));
    std::erase_if(start, [](char c) { return c == '\t' || c == '\n' || c == '\r'; });
    return startsWithNoCase(start, "javascript:") || startsWithNoCase(start, "vbscript:");
}

} // namespace

ElementScan::ElementScan(const HtmlDocument &page, std::string_view html, int depth, PageScan &scan)
    : m_page(page), m_html(html), m_depth(depth), m_scan(scan), m_edits(html, scan.disarming) {}

/// Without those that were read already: the parser makes copies of elements, and puts the
/// attributes of a second "body" to the first one.
HtmlAttributes ElementScan::newAttributesOf(const Node &element) {
    HtmlAttributes attributes = m_page.attributesOf(element);
    std::erase_if(attributes, [this](const HtmlAttribute &attribute) {
        const SourceSpan name = attribute.nameAt;
        return name.begin == name.end || attribute.valueAt.begin < name.end ||
               !m_seen.insert(name.begin).second;
    });
    return attributes;
}

std::optional<MeantText> ElementScan::meant(const HtmlAttribute &attribute) const {
    return MeantText::of(attribute.valueAt.in(m_html), attribute.value, attribute.valueAt.begin);
}

void ElementScan::read(const Node &element, std::string_view name) {
    const HtmlAttributes attributes = newAttributesOf(element);
    for (const HtmlAttribute &attribute : attributes)
        if (!attribute.isPrefixed)
            disarm(name, attribute);
    if (const HtmlAttribute *style = attributeOf(attributes, "style"))
        readStyleAttribute(name, *style);
    const std::size_t first = m_scan.references.size();
    if (HtmlDocument::spaceOf(element) == HtmlSpace::html)
        readHtml(name, attributes);
    else if (HtmlDocument::spaceOf(element) == HtmlSpace::svg)
        readSvg(name, attributes);
    if (name == "object" || name == "embed")
        readObject(element, attributes, first);
}

namespace {

/// What an element shows where its own thing doesn't show.
bool holdsFallback(const HtmlDocument::Node &element) {
    const auto children = HtmlDocument::childrenOf(element);
    return std::ranges::any_of(children, [](const HtmlDocument::Node *child) {
        return HtmlDocument::isElement(*child) ? HtmlDocument::nameOf(*child) != "param"
                                               : !trim(HtmlDocument::writtenIn(*child)).empty();
    });
}

} // namespace

/// Completes its references, which begin at `first`.
void ElementScan::readObject(const Node &element, const HtmlAttributes &attributes,
                             std::size_t first) {
    for (std::size_t at = first; at < m_scan.references.size(); ++at) {
        Reference &reference = m_scan.references[at];
        reference.hasFallback = reference.use == RefUse::object && holdsFallback(element);
        reference.codebase = trimmedAddress(valueOf(attributes, "codebase"));
    }
}

void ElementScan::disarm(std::string_view name, const HtmlAttribute &attribute) {
    const bool isLazy = attribute.name == "loading" && (name == "img" || name == "iframe");
    if (isLazy || isHandler(attribute.name) || isFetchedUnseen(attribute.name))
        m_edits.empty(attribute);
    else if (attribute.name == "crossorigin")
        m_edits.shelve(attribute); // the files of a folder are of no origin
}

void ElementScan::readHtml(std::string_view name, const HtmlAttributes &attributes) {
    m_isInHead = m_isInHead && name != "body" && name != "frameset";
    if (name == "link")
        return readLink(attributes);
    if (name == "meta")
        return readMeta(attributes);
    if (name == "base")
        return readBase(attributes);
    const HtmlAttribute *srcdoc = name == "iframe" ? attributeOf(attributes, "srcdoc") : nullptr;
    if (srcdoc)
        return readFrameText(*srcdoc);
    if (name == "input" && !equalsNoCase(valueOf(attributes, "type"), "image"))
        return;
    readTable(name, attributes, readLazy(name, attributes));
    const HtmlAttribute *background = lazyBackground(attributes);
    const HtmlAttribute *style = attributeOf(attributes, "style");
    if (background && style)
        addBackground(name, *background, *style);
    else if (background)
        readBackground(name, *background);
}

/// Brings what a script would have shown to its place; tells which attributes made room for it.
HtmlAttributes ElementScan::readLazy(std::string_view name, const HtmlAttributes &attributes) {
    HtmlAttributes room;
    for (const LazyPart &part : lazyParts(name, attributes)) {
        const HtmlAttribute *shown = part.placeholder;
        const auto use = useOfAttribute(name, part.target);
        const bool isList = part.target == "srcset";
        if (shown)
            room.push_back(*shown);
        if (shown && use && !isList && shown->valueAt.begin < shown->valueAt.end &&
            isFollowed(part.lazy->value)) {
            m_edits.shelve(*part.lazy);
            addAddress(*use, name, *part.lazy, shown->valueAt);
            continue;
        }
        if (shown)
            m_edits.shelve(*shown);
        m_edits.rename(*part.lazy, part.target);
        if (isList)
            addCandidates(name, *part.lazy, true);
        else if (use)
            addAddress(*use, name, *part.lazy, part.lazy->valueAt);
    }
    return room;
}

void ElementScan::readTable(std::string_view name, const HtmlAttributes &attributes,
                            const HtmlAttributes &passed) {
    for (const HtmlAttribute &attribute : attributes) {
        if (attribute.isPrefixed || attributeOf(passed, attribute.name))
            continue;
        const auto use = useOfAttribute(name, attribute.name);
        if (!use)
            continue;
        if (attribute.name == "srcset")
            addCandidates(name, attribute);
        else
            addAddress(*use, name, attribute);
    }
}

/// The background becomes a style, of which its address is a part.
void ElementScan::readBackground(std::string_view name, const HtmlAttribute &lazy) {
    const auto text = meant(lazy);
    if (!text)
        return;
    const bool isValue = containsNoCase(text->text(), "url(");
    std::vector<Reference> found =
        referencesOfValue("background-image", isValue ? text->text() : std::string());
    if (!isValue) {
        const std::string_view address = trimmedAddress(text->text());
        const auto begin = static_cast<std::size_t>(address.data() - text->text().data());
        Reference reference;
        reference.form = RefForm::styleUrl;
        reference.address = address;
        reference.at = {begin, begin + address.size()};
        found.push_back(std::move(reference));
    }
    for (Reference &reference : found) {
        reference.attribute = lazy.name;
        reference.isLazy = true;
    }
    const auto [begin, end] = lazy.valueAt;
    m_edits.rename(lazy, "style");
    m_edits.replace({begin, begin}, isValue ? "background-image:" : "background-image:url(");
    if (!isValue)
        m_edits.replace({end, end}, ")");
    addStyles(std::move(found), *text, name);
}

/// As a script would have done it: behind what the element's own style says.
void ElementScan::addBackground(std::string_view name, const HtmlAttribute &lazy,
                                const HtmlAttribute &style) {
    if (style.valueAt.begin <= style.nameAt.end)
        return; // there is no place in it
    const std::vector<Reference> named = containsNoCase(lazy.value, "url(")
                                             ? referencesOfValue("background-image", lazy.value)
                                             : std::vector<Reference>(1);
    for (Reference reference : named) {
        if (reference.address.empty())
            reference.address = trimmedAddress(lazy.value);
        reference.form = RefForm::styleUrl;
        reference.element = name;
        reference.attribute = lazy.name;
        reference.isLazy = true;
        reference.at = {style.valueAt.end, style.valueAt.end};
        reference.before = ";background-image:url(";
        reference.after = ")";
        m_scan.references.push_back(std::move(reference));
        return;
    }
}

void ElementScan::readBase(const HtmlAttributes &attributes) {
    const HtmlAttribute *href = attributeOf(attributes, "href");
    if (!href)
        return;
    if (!std::exchange(m_hasBase, true))
        m_scan.base = trimmedAddress(href->value);
    m_edits.empty(*href);
}

/// It holds for what stands behind it, and in the head only.
void ElementScan::readPolicy(std::string_view policy) {
    auto sources = m_isInHead && !m_hasBase && m_scan.baseSources.size() < kMostBaseSources
                       ? baseSourcesOf(policy)
                       : std::nullopt;
    if (sources)
        m_scan.baseSources.push_back(*std::move(sources));
}

void ElementScan::readMeta(const HtmlAttributes &attributes) {
    const HtmlAttribute *act = attributeOf(attributes, "http-equiv");
    if (act && equalsNoCase(trim(act->value), "content-security-policy"))
        readPolicy(valueOf(attributes, "content"));
    if (act && isDisarmedMeta(toLower(trim(act->value))))
        m_edits.empty(*act);
    const HtmlAttribute *name = attributeOf(attributes, "name");
    if (name && equalsNoCase(trim(name->value), "referrer"))
        m_edits.empty(*name);
}

void ElementScan::readLink(const HtmlAttributes &attributes) {
    const HtmlAttribute *href = attributeOf(attributes, "href");
    const HtmlAttribute *relation = attributeOf(attributes, "rel");
    if (!href || !relation)
        return;
    const LinkKind kind = linkKind(attributes);
    if (kind == LinkKind::fetched) {
        m_edits.empty(*href);
    } else if (kind == LinkKind::icon) {
        addAddress(RefUse::icon, "link", *href);
    } else if (kind == LinkKind::style || kind == LinkKind::lateStyle) {
        // A script would have made a style of what was loaded ahead, or for printers only.
        if (kind == LinkKind::lateStyle)
            m_edits.set(*relation, "stylesheet");
        if (const HtmlAttribute *media = lateMedia(attributes))
            m_edits.set(*media, "all");
        addAddress(RefUse::style, "link", *href,
                   kind == LinkKind::lateStyle ? std::optional(href->valueAt) : std::nullopt);
    }
}

void ElementScan::readFrameText(const HtmlAttribute &srcdoc) {
    const auto text = meant(srcdoc);
    auto within =
        text && m_depth < kDeepestSrcdoc ? scanWithin(text->text(), m_depth + 1) : std::nullopt;
    if (!within)
        return m_edits.empty(srcdoc);
    for (Reference &reference : within->references) {
        reference.at = text->inPage(reference.at);
        ++reference.nested;
        if (reference.base.empty())
            reference.base = within->base;
        m_scan.references.push_back(std::move(reference));
    }
    for (const TextEdit &edit : within->disarming)
        m_edits.replace(text->inPage(edit.at), attributeValue(edit.text));
}

void ElementScan::readSvg(std::string_view name, const HtmlAttributes &attributes) {
    const HtmlAttribute *href = attributeOf(attributes, "href");
    if (!href) {
        const auto prefixed = std::ranges::find(attributes, "href", &HtmlAttribute::name);
        href = prefixed == attributes.end() ? nullptr : &*prefixed;
    }
    if (href && isSvgDrawing(name))
        addAddress(RefUse::svg, name, *href);
    else if (href && name == "a")
        addAddress(RefUse::link, name, *href);
    // An animation may give another address to what it moves.
    if (const HtmlAttribute *moved = attributeOf(attributes, "attributeName");
        moved && containsNoCase(moved->value, "href"))
        m_edits.empty(*moved);
    for (const HtmlAttribute &attribute : attributes) {
        if (attribute.isPrefixed || !isSvgPaint(attribute.name))
            continue;
        if (const auto text = meant(attribute))
            addStyles(referencesOfValue(attribute.name, text->text()), *text, name);
    }
}

void ElementScan::readStyleAttribute(std::string_view name, const HtmlAttribute &attribute) {
    if (const auto text = meant(attribute))
        addStyles(referencesOfDeclarations(text->text()), *text, name);
}

void ElementScan::readStyle(const Node &style) {
    const auto type = HtmlDocument::valueOf(style, "type");
    if (type && !trim(*type).empty() && !equalsNoCase(trim(*type), "text/css"))
        return;
    for (const Node *child : HtmlDocument::childrenOf(style)) {
        SourceSpan at = m_page.textAt(*child);
        const bool isCdata = HtmlDocument::isCdata(*child);
        constexpr std::string_view kOpen = "<![CDATA[";
        constexpr std::string_view kClose = "]]>";
        if (isCdata && at.in(m_html).starts_with(kOpen))
            at.begin += kOpen.size();
        if (isCdata && at.in(m_html).ends_with(kClose))
            at.end -= kClose.size();
        const bool isRaw = isCdata || HtmlDocument::spaceOf(style) == HtmlSpace::html;
        const auto text =
            MeantText::of(at.in(m_html), HtmlDocument::writtenIn(*child), at.begin,
                          isRaw ? MeantText::Kind::plain : MeantText::Kind::attribute);
        if (text)
            addStyles(scanStyle(text->text()), *text, "style");
    }
}

void ElementScan::addAddress(RefUse use, std::string_view name, const HtmlAttribute &attribute,
                             std::optional<SourceSpan> lazyPlace) {
    if (isScript(attribute.value))
        return use == RefUse::link ? m_edits.set(attribute, "#") : m_edits.empty(attribute);
    const auto text = meant(attribute);
    if (!text || !isFollowed(text->text()))
        return;
    const std::string_view address = trimmedAddress(text->text());
    const auto begin = static_cast<std::size_t>(address.data() - text->text().data());
    Reference reference;
    reference.use = use;
    reference.element = name;
    reference.attribute = attribute.name;
    reference.address = address;
    const bool isHere = !lazyPlace || *lazyPlace == attribute.valueAt;
    reference.at = isHere ? text->inPage({begin, begin + address.size()}) : *lazyPlace;
    reference.isLazy = lazyPlace.has_value();
    reference.isQuoted = m_edits.isQuoted(attribute);
    if (use == RefUse::track)
        reference.place = RefPlace::inside;
    m_scan.references.push_back(std::move(reference));
}

void ElementScan::addCandidates(std::string_view name, const HtmlAttribute &attribute,
                                bool isLazy) {
    const auto text = meant(attribute);
    if (!text)
        return;
    for (SrcSetCandidate &candidate : srcSetCandidates(text->text())) {
        const std::string_view address = candidate.at.in(text->text());
        if (!isFollowed(address))
            continue;
        Reference reference;
        reference.form = RefForm::srcset;
        reference.element = name;
        reference.attribute = attribute.name;
        reference.address = address;
        reference.at = text->inPage(candidate.at);
        reference.isLazy = isLazy;
        reference.descriptor = std::move(candidate.descriptor);
        m_scan.references.push_back(std::move(reference));
    }
}

void ElementScan::addStyles(std::vector<Reference> found, const MeantText &text,
                            std::string_view element) {
    for (Reference &reference : found) {
        reference.element = element;
        reference.at = text.inPage(reference.at);
        m_scan.references.push_back(std::move(reference));
    }
}

} // namespace nv
