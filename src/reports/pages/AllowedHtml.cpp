#include "reports/pages/AllowedHtml.h"

#include "base/Text.h"
#include "markup/SvgNames.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

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
     "dl "
     "dt em fieldset figcaption figure font footer form frame frameset h1 h2 h3 h4 h5 h6 head "
     "header hgroup hr html i img input ins kbd label legend li main map mark marquee menu meter "
     "nav nobr ol optgroup option output p picture pre progress q rp rt ruby s samp search section "
     "select small source span strike strong sub summary sup table tbody td tfoot th thead time tr "
     "track tt u ul var video wbr"},
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

using Words = std::unordered_set<std::string_view>;

Words wordsOf(std::string_view list) {
    Words words;
    for (const std::string_view word : split(list, ' '))
        words.insert(word);
    return words;
}

constexpr std::string_view kHtmlAttributes =
    "abbr accesskey align alink alt axis behavior bgcolor bordercolor bordercolordark "
    "bordercolorlight border bottommargin cellpadding cellspacing char charoff checked class clear "
    "color cols colspan compact controls coords data-href datetime default dir direction disabled "
    "face for frame frameborder framespacing headers height hidden high hspace id ismap kind label "
    "lang "
    "language leftmargin link loop low marginheight marginwidth max maxlength media min multiple "
    "muted name nohref noresize noshade nowrap open optimum placeholder popover readonly required "
    "reversed "
    "rightmargin role rows rowspan rules scope scrollamount scrolldelay scrolling selected shape "
    "size sizes span spellcheck srclang start step summary tabindex target text title topmargin "
    "truespeed "
    "type "
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
    static const Words taken = wordsOf("annotation-xml color-profile font-face font-face-format "
                                       "font-face-name font-face-src font-face-uri missing-glyph");
    constexpr std::size_t kLongest = 100;
    const bool begins = !name.empty() && name.front() >= 'a' && name.front() <= 'z';
    return begins && name.size() <= kLongest && name.find('-') != std::string_view::npos &&
           !taken.contains(name) && std::ranges::all_of(name, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
           });
}

} // namespace

Fate fateOf(HtmlSpace space, std::string_view name) {
    static const Fates html = fatesOf(kHtml);
    static const Fates svg = fatesOf(kSvg);
    if (space == HtmlSpace::mathMl)
        return Fate::unwrap;
    const Fates &fates = space == HtmlSpace::svg ? svg : html;
    const auto found = fates.find(name);
    if (found != fates.end())
        return found->second;
    if (space != HtmlSpace::svg)
        return isOfPagesOwn(name) ? Fate::keep : Fate::rename;
    return isSvgElement(name) ? Fate::keep : Fate::drop;
}

bool isVoid(std::string_view name) {
    static const Words voids =
        wordsOf("area basefont br col frame hr img input link meta source track wbr");
    return voids.contains(name);
}

bool isPlainAttribute(HtmlSpace space, std::string_view name) {
    static const Words html = wordsOf(kHtmlAttributes);
    return space == HtmlSpace::svg ? isSvgAttribute(name) : html.contains(name);
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
