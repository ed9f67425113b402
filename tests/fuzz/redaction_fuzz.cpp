// A text of evidence that is kept free of a word. However the word is written in it, none is left
// in what is handed over, each letter knows where it was written, and the word is found again when
// it stands in the midst of whatever else.
//   input = text, or the chunks of a picture

#include "reports/case/PackedTexts.h"
#include "reports/case/PlainStream.h"
#include "reports/case/Redactor.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkStream(const std::string &text, nv::PlainStream::Codes codes) {
    const nv::PlainStream stream(text, codes);
    require(stream.origin.size() == stream.plain.size() + 1);
    require(std::ranges::is_sorted(stream.origin) && stream.origin.back() == text.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(data, data + size);
    for (const auto codes : {nv::PlainStream::Codes::keep, nv::PlainStream::Codes::undo,
                             nv::PlainStream::Codes::undoOctal})
        checkStream(text, codes);
    nv::Redactor redactor({nv::redactionRule(nv::RedactionWay::blur, "value=quill"),
                           nv::redactionRule(nv::RedactionWay::blur, "host=tide.example")});
    const std::string marked = redactor.text(text);
    require(!redactor.holdsCoded(marked));
    require(redactor.text(marked) == marked);
    require(redactor.text(text + " QUILL ").find("QUILL") == std::string::npos);
    static_cast<void>(redactor.holds(text));
    static_cast<void>(nv::packedTextsOf("\x89PNG\r\n\x1A\n" + text));
    return 0;
}
