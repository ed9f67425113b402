#include "rebuild/Tags.h"

namespace nv {

URLTagDefs urlTagDefs() {
    URLTagDefs rules;
    rules.add({1, "INLINE:SRC", "src="});
    rules.add({2, "INLINE:BACKGROUND", " background="});
    rules.add({3, "INLINE:HREF", " href="});
    rules.add({4, "STYLE:URL1:BACKGROUND", "background:url"});
    rules.add({5, "STYLE:URL2:BACKGROUND", "background: url"});
    rules.add({6, "STYLE:URL:OTHER", " url("});
    rules.add({7, "INLINE:VALUE", "value="});
    // A script library that loads its style sheet by hand.
    rules.add({8, "INLINE:STYLE:HREF", "commonCss.setAttribute(\"href\", "});
    rules.add({9, "STYLE:URL3:BACKGROUND", "background-image:url"});
    return rules;
}

} // namespace nv
