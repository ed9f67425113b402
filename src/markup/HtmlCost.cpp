#include "markup/HtmlCost.h"

#include "base/Text.h"
#include "markup/HtmlTags.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>
#include <unordered_map>
#include <vector>

namespace nv {

namespace {

enum class Kind : std::uint8_t {
    plain,
    none, ///< no element, or one that is there once
    block,
    list,
    terms, ///< the list of "dt" and "dd"
    item,
    term,
    paragraph,
    formatting, ///< outlives the block that it was opened in
    anchor,     ///< formatting that ends where another one begins
    form,
    holder,  ///< what is opened in it can't be ended from outside, and the other way round
    rawText, ///< what stands in it is text
    option,
    choice,  ///< a list to choose from, in which most tags are none
    foreign, ///< has rules of its own for what is in it
    // Parts of tables, from the outside in.
    table,
    section,
    row,
    caption,
    cell,
};

struct KindRow {
    Kind kind;
    std::string_view names; ///< separated by blanks
};

constexpr std::array<KindRow, 20> kKinds = {{
    {Kind::none, "area base basefont bgsound body br embed frame head hr html image img input "
                 "keygen link meta param source track wbr"},
    {Kind::paragraph, "p"},
    {Kind::anchor, "a"},
    {Kind::formatting, "b big code em font i nobr s small strike strong tt u"},
    {Kind::block, "address article aside blockquote button center details div fieldset figcaption "
                  "figure footer header hgroup listing main nav pre section summary"},
    {Kind::list, "dir menu ol ul"},
    {Kind::terms, "dl"},
    {Kind::item, "li"},
    {Kind::term, "dd dt"},
    {Kind::form, "form"},
    {Kind::holder, "applet marquee object"},
    {Kind::rawText, "iframe noembed noframes plaintext script style textarea title xmp"},
    {Kind::option, "optgroup option"},
    {Kind::choice, "select"},
    {Kind::foreign, "frameset math svg template"},
    {Kind::table, "table"},
    {Kind::section, "col colgroup tbody tfoot thead"},
    {Kind::row, "tr"},
    {Kind::caption, "caption"},
    {Kind::cell, "td th"},
}};

using KindsByName = std::unordered_map<std::string_view, Kind>;

KindsByName kindsByName() {
    KindsByName kinds;
    for (const KindRow &row : kKinds)
        for (const std::string_view name : split(row.names, ' '))
            kinds.emplace(name, row.kind);
    return kinds;
}

Kind kindOf(std::string_view name) {
    constexpr std::size_t kLongestName = 10;
    static const KindsByName kinds = kindsByName();
    if (name.size() > kLongestName)
        return Kind::plain;
    const auto found = kinds.find(toLower(name));
    return found == kinds.end() ? Kind::plain : found->second;
}

/// A copy of a tag has copies of its attributes' texts, which may be of any length.
constexpr std::size_t kBytesOfPart = 600;

struct Element {
    std::string_view name;
    Kind kind = Kind::plain;
    std::uint64_t weight = 1; ///< itself, its attributes, and the texts of these
};

bool isFormatting(Kind kind) {
    return kind == Kind::formatting || kind == Kind::anchor;
}

bool isTablePart(Kind kind) {
    return kind >= Kind::table;
}

/// Formatting that is opened in a cell ends with it.
bool isCell(Kind kind) {
    return kind == Kind::cell || kind == Kind::caption;
}

/// Follows which elements are open. An element is taken off only where the parser surely does the
/// same, so that the count doesn't fall below the parser's own.
class OpenElements {
  public:
    std::size_t size() const { return m_open.size(); }
    /// In these the parser passes over tags that are elements elsewhere.
    bool isOpaque() const { return m_foreign + m_choices > 0; }
    bool isForeign() const { return m_foreign > 0; }
    /// Of formatting that the parser may have to open again once its block has ended.
    std::uint64_t formattingWeight() const { return m_formatting; }

    void start(const HtmlTag &tag, Kind kind);
    void end(const HtmlTag &tag, Kind kind);

  private:
    template <class IsIt>
    std::optional<std::size_t> nearest(IsIt isIt) const;
    template <class IsIt>
    void endThrough(std::initializer_list<Kind> passed, IsIt isIt);
    void makeRoom(Kind kind);
    void endAnchor();
    void endTablePart(std::string_view name);
    void leaveTable();
    bool enterTable(Kind kind);
    void endOpaque(std::string_view name);
    void cutFrom(std::size_t first);
    void forget(const Element &element);
    void push(const HtmlTag &tag, Kind kind);

    std::vector<Element> m_open;
    std::size_t m_foreign = 0;
    std::size_t m_choices = 0;
    std::uint64_t m_formatting = 0;
};

template <class IsIt>
std::optional<std::size_t> OpenElements::nearest(IsIt isIt) const {
    for (std::size_t i = m_open.size(); i-- > 0;)
        if (isIt(m_open[i]))
            return i;
    return std::nullopt;
}

void OpenElements::push(const HtmlTag &tag, Kind kind) {
    m_open.push_back({tag.name, kind, 1 + tag.attributes + tag.size / kBytesOfPart});
    if (isFormatting(kind))
        m_formatting += m_open.back().weight;
    m_foreign += kind == Kind::foreign ? 1 : 0;
    m_choices += kind == Kind::choice ? 1 : 0;
}

void OpenElements::forget(const Element &element) {
    if (isFormatting(element.kind))
        m_formatting -= element.weight;
    m_foreign -= element.kind == Kind::foreign ? 1 : 0;
    m_choices -= element.kind == Kind::choice ? 1 : 0;
}

/// Takes off the element at `first` and all above it but formatting, which goes on after its
/// block; only the end of a cell ends the formatting in it.
void OpenElements::cutFrom(std::size_t first) {
    std::size_t kept = first;
    bool inCell = false;
    for (std::size_t i = first; i < m_open.size(); ++i) {
        inCell |= isCell(m_open[i].kind);
        if (i > first && !inCell && isFormatting(m_open[i].kind))
            m_open[kept++] = m_open[i];
        else
            forget(m_open[i]);
    }
    m_open.resize(kept);
}

/// Ends the nearest element that `isIt` takes, unless something other than formatting and the kinds
/// `passed` stands above it: then the parser might pass the end tag over.
template <class IsIt>
void OpenElements::endThrough(std::initializer_list<Kind> passed, IsIt isIt) {
    const auto found = nearest([&](const Element &e) {
        return isIt(e) ||
               (!isFormatting(e.kind) && std::ranges::find(passed, e.kind) == passed.end());
    });
    if (found && isIt(m_open[*found]))
        cutFrom(*found);
}

/// A link ends where the next one begins, however deep.
void OpenElements::endAnchor() {
    const auto found = nearest([](const Element &e) {
        return e.kind == Kind::anchor || e.kind == Kind::holder || isTablePart(e.kind);
    });
    if (!found || m_open[*found].kind != Kind::anchor)
        return;
    forget(m_open[*found]);
    m_open.erase(m_open.begin() + static_cast<std::ptrdiff_t>(*found));
}

/// A table that begins between the parts of another one ends that.
void OpenElements::leaveTable() {
    const auto part = nearest([](const Element &e) { return isTablePart(e.kind); });
    if (part && !isCell(m_open[*part].kind))
        cutFrom(*nearest([](const Element &e) { return e.kind == Kind::table; }));
}

/// A part of a table ends what stands open above the part that it belongs into. False outside of
/// tables, where the parser knows no such tag.
bool OpenElements::enterTable(Kind kind) {
    const Kind inside = kind == Kind::caption ? Kind::section : kind;
    const auto parent =
        nearest([inside](const Element &e) { return isTablePart(e.kind) && e.kind < inside; });
    if (parent && *parent + 1 < m_open.size())
        cutFrom(*parent + 1);
    return parent.has_value();
}

void OpenElements::endTablePart(std::string_view name) {
    const auto found = nearest(
        [name](const Element &e) { return e.kind == Kind::table || equalsNoCase(e.name, name); });
    if (found && equalsNoCase(m_open[*found].name, name))
        cutFrom(*found);
}

/// Takes off what the start of an element ends.
void OpenElements::makeRoom(Kind kind) {
    const auto isKind = [kind](const Element &e) { return e.kind == kind; };
    if (kind == Kind::anchor)
        endAnchor();
    else if (kind == Kind::paragraph)
        endThrough({}, isKind);
    else if (kind == Kind::item || kind == Kind::term)
        endThrough({Kind::paragraph}, isKind);
    else if (kind == Kind::table)
        leaveTable();
}

void OpenElements::start(const HtmlTag &tag, Kind kind) {
    if (isOpaque()) {
        if (!isForeign() && kind == Kind::option && m_open.back().kind == kind)
            m_open.pop_back();
        return push(tag, kind);
    }
    if (kind == Kind::none || (kind > Kind::table && !enterTable(kind)))
        return;
    makeRoom(kind);
    if (!equalsNoCase(tag.name, "col"))
        push(tag, kind);
}

void OpenElements::endOpaque(std::string_view name) {
    if (!isForeign() && equalsNoCase(name, "select"))
        endThrough({Kind::option}, [](const Element &e) { return equalsNoCase(e.name, "select"); });
    else if (equalsNoCase(m_open.back().name, name))
        cutFrom(m_open.size() - 1);
}

void OpenElements::end(const HtmlTag &tag, Kind kind) {
    const auto isIt = [&tag](const Element &e) { return equalsNoCase(e.name, tag.name); };
    if (isOpaque())
        endOpaque(tag.name);
    else if (isTablePart(kind))
        endTablePart(tag.name);
    else if (kind == Kind::list)
        endThrough({Kind::paragraph, Kind::item}, isIt);
    else if (kind == Kind::terms)
        endThrough({Kind::paragraph, Kind::term}, isIt);
    else if (kind == Kind::block || kind == Kind::item || kind == Kind::term)
        endThrough({Kind::paragraph}, isIt);
    else
        endThrough({}, isIt);
}

bool isScript(const HtmlTag &tag) {
    return equalsNoCase(tag.name, "script");
}

/// Counts the elements that the rest of a page could open at most.
std::size_t startsIn(std::string_view html) {
    std::size_t count = 0;
    for (std::size_t at = html.find('<'); at != std::string_view::npos; at = html.find('<', at + 1))
        ++count;
    return count;
}

} // namespace

std::string HtmlCost::beyond(const HtmlLimits &limits) const {
    if (depth > limits.depth)
        return fmt::format("its tags nest deeper than the limit of {}", limits.depth);
    if (attributes > limits.attributes)
        return fmt::format("a tag has more attributes than the limit of {}", limits.attributes);
    if (nodes > limits.nodes)
        return fmt::format("it has more parts than the limit of {}", limits.nodes);
    if (steps > limits.steps)
        return fmt::format("reading it takes more steps than the limit of {}", limits.steps);
    return {};
}

HtmlCost costOf(std::string_view html, const HtmlLimits &limits) {
    HtmlCost cost;
    HtmlTags tags(html);
    OpenElements open;
    HtmlTag tag;
    while (cost.beyond(limits).empty() && tags.next(tag)) {
        const Kind kind = kindOf(tag.name);
        const bool opensText = kind == Kind::rawText && !tag.isEnd;
        cost.steps += open.size() + tag.attributes * tag.attributes / 2;
        cost.nodes += isFormatting(kind) || kind == Kind::none ? 1 : 1 + open.formattingWeight();
        cost.attributes = std::max(cost.attributes, tag.attributes);
        if (opensText && (open.isForeign() || (open.isOpaque() && !isScript(tag)))) {
            // Whether this is text here can't be told: whatever comes counts as tags.
            const std::size_t starts = startsIn(tags.rest());
            cost.depth = std::max(cost.depth, open.size() + starts);
            cost.nodes += starts * (1 + open.formattingWeight());
            return cost;
        }
        if (opensText)
            tags.skipText(tag.name);
        else if (tag.isEnd)
            open.end(tag, kind);
        else
            open.start(tag, kind);
        cost.depth = std::max(cost.depth, open.size());
    }
    return cost;
}

} // namespace nv
