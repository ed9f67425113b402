#include "readers/plist/PropertyList.h"

#include "base/Text.h"
#include "readers/Limits.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// White space counts where it is the whole value. Document types, comments and processing
/// instructions are passed over.
constexpr unsigned kOptions =
    pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_ws_pcdata_single;

constexpr std::string_view kDictBegins = "<dict>";
constexpr std::string_view kDictEnds = "</dict>";

std::uint64_t countOf(std::string_view text, std::string_view word) {
    std::uint64_t count = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + word.size()))
        ++count;
    return count;
}

/// Walks without recursion, and stops at the first element that lies too deep.
struct DepthWalker final : pugi::xml_tree_walker {
    bool for_each(pugi::xml_node &) override { return depth() <= limits::kPropertyListDepth; }
};

bool isElement(pugi::xml_node node) {
    return node.type() == pugi::node_element;
}

bool isKey(pugi::xml_node node) {
    return std::string_view(node.name()) == "key";
}

pugi::xml_node nextElement(pugi::xml_node node) {
    do
        node = node.next_sibling();
    while (node && !isElement(node));
    return node;
}

} // namespace

bool isBinaryPropertyList(ByteView head) {
    return head.raw().starts_with("bplist");
}

PropertyList::PropertyList(std::string_view xml, std::size_t mostBytes) {
    if (xml.size() > mostBytes)
        throw PropertyListDamage(
            fmt::format("a property list longer than the {} bytes that are read", mostBytes));
    const pugi::xml_parse_result result = m_document.load_buffer(xml.data(), xml.size(), kOptions);
    if (!result)
        readUntilDamage(xml, result);
    checkDepth();
}

/// The parser leaves the tree as it was at the damage, with the value in hand cut short. So the
/// text is read anew up to the last `dict` that had ended before.
void PropertyList::readUntilDamage(std::string_view xml, const pugi::xml_parse_result &result) {
    m_damage = fmt::format("at offset {}: {}", result.offset,
                           toLower(std::string_view(result.description())));
    auto place = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
    if (place + 1 >= xml.size()) // where the text merely ends, the parser is one character early
        place = xml.size();
    const bool isPlain = result.encoding == pugi::encoding_utf8;
    const std::size_t last =
        isPlain ? xml.substr(0, place).rfind(kDictEnds) : std::string_view::npos;
    if (last == std::string_view::npos)
        throw PropertyListDamage(m_damage + "; a property list in XML form was expected");
    const std::size_t end = last + kDictEnds.size();
    m_dictsNotReached = countOf(xml.substr(end), kDictBegins);
    m_document.load_buffer(xml.data(), end, kOptions, pugi::encoding_utf8);
}

void PropertyList::checkDepth() {
    DepthWalker walker;
    if (!m_document.traverse(walker))
        throw PropertyListDamage(fmt::format("a property list that nests deeper than {} elements",
                                             limits::kPropertyListDepth));
}

std::string textOf(pugi::xml_node element) {
    std::string text;
    for (const pugi::xml_node part : element.children())
        if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata)
            text += part.value();
    return decodeText(text);
}

void eachValue(pugi::xml_node dict,
               const std::function<void(std::string_view key, pugi::xml_node value)> &take) {
    for (const pugi::xml_node node : dict.children()) {
        if (!isKey(node))
            continue;
        const pugi::xml_node value = nextElement(node);
        if (value && !isKey(value))
            take(textOf(node), value);
    }
}

} // namespace nv
