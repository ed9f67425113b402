#include "rebuild/exact/UsedDrawings.h"

#include "base/Md5.h"
#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "markup/SvgNames.h"
#include "rebuild/exact/DrawnStyle.h"
#include "rebuild/exact/Spelling.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nv {

namespace {

using Node = HtmlDocument::Node;

/// Elements that show others, which show others in turn, draw more than any page has room for.
constexpr int kDeepestUse = 3;
constexpr int kMostNestedUses = 64;
constexpr std::size_t kMostRead = std::size_t{4} << 20;       ///< bytes of drawings, for one page
constexpr std::size_t kLongestSheet = std::size_t{256} << 10; ///< bytes
constexpr std::size_t kLongestName = 256;                     ///< of ids and classes, in bytes

// Nothing of it takes room, and what is shown elsewhere looks the same.
constexpr std::string_view kAround =
    "all:initial;position:absolute!important;left:0!important;top:0!important;"
    "width:0!important;height:0!important;overflow:hidden!important";

bool isSvg(const Node &node) {
    return HtmlDocument::isElement(node) && HtmlDocument::spaceOf(node) == HtmlSpace::svg;
}

std::string textIn(const Node &style) {
    std::string text;
    for (const Node *child : HtmlDocument::childrenOf(style))
        text += HtmlDocument::writtenIn(*child);
    return text;
}

std::string attributeText(std::string_view name, std::string_view value) {
    return fmt::format(" {}=\"{}\"", name, attributeValue(value));
}

bool mayHoldFunction(std::string_view value) {
    return value.find_first_of("(\\") != std::string_view::npos;
}

} // namespace

/// One file, and what was taken of it.
class UsedDrawings::Drawing {
  public:
    Drawing(std::string text, std::string prefix, std::size_t number, std::size_t &ids)
        : m_text(std::move(text)), m_page(HtmlDocument::within(m_text)),
          m_prefix(std::move(prefix)), m_ids(ids) {
        m_names.mark = fmt::format("{}-d{}", m_prefix, number);
        m_names.idOf = [this](std::string_view id) { return nameOf(id, m_depth); };
        m_names.classOf = [this](std::string_view name) { return classOf(name); };
        m_classes = fmt::format("{}-k{}", m_prefix, number);
        if (m_page)
            findElements();
    }

    /// Its new id; nothing for an element that isn't there.
    std::optional<std::string> take(std::string_view id) {
        if (!m_elements.contains(std::string(id)))
            return std::nullopt;
        return nameOf(id, 0);
    }
    /// What was taken and isn't written yet; no more than `most` bytes and one element.
    std::string write(std::size_t most);
    std::string sheet() { return drawnSheet(m_sheet, m_names); }

  private:
    struct Wanted {
        std::string id;
        int depth = 0; ///< of the "use" that leads there
    };
    struct Step {
        const Node *node;
        std::size_t next; ///< 0-based, of its children
        std::string end;
    };

    void findElements();
    std::string nameOf(std::string_view id, int depth);
    std::string classOf(std::string_view name);
    void writeElement(const Wanted &wanted, std::size_t most);
    /// `wanted` is the id that the element was asked for by; null for what stands in another one.
    void open(const Node &node, const std::string *wanted, std::vector<Step> &path);
    std::string attributesOf(const Node &element, const std::string *wanted);
    std::string attributeOf(const Node &element, const HtmlAttribute &attribute);
    std::string classesOf(std::string_view list);
    std::string idOf(const Node &element, const std::string *wanted);
    std::string targetOf(const Node &element, std::string_view address);

    std::string m_text;
    std::optional<HtmlDocument> m_page;
    std::string m_prefix;
    std::string m_classes; ///< in front of the number of a class
    std::size_t &m_ids;
    DrawnNames m_names;
    std::string m_sheet;
    std::unordered_map<std::string, const Node *> m_elements; ///< by id; "" is the drawing
    std::unordered_map<std::string, std::string> m_given;     ///< new ids
    std::unordered_map<std::string, std::string> m_givenClasses;
    std::set<std::string, std::less<>> m_written; ///< ids that stand in the page already
    std::deque<Wanted> m_wanted;
    std::string m_out;
    int m_depth = 0;
    int m_nestedUses = 0;
};

void UsedDrawings::Drawing::findElements() {
    std::vector<const Node *> open{&m_page->root()};
    while (!open.empty()) {
        const Node *node = open.back();
        open.pop_back();
        const auto children = HtmlDocument::childrenOf(*node);
        open.insert(open.end(), children.rbegin(), children.rend());
        if (!isSvg(*node))
            continue;
        if (HtmlDocument::nameOf(*node) == "style" && m_sheet.size() < kLongestSheet)
            m_sheet += textIn(*node) + "\n";
        else if (HtmlDocument::nameOf(*node) == "svg")
            m_elements.try_emplace(std::string(), node);
        const auto id = HtmlDocument::valueOf(*node, "id");
        if (id && !id->empty() && id->size() <= kLongestName)
            m_elements.try_emplace(std::string(*id), node);
    }
    if (m_sheet.size() > kLongestSheet)
        m_sheet.clear();
}

/// Digits only, so that it needs no spelling anywhere. What isn't there gets a name of nothing.
std::string UsedDrawings::Drawing::nameOf(std::string_view id, int depth) {
    const std::string key(id.substr(0, kLongestName + 1));
    if (!m_elements.contains(key))
        return m_prefix + "-none";
    const auto [given, isNew] = m_given.try_emplace(key);
    if (isNew) {
        given->second = fmt::format("{}-{}", m_prefix, ++m_ids);
        m_wanted.push_back({key, depth});
    }
    return given->second;
}

std::string UsedDrawings::Drawing::classOf(std::string_view name) {
    const auto [given, isNew] = m_givenClasses.try_emplace(std::string(name));
    if (isNew)
        given->second = fmt::format("{}-{}", m_classes, m_givenClasses.size());
    return given->second;
}

std::string UsedDrawings::Drawing::write(std::size_t most) {
    for (; !m_wanted.empty() && m_out.size() <= most; m_wanted.pop_front()) {
        const Wanted wanted = m_wanted.front();
        m_depth = wanted.depth;
        if (!m_written.contains(wanted.id))
            writeElement(wanted, most);
    }
    return std::exchange(m_out, {});
}

void UsedDrawings::Drawing::writeElement(const Wanted &wanted, std::size_t most) {
    std::vector<Step> path;
    open(*m_elements.at(wanted.id), &wanted.id, path);
    while (!path.empty()) {
        Step &step = path.back();
        const auto children = HtmlDocument::childrenOf(*step.node);
        if (step.next < children.size() && m_out.size() <= most) {
            open(*children[step.next++], nullptr, path);
            continue;
        }
        m_out += step.end;
        path.pop_back();
    }
}

void UsedDrawings::Drawing::open(const Node &node, const std::string *wanted,
                                 std::vector<Step> &path) {
    if (!HtmlDocument::isElement(node)) {
        m_out += attributeValue(HtmlDocument::writtenIn(node));
        return;
    }
    const std::string name = isSvg(node) ? HtmlDocument::nameOf(node) : std::string();
    const bool isLink = name == "a";
    if (!isLink && !isSvgElement(name))
        return;
    const std::string shown = isLink ? "g" : name;
    m_out += fmt::format("<{}{}>", shown, attributesOf(node, wanted));
    path.push_back({&node, 0, fmt::format("</{}>", shown)});
}

/// An id stands in the page once: on the first of the element's copies that was asked for.
std::string UsedDrawings::Drawing::idOf(const Node &element, const std::string *wanted) {
    const auto own = HtmlDocument::valueOf(element, "id");
    const std::string key = wanted ? *wanted : std::string(own ? *own : std::string_view());
    const auto given = m_given.find(key);
    if ((!wanted && key.empty()) || given == m_given.end() || !m_written.insert(key).second)
        return {};
    return attributeText("id", given->second);
}

std::string UsedDrawings::Drawing::attributesOf(const Node &element, const std::string *wanted) {
    std::string classes;
    std::string text = idOf(element, wanted);
    std::set<std::string_view> written{"id"};
    for (const HtmlAttribute &attribute : m_page->attributesOf(element)) {
        const bool isPrefixed = attribute.isPrefixed && attribute.name != "href";
        if (isPrefixed || !written.insert(attribute.name).second)
            continue;
        if (attribute.name == "class")
            classes = classesOf(attribute.value);
        else
            text += attributeOf(element, attribute);
    }
    return text + attributeText("class", m_names.mark + classes);
}

std::string UsedDrawings::Drawing::classesOf(std::string_view list) {
    std::string plain(list);
    std::ranges::replace_if(
        plain, [](char c) { return c == '\t' || c == '\n' || c == '\r' || c == '\f'; }, ' ');
    std::string classes;
    for (const std::string_view name : split(plain, ' '))
        if (!name.empty() && name.size() <= kLongestName)
            classes += ' ' + classOf(name);
    return classes;
}

std::string UsedDrawings::Drawing::attributeOf(const Node &element,
                                               const HtmlAttribute &attribute) {
    const std::string_view value = attribute.value;
    if (attribute.name == "style") {
        const std::string own = drawnDeclarations(value, m_names);
        return own.empty() ? std::string() : attributeText("style", own);
    }
    if (attribute.name == "href") {
        const std::string target = targetOf(element, trim(value));
        return target.empty() ? std::string() : attributeText("href", target);
    }
    if (isSvgProperty(attribute.name)) {
        const auto own =
            mayHoldFunction(value) ? drawnValue(value, m_names) : std::optional(std::string(value));
        return own ? attributeText(attribute.name, *own) : std::string();
    }
    return isSvgAttribute(attribute.name) ? attributeText(attribute.name, value) : std::string();
}

/// A place in the drawing, or a picture that stands in the drawing itself.
std::string UsedDrawings::Drawing::targetOf(const Node &element, std::string_view address) {
    const std::string name = HtmlDocument::nameOf(element);
    if (name == "image")
        return startsWithNoCase(address, "data:image/") ? std::string(address) : std::string();
    if (address.size() < 2 || !address.starts_with('#'))
        return {};
    if (name != "use")
        return "#" + nameOf(address.substr(1), m_depth);
    if (m_depth >= kDeepestUse || ++m_nestedUses > kMostNestedUses)
        return {};
    return "#" + nameOf(address.substr(1), m_depth + 1);
}

UsedDrawings::UsedDrawings(std::string_view page, std::size_t &room) : m_page(page), m_room(room) {}

UsedDrawings::~UsedDrawings() = default;

/// No page has a text that is made of its own digest.
void UsedDrawings::add(UrlId drawing, std::string text) {
    if (text.size() > std::min(m_room, kMostRead - m_read))
        text.clear();
    m_room -= text.size();
    m_read += text.size();
    if (m_prefix.empty())
        m_prefix = "nv-" + md5Hex(m_page).substr(0, 16);
    m_drawings.try_emplace(drawing, std::make_unique<Drawing>(std::move(text), m_prefix,
                                                              m_drawings.size() + 1, m_ids));
}

std::optional<std::string> UsedDrawings::place(UrlId drawing, std::string_view id) {
    const auto known = m_drawings.find(drawing);
    if (known == m_drawings.end() || m_isFull)
        return std::nullopt;
    const auto given = known->second->take(id);
    if (!given)
        return std::nullopt;
    const std::string text = known->second->write(m_room);
    m_isFull = text.size() > m_room;
    if (m_isFull)
        return std::nullopt;
    m_room -= text.size();
    m_body += text;
    return "#" + *given;
}

std::string UsedDrawings::markup() {
    if (m_body.empty())
        return {};
    std::string sheet;
    for (const auto &[id, drawing] : m_drawings)
        sheet += drawing->sheet();
    if (sheet.size() > m_room)
        sheet.clear();
    m_room -= sheet.size();
    const std::string style =
        sheet.empty() ? std::string() : fmt::format("<style>{}</style>", attributeValue(sheet));
    return fmt::format("<svg width=\"0\" height=\"0\" style=\"{}\">{}<defs>{}</defs></svg>",
                       kAround, style, m_body);
}

} // namespace nv
