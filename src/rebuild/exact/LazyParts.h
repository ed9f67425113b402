#pragma once

#include "rebuild/exact/AttributeEdits.h"

#include <string_view>
#include <vector>

namespace nv {

/// An attribute from which a script would have shown a part, when a reader came near to it.
struct LazyPart {
    std::string_view target; ///< the attribute that browsers show it from
    const HtmlAttribute *lazy = nullptr;
    const HtmlAttribute *placeholder = nullptr; ///< what stands in `target` as yet; may be null
};

/// Those of an element of HTML that nothing real stands in the place of. The attributes must
/// outlive what is told.
std::vector<LazyPart> lazyParts(std::string_view element, const HtmlAttributes &attributes);

/// The attribute with the address of a background that a script would have shown; null for none.
const HtmlAttribute *lazyBackground(const HtmlAttributes &attributes);

} // namespace nv
