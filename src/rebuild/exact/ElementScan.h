#pragma once

#include "markup/HtmlDocument.h"
#include "rebuild/exact/AttributeEdits.h"
#include "rebuild/exact/MeantText.h"
#include "rebuild/exact/PageReferences.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace nv {

/// Reads the attributes of a page's elements, and its styles, into what is known of the page.
class ElementScan {
  public:
    /// All must outlive it. `depth` counts the pages in "srcdoc" that this one stands in.
    ElementScan(const HtmlDocument &page, std::string_view html, int depth, PageScan &scan);

    using Node = HtmlDocument::Node;

    void read(const Node &element, std::string_view name);
    void readStyle(const Node &style);

  private:
    void readHtml(std::string_view name, const HtmlAttributes &attributes);
    void readSvg(std::string_view name, const HtmlAttributes &attributes);
    void readTable(std::string_view name, const HtmlAttributes &attributes,
                   const HtmlAttributes &passed);
    HtmlAttributes readLazy(std::string_view name, const HtmlAttributes &attributes);
    void readLink(const HtmlAttributes &attributes);
    void readMeta(const HtmlAttributes &attributes);
    void readPolicy(std::string_view policy);
    void readBase(const HtmlAttributes &attributes);
    void readFrameText(const HtmlAttribute &srcdoc);
    void disarm(std::string_view name, const HtmlAttribute &attribute);
    void readStyleAttribute(std::string_view name, const HtmlAttribute &attribute);
    void readBackground(std::string_view name, const HtmlAttribute &lazy);
    void addBackground(std::string_view name, const HtmlAttribute &lazy,
                       const HtmlAttribute &style);
    void readObject(const Node &element, const HtmlAttributes &attributes, std::size_t first);

    /// `lazyPlace` is where the address of a lazy part is to stand.
    void addAddress(RefUse use, std::string_view name, const HtmlAttribute &attribute,
                    std::optional<SourceSpan> lazyPlace = std::nullopt);
    void addCandidates(std::string_view name, const HtmlAttribute &attribute, bool isLazy = false);
    void addStyles(std::vector<Reference> found, const MeantText &text, std::string_view element);
    HtmlAttributes newAttributesOf(const Node &element);
    std::optional<MeantText> meant(const HtmlAttribute &attribute) const;

    const HtmlDocument &m_page;
    std::string_view m_html;
    int m_depth;
    PageScan &m_scan;
    AttributeEdits m_edits;
    bool m_hasBase = false;
    bool m_isInHead = true;
    std::unordered_set<std::size_t> m_seen; ///< the places of attributes: elements are copied
};

/// scanPage() for a page in so many "srcdoc" attributes; nothing for one beyond a limit.
std::optional<PageScan> scanWithin(std::string_view html, int depth);

} // namespace nv
