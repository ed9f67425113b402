#pragma once

#include "markup/SourceSpan.h"

#include <cstdint>
#include <string>

namespace nv {

/// What a page shows of the thing that a reference names.
enum class RefUse : std::uint8_t {
    image,
    style,
    font,
    media,
    track,
    frame,
    object,
    icon,
    svg,  ///< drawn by SVG: "use", "image", and the shapes, filters and paints of styles
    link, ///< a click leads there; never fetched
    /// A sheet for a page that browsers show as old ones did, from its own server. No reference
    /// says so by itself: it only decides which answers count.
    quirkyStyle,
};

/// In which form an address stands, which decides how another one is spelled there.
enum class RefForm : std::uint8_t {
    attribute,
    srcset,
    styleUrl,
    styleString, ///< a text, as in `@import "x"` and `image-set("x" 2x)`
};

/// Whether the part stands in the text itself, as an address of the kind "data:". Browsers take
/// masks, shapes, filters and subtitles from the page's own server only, and a folder is none.
enum class RefPlace : std::uint8_t {
    beside, ///< a file of the folder
    inside,
    insideIfSmall, ///< a property of the page's own, which any other one may show
};

/// An address that a page or a style sheet names, and where.
struct Reference {
    RefUse use = RefUse::image;
    RefForm form = RefForm::attribute;
    std::string element;   ///< "img", "link", "style"; empty in a sheet
    std::string attribute; ///< "src", "srcset"; in styles the property or the at-rule:
                           ///< "background-image", "@import", "@font-face src"
    std::string address;   ///< as it is meant: character references and escapes read, blanks at the
                           ///< ends gone
    SourceSpan at;         ///< of the address within the text that was read; what is rewritten
    bool isLazy = false;   ///< a script would have shown it: from "data-src" and the like
    std::string descriptor; ///< of "srcset": "2x", "640w"
    int nested = 0;         ///< how many "srcdoc" attributes it stands in, one within the other
    RefPlace place = RefPlace::beside;
    bool hasFallback = false; ///< an "object" that holds what shows where its own thing doesn't
    bool isQuoted = true;     ///< of an attribute: its value stands in quotation marks
    std::string before;       ///< stand around the address where it is put in anew
    std::string after;
    std::string codebase; ///< of "object" and "embed": what old browsers resolved the address by
    std::string base;     ///< of the page in "srcdoc" that it stands in, where that names one
};

} // namespace nv
