#pragma once

#include "markup/HtmlDocument.h"
#include "rebuild/exact/TextEdit.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Attributes of a page as a list of an element's own.
using HtmlAttributes = std::vector<HtmlAttribute>;

/// The first of that name without a prefix; null for none.
const HtmlAttribute *attributeOf(const HtmlAttributes &attributes, std::string_view name);
/// Its value without blanks at the ends; empty for none.
std::string_view valueOf(const HtmlAttributes &attributes, std::string_view name);

/// Edits of a page's attributes that keep all around them as it is understood.
class AttributeEdits {
  public:
    /// Both must outlive it.
    AttributeEdits(std::string_view html, std::vector<TextEdit> &edits)
        : m_html(html), m_edits(edits) {}

    /// `value` stands for itself in any quotation marks or none.
    void set(const HtmlAttribute &attribute, std::string_view value);
    /// Leaves the attribute there, so that a second one of its name doesn't take its place.
    void empty(const HtmlAttribute &attribute) { set(attribute, {}); }
    void rename(const HtmlAttribute &attribute, std::string_view name);
    /// Gives it a name that means nothing to browsers.
    void shelve(const HtmlAttribute &attribute);
    void replace(SourceSpan at, std::string text);
    /// Whether its value stands in quotation marks.
    bool isQuoted(const HtmlAttribute &attribute) const;

  private:
    std::string_view m_html;
    std::vector<TextEdit> &m_edits;
};

} // namespace nv
