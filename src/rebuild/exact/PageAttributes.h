#pragma once

#include "rebuild/exact/AttributeEdits.h"
#include "rebuild/exact/Reference.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

// What elements and attributes mean for the parts of a page. Names are in lower case.

/// What an element of HTML shows of the address in an attribute; nothing where it is none.
std::optional<RefUse> useOfAttribute(std::string_view element, std::string_view attribute);

/// Elements of SVG that draw what their "href" names.
bool isSvgDrawing(std::string_view element);
/// Attributes of SVG whose values are those of a style's property that may name an address.
bool isSvgPaint(std::string_view attribute);

/// Attributes that run a script.
bool isHandler(std::string_view attribute);
/// Attributes of which browsers fetch something that the page doesn't show, or that forbid what was
/// rewritten.
bool isFetchedUnseen(std::string_view attribute);
/// "http-equiv" of what leads away, forbids, or sets something in the browser.
bool isDisarmedMeta(std::string_view act);

enum class LinkKind : std::uint8_t {
    other, ///< told, and fetched by nobody
    style,
    lateStyle, ///< loaded ahead, to be made a style by a script
    icon,
    fetched, ///< ahead of time, or for programs
};
LinkKind linkKind(const HtmlAttributes &link);
/// The "media" of a style that a script would have widened once it was loaded; null for none.
const HtmlAttribute *lateMedia(const HtmlAttributes &link);

} // namespace nv
