#pragma once

#include "markup/HtmlDocument.h"
#include "reports/pages/AllowedHtml.h"
#include "reports/pages/SafePage.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A text between tags or in an attribute's quotation marks, in a form that HTML and XML read
/// alike. Control characters, which XML doesn't know, are left out.
std::string markupText(std::string_view text);

/// The head of each guarded page up to what the page itself has there.
std::string_view guardOfHead();

/// Of formatting that is left open the parser makes copies: a page that is longer once it is
/// written isn't written whole. In bytes.
inline constexpr std::size_t kLongestPage = std::size_t{64} << 20;

/// What is left out besides, where a page can't be written so that reading it gives the same again.
enum class Detail : std::uint8_t { all, plain };

/// Writes the tree of a page: one form for each thing, and nothing that isn't known. Only elements
/// without anything between their tags, or with text in which no "<" stands, are left of those in
/// which browsers look for no tags; so the tags are the same however the page is read.
class PageWriter {
  public:
    /// Both must outlive it.
    PageWriter(const HtmlDocument &page, const References &references, PageForm form, Detail detail)
        : m_page(page), m_references(references), m_form(form), m_detail(detail) {}

    /// The part of the tree below `root`, and itself; cut short after kLongestPage.
    std::string write(const HtmlDocument::Node &root);
    std::string doctype() const;

  private:
    using Node = HtmlDocument::Node;
    struct Step {
        const Node *node;
        std::size_t next; ///< 0-based, of its children
        std::string end;  ///< empty for an element that isn't written
    };

    void enter(const Node &node);
    void enterElement(const Node &element);
    void keep(const Node &element, std::string_view name, std::string_view inside = {});
    void writeText(std::string_view text);
    void writeWithText(const Node &element, std::string_view name);
    void writeEmbedded(const Node &element, std::string_view name);
    void writeStyle(const Node &element);
    void writeLink(const Node &element);
    void writeMeta(const Node &element);
    void openTag(const Node &element, std::string_view name, std::string_view attributes);
    std::string attributesOf(const Node &element, std::string_view name) const;
    std::string attributeOf(const Node &element, std::string_view name,
                            const HtmlAttribute &attribute) const;
    std::string candidatesOf(std::string_view srcset) const;
    std::string referenceOf(const Node &element, std::string_view name,
                            const HtmlAttribute &attribute) const;
    std::string addressOf(std::string_view name, std::string_view attribute, std::string_view value,
                          Use use) const;
    std::string textWithin(const Node &element) const;
    std::string guardHere() const;
    Fate fateHere(const Node &element, std::string_view name) const;

    const HtmlDocument &m_page;
    const References &m_references;
    PageForm m_form;
    Detail m_detail;
    std::string m_text;
    std::vector<Step> m_path;
    std::size_t m_lineEaten = std::string::npos; ///< a line break here would be none
};

} // namespace nv
