#include "rebuild/exact/PagePlaces.h"

#include "base/Text.h"
#include "rebuild/exact/StyleReferences.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

using Node = HtmlDocument::Node;

constexpr std::string_view kBlanks = " \t\n\f\r";

/// What stands in front of the first element.
struct Prologue {
    std::size_t end = 0;
    std::size_t doctypeEnd = 0;           ///< 0 for none
    std::vector<SourceSpan> instructions; ///< "<?xml-stylesheet ...?>"
};

std::size_t behind(std::string_view html, std::string_view mark, std::size_t from) {
    const std::size_t found = html.find(mark, from);
    return found == std::string_view::npos ? html.size() : found + mark.size();
}

Prologue prologueOf(std::string_view html) {
    Prologue found;
    std::size_t at = 0;
    while ((at = html.find_first_not_of(kBlanks, at)) != std::string_view::npos) {
        const std::string_view rest = html.substr(at);
        const std::size_t begin = at;
        const bool isEmptyComment = rest.starts_with("<!-->") || rest.starts_with("<!--->");
        if (rest.starts_with("<!--") && !isEmptyComment)
            at = behind(html, "-->", at + 4);
        else if (rest.starts_with("<!") || rest.starts_with("<?"))
            at = behind(html, ">", at);
        else
            break;
        if (startsWithNoCase(rest, "<!doctype") && found.doctypeEnd == 0)
            found.doctypeEnd = at;
        if (rest.starts_with("<?xml-stylesheet"))
            found.instructions.push_back({begin, at});
    }
    found.end = std::min(at, html.size());
    return found;
}

/// The value of `href` in an instruction; empty for none.
SourceSpan addressIn(std::string_view html, SourceSpan instruction) {
    std::size_t at = html.find("href", instruction.begin);
    at = at == std::string_view::npos ? at : html.find_first_not_of(" \t\n\r=", at + 4);
    if (at == std::string_view::npos || at >= instruction.end ||
        (html[at] != '"' && html[at] != '\''))
        return {};
    const std::size_t end = html.find(html[at], at + 1);
    return end < instruction.end ? SourceSpan{at + 1, end} : SourceSpan{};
}

void addInstructions(std::string_view html, const Prologue &prologue, PageScan &scan) {
    std::vector<Reference> found;
    for (const SourceSpan &instruction : prologue.instructions) {
        const SourceSpan at = addressIn(html, instruction);
        const std::string_view address = trimmedAddress(at.in(html));
        if (!isFollowed(address))
            continue;
        Reference reference;
        reference.use = RefUse::style;
        reference.element = "?xml-stylesheet";
        reference.attribute = "href";
        reference.address = replaceAll(address, "&amp;", "&");
        reference.at = at;
        found.push_back(std::move(reference));
    }
    scan.references.insert(scan.references.begin(), found.begin(), found.end());
}

const Node *childNamed(const Node &root, std::string_view name) {
    for (const Node *child : HtmlDocument::childrenOf(root))
        if (HtmlDocument::isElement(*child) && HtmlDocument::nameOf(*child) == name)
            return child;
    return nullptr;
}

std::size_t beginOf(const HtmlDocument &page, const Node &node) {
    const SourceSpan at = HtmlDocument::isElement(node) ? page.tagOf(node) : page.textAt(node);
    return at.begin == at.end ? PageScan::npos : at.begin;
}

/// Of a body without a tag: where the first of what it holds stands.
std::size_t beginWithin(const HtmlDocument &page, const Node &body, std::size_t size) {
    std::size_t begin = PageScan::npos;
    for (const Node *child : HtmlDocument::childrenOf(body))
        begin = std::min(begin, beginOf(page, *child));
    for (const Node *node : {&body, &page.root()})
        if (const SourceSpan end = page.endTagOf(*node); end.begin < end.end)
            begin = std::min(begin, end.begin);
    return std::min(begin, size);
}

std::size_t headOf(const HtmlDocument &page, const Prologue &prologue) {
    const Node *head = childNamed(page.root(), "head");
    for (const Node *node : {head, &page.root()})
        if (const SourceSpan tag = node ? page.tagOf(*node) : SourceSpan(); tag.begin < tag.end)
            return tag.end;
    return prologue.doctypeEnd;
}

} // namespace

void findPlaces(const HtmlDocument &page, std::string_view html, PageScan &scan) {
    const Prologue prologue = prologueOf(html);
    if (startsWithNoCase(html.substr(prologue.end), "<svg")) {
        addInstructions(html, prologue, scan);
        scan.headAt = scan.bodyAt = scan.endAt = PageScan::npos;
        return;
    }
    scan.headAt = headOf(page, prologue);
    const Node *body = childNamed(page.root(), "body");
    if (!body) {
        scan.bodyAt = scan.endAt = PageScan::npos;
        return;
    }
    const SourceSpan tag = page.tagOf(*body);
    scan.bodyAt = std::max(tag.begin < tag.end ? tag.end : beginWithin(page, *body, html.size()),
                           scan.headAt);
    const SourceSpan end = page.endTagOf(*body);
    scan.endAt = end.begin < end.end && end.begin >= scan.bodyAt ? end.begin : scan.bodyAt;
}

} // namespace nv
