#pragma once

#include "markup/CssTokens.h"

#include <string>
#include <string_view>

namespace nv {

/// Writes tokens so that any reader finds the same ones again: each in its plainest form, in ASCII,
/// with a comment between two that would run together. Nothing of it is a tag or a character
/// reference, so that it may stand in a "style" element of HTML, of SVG and of XML alike.
class CssWriter {
  public:
    /// False, and nothing is written, for what has no form: broken strings and addresses, "<!--".
    bool token(const CssToken &token);
    void string(std::string_view text);
    /// "url(...)" with the address in quotation marks.
    void url(std::string_view address);
    void name(std::string_view ident);
    void sign(CssKind kind, std::string_view text);

    const std::string &text() const { return m_text; }
    std::string take() { return std::move(m_text); }

  private:
    void put(CssKind kind, std::string_view text);
    bool needsGap(CssKind kind, std::string_view text) const;

    std::string m_text;
    CssKind m_last = CssKind::semicolon;
};

} // namespace nv
