// A style sheet. Its tokens stand one after the other in the text, what is written of them is read
// as the same, and guarding it twice changes nothing.
//   input = style

#include "markup/CssItems.h"
#include "markup/CssWriter.h"
#include "reports/pages/SafeStyle.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// Nothing where a token has no form: what it stands in goes whole.
std::optional<std::string> written(std::string_view css) {
    nv::CssWriter writer;
    for (const nv::CssToken &token : nv::cssTokens(css))
        if (!writer.token(token))
            return std::nullopt;
    return writer.take();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string css(data, data + size);
    const auto tokens = nv::cssTokens(css);
    std::size_t at = 0;
    for (const nv::CssToken &token : tokens) {
        require(token.at.begin >= at && token.at.end > token.at.begin && token.at.end <= size);
        at = token.at.end;
    }
    nv::cssBlock(tokens, {0, tokens.size()});
    const auto once = written(css);
    require(!once || written(*once) == once);
    const nv::PageFolder folder{{"0000001.gif", nv::PartKind::picture},
                                {"0000002.css", nv::PartKind::style}};
    const nv::References references(folder);
    const std::string guarded = nv::guardedStyle(css, references);
    require(nv::guardedStyle(guarded, references) == guarded);
    require(guarded.find("</") == std::string::npos);
    const std::string inside = nv::guardedDeclarations(css, references);
    require(nv::guardedDeclarations(inside, references) == inside);
    return 0;
}
