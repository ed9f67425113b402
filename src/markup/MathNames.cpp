#include "markup/MathNames.h"

#include "markup/WordSet.h"

namespace nv {

namespace {

constexpr std::string_view kElements =
    "maction math menclose merror mfenced mfrac mlabeledtr mmultiscripts mover mpadded mphantom "
    "mprescripts mroot mrow mspace msqrt mstyle msub msubsup msup mtable mtd mtr munder munderover "
    "none semantics";

constexpr std::string_view kTexts = "mi mn mo ms mtext";

constexpr std::string_view kUnseen = "annotation annotation-xml malignmark mglyph script style";

constexpr std::string_view kAttributes =
    "accent accentunder align bevelled class close columnalign columnlines columnspacing "
    "columnspan "
    "columnwidth data-href denomalign depth dir display displaystyle edge equalcolumns equalrows "
    "fence form frame framespacing height id lang largeop linethickness lquote lspace mathvariant "
    "maxsize minsize movablelimits notation numalign open rowalign rowlines rowspacing rowspan "
    "rquote rspace scriptlevel scriptminsize scriptsizemultiplier separator separators side "
    "stretchy subscriptshift superscriptshift symmetric title voffset width";

} // namespace

bool isMathElement(std::string_view name) {
    static const WordSet elements = wordSetOf(kElements);
    return elements.contains(name);
}

bool isMathText(std::string_view name) {
    static const WordSet texts = wordSetOf(kTexts);
    return texts.contains(name);
}

bool isMathUnseen(std::string_view name) {
    static const WordSet unseen = wordSetOf(kUnseen);
    return unseen.contains(name);
}

bool isMathAttribute(std::string_view name) {
    static const WordSet attributes = wordSetOf(kAttributes);
    return attributes.contains(name);
}

std::string_view mathPropertyOf(std::string_view attribute) {
    if (attribute == "mathcolor")
        return "color";
    if (attribute == "mathbackground")
        return "background-color";
    return attribute == "mathsize" ? "font-size" : std::string_view();
}

} // namespace nv
