#include "rebuild/exact/PageReferences.h"

#include "base/Text.h"
#include "rebuild/exact/ElementScan.h"
#include "rebuild/exact/PagePlaces.h"

#include <algorithm>
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
        : m_html(html), m_page(std::move(page)), m_elements(m_page, html, depth, m_scan) {}

    PageScan scan();

  private:
    /// Whether what the element holds is read as well.
    bool enter(const Node &element);
    bool enterScript(const Node &script, HtmlSpace space);
    void enterNoscript(const Node &noscript);
    void settleNoscripts();
    bool isShownAlready(SourceSpan noscript, const Addresses &lazy) const;

    std::string_view m_html;
    PageScan m_scan;
    HtmlDocument m_page;
    ElementScan m_elements;
    std::vector<SourceSpan> m_noscripts;     ///< with their tags
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
    if (name == "style" && space != HtmlSpace::mathMl) {
        m_elements.readStyle(element);
        return false;
    }
    if (space != HtmlSpace::html)
        return true;
    if (name == "noscript")
        enterNoscript(element);
    // What a template holds isn't shown, but as the tree that stands in an element's shadow.
    return name != "template" || HtmlDocument::valueOf(element, "shadowrootmode");
}

/// Whether it only shows pictures that are shown without it now, since they were lazy.
bool PageWalk::isShownAlready(SourceSpan noscript, const Addresses &lazy) const {
    const auto first = std::ranges::lower_bound(m_scan.references, noscript.begin, {}, beginOf);
    bool hasPicture = false;
    for (auto each = first; each != m_scan.references.end() && each->at.end <= noscript.end;
         ++each) {
        if (each->element != "img")
            continue;
        if (!lazy.contains(each->address))
            return false;
        hasPicture = true;
    }
    return hasPicture;
}

void PageWalk::settleNoscripts() {
    Addresses lazy;
    for (const Reference &reference : m_scan.references)
        if (reference.isLazy)
            lazy.insert(reference.address);
    std::ranges::sort(m_noscripts, {}, &SourceSpan::begin);
    std::vector<SourceSpan> gone;
    std::size_t done = 0;
    for (const SourceSpan &noscript : m_noscripts) {
        if (noscript.begin < done)
            continue;
        done = noscript.end;
        if (!isShownAlready(noscript, lazy))
            continue;
        gone.push_back(noscript);
        m_scan.disarming.push_back({noscript, {}});
    }
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
    return std::move(m_scan);
}

} // namespace

std::optional<PageScan> scanWithin(std::string_view html, int depth) {
    auto page = HtmlDocument::within(html);
    if (!page)
        return std::nullopt;
    return PageWalk(html, std::move(*page), depth).scan();
}

PageScan scanPage(std::string_view html, const std::filesystem::path &file) {
    return PageWalk(html, HtmlDocument(html, file), 0).scan();
}

} // namespace nv
