#include "rebuild/exact/PageReferences.h"

#include "base/Text.h"
#include "markup/PlainSelects.h"
#include "rebuild/exact/ElementScan.h"
#include "rebuild/exact/PagePlaces.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace nv {

namespace {

using Node = HtmlDocument::Node;
using Addresses = std::unordered_set<std::string>;

std::size_t beginOf(const Reference &reference) {
    return reference.at.begin;
}

/// Stands wherever a script may, shows nothing, and counts as an element in styles.
constexpr std::string_view kInert = "<template></template>";

class PageWalk {
  public:
    PageWalk(std::string_view html, HtmlDocument page, int depth)
        : m_html(html), m_page(std::move(page)), m_elements(m_page, html, depth, m_scan),
          m_firstList(html.find("<" + std::string(kPlainSelect))) {}

    PageScan scan();

  private:
    /// Whether what the element holds is read as well.
    bool enter(const Node &element);
    bool enterScript(const Node &script, HtmlSpace space);
    void enterNoscript(const Node &noscript);
    void closeText(const Node &element, std::string_view name);
    void closeText(const Node &text, bool isStyle);
    void settleNoscripts();
    bool isShownAlready(SourceSpan picture, const Addresses &lazy) const;
    bool isInNoscript(SourceSpan tag) const;

    std::string_view m_html;
    PageScan m_scan;
    HtmlDocument m_page;
    ElementScan m_elements;
    std::vector<SourceSpan> m_noscripts;     ///< with their tags
    std::vector<SourceSpan> m_pictures;      ///< tags of "img"
    std::size_t m_firstList;                 ///< npos for none
    std::unordered_set<std::size_t> m_taken; ///< places of tags that were taken off
};

/// Up to its end tag; a script that isn't ended goes on to the end of the page.
bool PageWalk::enterScript(const Node &script, HtmlSpace space) {
    const SourceSpan tag = m_page.tagOf(script);
    const SourceSpan end = m_page.endTagOf(script);
    const bool isSelfClosed = tag.in(m_html).ends_with("/>");
    if (tag.begin == tag.end || !m_taken.insert(tag.begin).second)
        return false;
    if (end.end > tag.end) {
        m_scan.disarming.push_back({{tag.begin, end.end}, std::string(kInert)});
    } else if (space == HtmlSpace::html) {
        m_scan.disarming.push_back({{tag.begin, m_html.size()}, std::string(kInert)});
    } else {
        m_scan.disarming.push_back({tag, isSelfClosed ? "<g/>" : "<g>"});
        return true;
    }
    return false;
}

/// Without scripts its parts are parts of the page.
void PageWalk::enterNoscript(const Node &noscript) {
    const SourceSpan tag = m_page.tagOf(noscript);
    const SourceSpan end = m_page.endTagOf(noscript);
    if (tag.begin == tag.end || !m_taken.insert(tag.begin).second)
        return;
    m_scan.disarming.push_back({tag, {}});
    if (end.begin >= tag.end && end.end > end.begin) {
        m_scan.disarming.push_back({end, {}});
        m_noscripts.push_back({tag.begin, end.end});
    }
}

bool PageWalk::enter(const Node &element) {
    const std::string name = HtmlDocument::nameOf(element);
    const HtmlSpace space = HtmlDocument::spaceOf(element);
    if (name == "script")
        return enterScript(element, space);
    m_elements.read(element, name);
    closeText(element, name);
    if (name == "img")
        m_pictures.push_back(m_page.tagOf(element));
    if (name == "style" && space != HtmlSpace::mathMl) {
        m_elements.readStyle(element);
        return false;
    }
    if (space != HtmlSpace::html)
        return true;
    if (name == "noscript")
        enterNoscript(element);
    // What a template holds isn't shown, but as the tree that stands in an element's shadow.
    return name != "template" || HtmlDocument::isShadowTree(element);
}

/// Old browsers pass over most tags in a list, those of styles too, and read as tags what stands as
/// text for browsers of today. For both it is the same without such tags.
void PageWalk::closeText(const Node &element, std::string_view name) {
    constexpr std::array<std::string_view, 7> kTexts = {"style",   "title",    "xmp",      "iframe",
                                                        "noembed", "noframes", "plaintext"};
    if (m_page.tagOf(element).end <= m_firstList)
        return;
    const bool isText = std::ranges::find(kTexts, name) != kTexts.end();
    for (const Node *child : HtmlDocument::childrenOf(element))
        if (!HtmlDocument::isElement(*child) && (isText || HtmlDocument::isCdata(*child)))
            closeText(*child, name == "style");
}

void PageWalk::closeText(const Node &text, bool isStyle) {
    const SourceSpan at = m_page.textAt(text);
    const std::string_view written = at.in(m_html);
    for (std::size_t i = 0; (i = written.find('<', i)) != std::string_view::npos; ++i) {
        const char next = i + 1 < written.size() ? toLower(written.substr(i + 1, 1))[0] : ' ';
        if (next >= 'a' && next <= 'z')
            m_scan.disarming.push_back({{at.begin + i, at.begin + i + 1}, isStyle ? "\\3C " : " "});
    }
}

/// Whether the picture is shown without the "noscript" that it stands in, since it was lazy.
bool PageWalk::isShownAlready(SourceSpan picture, const Addresses &lazy) const {
    const auto first = std::ranges::lower_bound(m_scan.references, picture.begin, {}, beginOf);
    for (auto each = first; each != m_scan.references.end() && each->at.end <= picture.end; ++each)
        if (each->element == "img" && lazy.contains(each->address))
            return true;
    return false;
}

/// They are in the order of the text, and what lies in another one is gone.
bool PageWalk::isInNoscript(SourceSpan tag) const {
    const auto after = std::ranges::upper_bound(m_noscripts, tag.begin, {}, &SourceSpan::begin);
    return after != m_noscripts.begin() && tag.end <= std::prev(after)->end;
}

/// The rest of a "noscript" stays, whatever it says.
void PageWalk::settleNoscripts() {
    Addresses lazy;
    for (const Reference &reference : m_scan.references)
        if (reference.isLazy)
            lazy.insert(reference.address);
    std::ranges::sort(m_noscripts, {}, &SourceSpan::begin);
    std::size_t done = 0;
    std::erase_if(m_noscripts, [&done](const SourceSpan &noscript) {
        const bool isWithin = noscript.begin < done;
        done = std::max(done, noscript.end);
        return isWithin;
    });
    std::vector<SourceSpan> gone;
    for (const SourceSpan &picture : m_pictures)
        if (picture.begin < picture.end && isInNoscript(picture) && isShownAlready(picture, lazy))
            gone.push_back(picture);
    std::ranges::sort(gone, {}, &SourceSpan::begin);
    for (const SourceSpan &picture : gone)
        m_scan.disarming.push_back({picture, {}});
    std::erase_if(m_scan.references, [&gone](const Reference &reference) {
        const auto after =
            std::ranges::upper_bound(gone, reference.at.begin, {}, &SourceSpan::begin);
        return after != gone.begin() && reference.at.end <= std::prev(after)->end;
    });
}

PageScan PageWalk::scan() {
    std::vector<const Node *> open{&m_page.root()};
    while (!open.empty()) {
        const Node *node = open.back();
        open.pop_back();
        if (!HtmlDocument::isElement(*node) || !enter(*node))
            continue;
        const auto children = HtmlDocument::childrenOf(*node);
        open.insert(open.end(), children.rbegin(), children.rend());
    }
    std::ranges::stable_sort(m_scan.references, {}, beginOf);
    settleNoscripts();
    findPlaces(m_page, m_html, m_scan);
    m_scan.isQuirky = m_page.isQuirky();
    for (Reference &reference : m_scan.references)
        if (reference.element == kPlainSelect)
            reference.element = "select";
    return std::move(m_scan);
}

} // namespace

std::optional<PageScan> scanWithin(std::string_view html, int depth) {
    const std::string plain = withPlainSelects(html);
    const std::string_view read = plain.empty() ? html : std::string_view(plain);
    auto page = HtmlDocument::within(read);
    if (!page)
        return std::nullopt;
    return PageWalk(read, std::move(*page), depth).scan();
}

PageScan scanPage(std::string_view html, const std::filesystem::path &file) {
    const std::string plain = withPlainSelects(html);
    const std::string_view read = plain.empty() ? html : std::string_view(plain);
    return PageWalk(read, HtmlDocument(read, file), 0).scan();
}

} // namespace nv
