// A page that leaves the program. Guarding it twice changes nothing, no script is left, and each
// tag and value stands where the parser says.
//   input = form:u8 page

#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "reports/pages/SafePage.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkPlaces(const std::string &html) {
    const auto page = nv::HtmlDocument::within(html);
    if (!page)
        return;
    std::vector<const nv::HtmlDocument::Node *> open{&page->root()};
    while (!open.empty()) {
        const auto *node = open.back();
        open.pop_back();
        const auto children = nv::HtmlDocument::childrenOf(*node);
        open.insert(open.end(), children.begin(), children.end());
        if (!nv::HtmlDocument::isElement(*node))
            continue;
        for (const nv::HtmlAttribute &attribute : page->attributesOf(*node))
            require(attribute.valueAt.end <= html.size() &&
                    attribute.valueAt.begin <= attribute.valueAt.end);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 1)
        return 0;
    const auto form = static_cast<nv::PageForm>(data[0] % 3);
    const std::string bytes(data + 1, data + size);
    const std::string html = nv::isUtf8(bytes) ? bytes : nv::fromAnsi(bytes);
    checkPlaces(html);
    const nv::PageFolder folder{{"0000001.gif", nv::PartKind::picture},
                                {"0000002.css", nv::PartKind::style},
                                {"0000003.htm", nv::PartKind::page}};
    const nv::References references(folder);
    const std::string guarded = nv::guardedPage(html, form, references);
    require(nv::guardedPage(guarded, form, references) == guarded);
    require(nv::findNoCase(guarded, "<script") == std::string::npos);
    require(nv::findNoCase(guarded, "<!--") == std::string::npos);
    return 0;
}
