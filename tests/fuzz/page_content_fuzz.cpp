// A page, or its beginning repeated, as the parser gets it. The estimate of what it costs must
// hold: the parser's tree may be at most three times as deep, and have eight parts a tag.
//   input = repeats:u8 charset:u8 page

#include "base/Text.h"
#include "import/PageContent.h"
#include "markup/HtmlCost.h"
#include "markup/PageText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <gumbo.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct Tree {
    std::size_t depth = 0;
    std::size_t elements = 0;
};

Tree treeOf(std::string_view html) {
    GumboOptions options = kGumboDefaultOptions;
    options.max_errors = 0;
    GumboOutput *output = gumbo_parse_with_options(&options, html.data(), html.size());
    Tree tree;
    std::vector<std::pair<const GumboNode *, std::size_t>> open{{output->root, 1}};
    while (!open.empty()) {
        const auto [node, depth] = open.back();
        open.pop_back();
        if (node->type != GUMBO_NODE_ELEMENT && node->type != GUMBO_NODE_TEMPLATE)
            continue;
        tree.depth = std::max(tree.depth, depth);
        ++tree.elements;
        const GumboVector &children = node->v.element.children;
        for (unsigned i = 0; i < children.length; ++i)
            open.emplace_back(static_cast<const GumboNode *>(children.data[i]), depth + 1);
    }
    gumbo_destroy_output(&options, output);
    return tree;
}

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkCost(const std::string &html) {
    const nv::HtmlLimits limits;
    const nv::HtmlCost cost = nv::costOf(html, limits);
    if (!cost.beyond(limits).empty())
        return;
    const Tree tree = treeOf(html);
    require(tree.depth <= 3 * cost.depth + 8);
    require(tree.elements <= 8 * cost.nodes + 16);
    const nv::PageContent page = nv::readPageContent(html, "page");
    require(nv::isUtf8(page.body) && page.links.size() <= tree.elements);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::string_view kCharsets[] = {"",      "utf-8",  "shift_jis", "iso-2022-jp",
                                              "utf-7", "gb2312", "big5",      "x-nonsense"};
    if (size < 2)
        return 0;
    const std::size_t repeats = std::size_t{data[0]} % 64 + 1;
    const std::string header =
        "Content-Type: a; charset=" + std::string(kCharsets[data[1] % std::size(kCharsets)]);
    const std::string html = nv::decodePage(nv::ByteView({data + 2, size - 2}), header);
    require(nv::isUtf8(html));
    std::string page;
    for (std::size_t i = 0; i < repeats; ++i)
        page += html;
    checkCost(page);
    return 0;
}
