#pragma once

#include "markup/HtmlCost.h"
#include "markup/SourceSpan.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

struct GumboInternalNode;
struct GumboInternalOutput;

namespace nv {

/// A page that is beyond a limit; the message names both.
class PageTooLarge : public std::runtime_error {
  public:
    PageTooLarge(const std::filesystem::path &file, std::string_view why);
};

/// A document type, which decides whether browsers show a page by the rules or as old ones did.
struct HtmlDoctype {
    std::string_view name;
    std::string_view publicId;
    std::string_view systemId;
};

enum class HtmlSpace : std::uint8_t { html, svg, mathMl };

/// An attribute as the parser understood it, and where it stands.
struct HtmlAttribute {
    std::string_view name;   ///< in lower case, but for those of SVG that have capitals; no prefix
    std::string_view value;  ///< with its character references read
    bool isPrefixed = false; ///< "xlink:", "xml:" or "xmlns:"
    SourceSpan nameAt;
    SourceSpan valueAt; ///< without quotation marks; empty where there is none
};

/// A page as browsers read it: the tree of an HTML5 parser, whose parts know where they stand in
/// the text. What a part says lives as long as the document.
class HtmlDocument {
  public:
    using Node = GumboInternalNode;

    /// `html` is UTF-8 and must outlive the document; `file` is its name in failures. Throws
    /// PageTooLarge.
    HtmlDocument(std::string_view html, const std::filesystem::path &file);
    /// The same; nothing for a page that is beyond a limit.
    static std::optional<HtmlDocument> within(std::string_view html);

    std::optional<HtmlDoctype> doctype() const;
    /// Whether browsers show it as old ones did.
    bool isQuirky() const;

    /// The element "html", which every page has.
    const Node &root() const;
    /// The whole, with comments and what stands in front of the root.
    const Node &document() const;

    static std::span<const Node *const> childrenOf(const Node &node);
    static bool isElement(const Node &node);
    /// Text that isn't part of a comment; empty for anything else.
    static std::string_view writtenIn(const Node &node);
    /// Whether a text stands in "<![CDATA[", where nothing is a character reference.
    static bool isCdata(const Node &node);
    static HtmlSpace spaceOf(const Node &element);
    /// In lower case, but for elements of SVG that have capitals.
    static std::string nameOf(const Node &element);
    /// Its name as one of HTML's, whatever its namespace; empty for a name that HTML doesn't know.
    static std::string_view plainNameOf(const Node &element);
    std::vector<HtmlAttribute> attributesOf(const Node &element) const;
    /// Where its start tag and its end tag stand, brackets included; empty for one that the parser
    /// made by itself. Copies of a formatting element stand where the first one does.
    SourceSpan tagOf(const Node &element) const;
    SourceSpan endTagOf(const Node &element) const;
    /// Where a text stands; for a comment, all of it. Empty for an element.
    SourceSpan textAt(const Node &text) const;
    /// Whether it is a "template" of which browsers make a tree in the shadow of what holds it. It
    /// shows in place of the rest.
    static bool isShadowTree(const Node &element);
    /// The value of the first attribute of that name, with a prefix or without.
    static std::optional<std::string_view> valueOf(const Node &element, const char *attribute);

  private:
    explicit HtmlDocument(std::string_view html);

    struct Destroy {
        void operator()(GumboInternalOutput *output) const;
    };
    SourceSpan spanOf(const char *begin, std::size_t length) const;

    std::string_view m_html;
    std::unique_ptr<GumboInternalOutput, Destroy> m_output;
};

} // namespace nv
