// A page and a style sheet whose references are rewritten. The places of references lie in the
// text; what is put there is read again from there, and nothing runs in the page that is made.
//   input = address:u8 page

#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "markup/PageText.h"
#include "rebuild/exact/OwnParts.h"
#include "rebuild/exact/PageReferences.h"
#include "rebuild/exact/SourceText.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr std::array<std::string_view, 4> kAddresses = {"0000017.gif", "a b", "x'\"<>&`=()\\y",
                                                        "http://h/?a=1&lt=2"};

void require(bool condition) {
    if (!condition)
        std::abort();
}

std::vector<nv::TextEdit> editsFor(const std::vector<nv::Reference> &references,
                                   std::string_view address, std::string_view text) {
    std::vector<nv::TextEdit> edits;
    edits.reserve(references.size());
    for (const nv::Reference &reference : references) {
        require(reference.at.begin <= reference.at.end && reference.at.end <= text.size());
        edits.push_back({reference.at, reference.before + nv::spelled(reference, address, text) +
                                           reference.after});
    }
    return edits;
}

void checkStyle(const std::string &text, std::string_view address) {
    const auto found = nv::scanStyle(text);
    const auto again = nv::scanStyle(nv::edited(text, editsFor(found, address, text)));
    require(again.size() == found.size());
    for (const nv::Reference &reference : again)
        require(reference.address == address);
}

/// Without the rest of what is taken off the tree is the same, and so is what it names.
void checkReferences(const std::vector<nv::Reference> &found, const std::string &text,
                     std::string_view address) {
    for (const nv::Reference &reference : found)
        if (reference.isLazy) // what would be shown in its place depends on what is shown
            return;
    const std::string made = nv::edited(text, editsFor(found, address, text));
    const auto again = nv::scanPage(made, "page").references;
    require(again.size() == found.size());
    for (const nv::Reference &reference : again)
        require(nv::replaceAll(reference.address, "%20", " ") == address);
}

void checkPage(const std::string &text, std::string_view address) {
    const nv::PageScan scan = nv::scanPage(text, "page");
    for (const std::size_t place : {scan.headAt, scan.bodyAt, scan.endAt})
        require(place <= text.size() || place == nv::PageScan::npos);
    checkReferences(scan.references, text, address);
    auto edits = editsFor(scan.references, address, text);
    for (const nv::TextEdit &edit : scan.disarming) {
        require(edit.at.begin <= edit.at.end && edit.at.end <= text.size());
        edits.push_back(edit);
    }
    const std::string made = nv::edited(text, edits);
    nv::scanPage(made, "page");
    require(nv::missingPicture(text).find_first_of(" \"'()<>&\\") == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 1)
        return 0;
    const std::string_view address = kAddresses[data[0] % kAddresses.size()];
    const std::string bytes(data + 1, data + size);
    const nv::SourceText source(nv::viewOf(bytes), nv::decodedPage(nv::viewOf(bytes), {}));
    require(source.rewritten({}) == bytes || !source.text().empty() || bytes.empty());
    checkStyle(source.text(), address);
    try {
        checkPage(source.text(), address);
    } catch (const nv::PageTooLarge &) {
        return 0;
    }
    return 0;
}
