#include "reports/pages/AllowedHtml.h"

#include "base/Text.h"
#include "markup/MathNames.h"
#include "markup/SvgNames.h"
#include "markup/WordSet.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace nv {

namespace {

struct FateRow {
    Fate fate;
    std::string_view names; ///< separated by blanks
};

constexpr std::array<FateRow, 10> kHtml = {{
    {Fate::keep,
     "a abbr acronym address area article aside audio b basefont bdi bdo big blockquote body br "
     "button canvas caption center cite code col colgroup data dd del details dfn dialog dir div "
     "dl dt em fieldset figcaption figure font footer form frame frameset h1 h2 h3 h4 h5 h6 head "
     "header hgroup hr html i img input ins kbd label legend li main map mark marquee menu meter "
     "nav nobr ol optgroup option output p picture pre progress q rp rt ruby s samp search "
     "section select slot small source span strike strong sub summary sup table tbody td tfoot "
     "th thead time tr track tt u ul var video wbr"},
    {Fate::unwrap, "applet layer ilayer nolayer"},
    {Fate::embedded, "embed object"},
    {Fate::lines, "listing plaintext xmp"},
    {Fate::text, "textarea title"},
    {Fate::empty, "iframe"},
    {Fate::style, "style"},
    {Fate::link, "link"},
    {Fate::meta, "meta"},
    {Fate::drop, "base bgsound isindex keygen noembed noframes noscript param script template"},
}};

constexpr std::array<FateRow, 3> kSvg = {{
    {Fate::unwrap, "a"},
    {Fate::text, "title desc"},
    {Fate::style, "style"},
}};

using Fates = std::unordered_map<std::string_view, Fate>;

template <std::size_t Count>
Fates fatesOf(const std::array<FateRow, Count> &rows) {
    Fates fates;
    for (const FateRow &row : rows)
        for (const std::string_view name : split(row.names, ' '))
            fates.emplace(name, row.fate);
    return fates;
}

constexpr std::string_view kHtmlAttributes =
    "abbr accesskey align alink alt axis behavior bgcolor border bordercolor bordercolordark "
    "bordercolorlight bottommargin cellpadding cellspacing char charoff checked class clear color "
    "cols colspan compact controls coords data-href datetime default dir direction disabled "
    "exportparts face for frame frameborder framespacing headers height hidden high hspace id "
    "ismap kind label lang language leftmargin link loop low marginheight marginwidth max "
    "maxlength media min multiple muted name nohref noresize noshade nowrap open optimum part "
    "placeholder popover readonly required reversed rightmargin role rows rowspan rules scope "
    "scrollamount scrolldelay scrolling selected shadowrootmode shape size sizes slot span "
    "spellcheck srclang start step summary tabindex target text title topmargin truespeed type "
    "unselectable valign value version vlink vspace width wrap";

struct UseRow {
    std::string_view attribute;
    std::string_view elements;
    Use use;
};
constexpr std::array<UseRow, 7> kUses = {{
    {"src", "img input", Use::image},
    {"src", "audio video source", Use::media},
    {"src", "iframe frame", Use::document},
    {"href", "a area", Use::link},
    {"background", "body table thead tbody tfoot tr td th", Use::image},
    {"poster", "video", Use::image},
    {"src", "track", Use::track},
}};

} // namespace

namespace {

/// Without scripts they are elements that do nothing, and styles may call them by their names.
bool isOfPagesOwn(std::string_view name) {
    static const WordSet taken =
        wordSetOf("annotation-xml color-profile font-face font-face-format "
                  "font-face-name font-face-src font-face-uri missing-glyph");
    constexpr std::size_t kLongest = 100;
    const bool begins = !name.empty() && name.front() >= 'a' && name.front() <= 'z';
    return begins && name.size() <= kLongest && name.find('-') != std::string_view::npos &&
           !taken.contains(name) && std::ranges::all_of(name, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
           });
}

} // namespace

namespace {

/// In those that hold text a page could stand: none does in what is written.
Fate mathFateOf(std::string_view name) {
    if (isMathText(name))
        return Fate::text;
    if (isMathUnseen(name))
        return Fate::drop;
    return isMathElement(name) ? Fate::keep : Fate::unwrap;
}

} // namespace

Fate fateOf(HtmlSpace space, std::string_view name) {
    static const Fates html = fatesOf(kHtml);
    static const Fates svg = fatesOf(kSvg);
    if (space == HtmlSpace::mathMl)
        return mathFateOf(name);
    const Fates &fates = space == HtmlSpace::svg ? svg : html;
    const auto found = fates.find(name);
    if (found != fates.end())
        return found->second;
    if (space != HtmlSpace::svg)
        return isOfPagesOwn(name) ? Fate::keep : Fate::rename;
    return isSvgElement(name) ? Fate::keep : Fate::drop;
}

bool isVoid(std::string_view name) {
    static const WordSet voids =
        wordSetOf("area basefont br col frame hr img input link meta source track wbr");
    return voids.contains(name);
}

bool isPlainAttribute(HtmlSpace space, std::string_view name) {
    static const WordSet html = wordSetOf(kHtmlAttributes);
    if (space == HtmlSpace::mathMl)
        return isMathAttribute(name);
    return space == HtmlSpace::svg ? isSvgAttribute(name) : html.contains(name);
}

std::string_view propertyOf(HtmlSpace space, std::string_view attribute) {
    if (space == HtmlSpace::mathMl)
        return mathPropertyOf(attribute);
    return space == HtmlSpace::svg && isSvgProperty(attribute) ? attribute : std::string_view();
}

std::optional<Use> useOf(std::string_view element, std::string_view attribute) {
    for (const UseRow &row : kUses) {
        if (row.attribute != attribute)
            continue;
        for (const std::string_view name : split(row.elements, ' '))
            if (name == element)
                return row.use;
    }
    return std::nullopt;
}

} // namespace nv
