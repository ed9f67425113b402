#pragma once

#include "base/ByteView.h"
#include "markup/PageText.h"
#include "rebuild/exact/TextEdit.h"

#include <optional>
#include <string>
#include <vector>

namespace nv {

/// The text of a page or a sheet beside the bytes that it was read from, so that what is rewritten
/// stays in the encoding it came in, and every other byte as it was.
class SourceText {
  public:
    /// `bytes` must outlive it; `page` is what decodedPage() or decodedStyle() made of them.
    SourceText(ByteView bytes, DecodedPage page);

    /// In UTF-8; the places of edits are those of this text.
    const std::string &text() const { return m_page.text; }
    const std::string &charset() const { return m_page.charset; }

    /// The bytes with the edits made, whose texts are UTF-8. Where the encoding can't hold an edit
    /// or keeps a state over it, the whole is written in UTF-8 behind its mark.
    std::string rewritten(std::vector<TextEdit> edits) const;

  private:
    std::optional<std::string> inItsEncoding(const std::vector<TextEdit> &edits) const;

    ByteView m_bytes;
    DecodedPage m_page;
};

} // namespace nv
