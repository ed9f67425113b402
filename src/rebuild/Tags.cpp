#include "rebuild/Tags.h"

namespace nv {

URLTagDefs urlTagDefs() {
    URLTagDefs rules;
    rules.Add({1, "INLINE:SRC", "src="});
    rules.Add({2, "INLINE:BACKGROUND", " background="});
    rules.Add({3, "INLINE:HREF", " href="});
    rules.Add({4, "STYLE:URL1:BACKGROUND", "background:url"});
    rules.Add({5, "STYLE:URL2:BACKGROUND", "background: url"});
    rules.Add({6, "STYLE:URL:OTHER", " url("});
    rules.Add({7, "INLINE:VALUE", "value="});
    // A script library that loads its style sheet by hand.
    rules.Add({8, "INLINE:STYLE:HREF", "commonCss.setAttribute(\"href\", "});
    rules.Add({9, "STYLE:URL3:BACKGROUND", "background-image:url"});
    return rules;
}

} // namespace nv
