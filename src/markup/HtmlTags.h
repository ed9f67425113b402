#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nv {

/// One start or end tag of a page.
struct HtmlTag {
    std::string_view name; ///< as it stands in the text, which must outlive it
    bool isEnd = false;
    std::size_t attributes = 0;
    std::size_t size = 0; ///< bytes, with its brackets
};

/// Finds the tags of a page in one pass, at the same places as an HTML parser's tokenizer: comments
/// and declarations are passed over, ">" in quotes ends no tag. Builds nothing.
class HtmlTags {
  public:
    explicit HtmlTags(std::string_view html) : m_html(html) {}

    /// False at the end of the page, where a tag without its ">" is none. To `text` is added what
    /// is passed over and is neither comment nor declaration, each "<" of it as "&lt;".
    bool next(HtmlTag &tag, std::string *text = nullptr);
    /// Passes over the text of `name` (a script, a style, a title), in which nothing is a tag.
    void skipText(std::string_view name);
    /// What next() hasn't reached yet.
    std::string_view rest() const { return m_html.substr(m_at); }

  private:
    bool startsTag(std::size_t place) const;
    bool isNamed(std::size_t place, std::string_view name) const;
    void skipSign(std::string *text);
    void skipDeclaration();
    void skipBehind(std::string_view mark, std::size_t from);
    void skipScript();
    bool readTag(HtmlTag &tag);
    bool skipAttribute();
    char at(std::size_t place) const { return place < m_html.size() ? m_html[place] : '\0'; }

    std::string_view m_html;
    std::size_t m_at = 0;
};

} // namespace nv
