#include "rebuild/exact/DrawingText.h"

#include "base/Text.h"
#include "rebuild/exact/PageReferences.h"
#include "rebuild/exact/SourceText.h"

#include <utility>
#include <vector>

namespace nv {

DecodedPage decodedDrawing(const Bytes &bytes, std::string_view headers) {
    DecodedPage decoded = decodedPage(ByteView(bytes), headers);
    const std::string_view raw = ByteView(bytes).raw();
    if (decoded.foundIn == kNoCharset && isUtf8(raw))
        return {std::string(raw), "utf-8", kNoCharset};
    return decoded;
}

/// Drawn as a picture it shows no other file in any browser, cached or not.
std::string selfContained(const Bytes &bytes, std::string_view headers) {
    constexpr std::string_view kNothing = "data:,";
    const SourceText source(ByteView(bytes), decodedDrawing(bytes, headers));
    PageScan scanned = scanPage(source.text(), "drawing");
    std::vector<TextEdit> edits = std::move(scanned.disarming);
    edits.reserve(edits.size() + scanned.references.size());
    for (const Reference &reference : scanned.references)
        edits.push_back({reference.at, spelled(reference, kNothing, source.text())});
    return source.rewritten(std::move(edits));
}

} // namespace nv
