#pragma once

#include "markup/HtmlDocument.h"
#include "reports/pages/References.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

/// What becomes of an element of a page that leaves the program.
enum class Fate : std::uint8_t {
    keep,
    unwrap,   ///< goes, and what it holds stays
    rename,   ///< of a name that nobody knows: what it holds and how it looks stays, as of a "span"
    lines,    ///< holds text as it stands, and becomes a "pre"
    text,     ///< is kept with its text, in which nothing is a tag
    empty,    ///< is kept without what it holds
    embedded, ///< becomes a picture or a frame, if what it names is one that may stay
    style,
    link,
    meta,
    drop, ///< goes with all that it holds
};
Fate fateOf(HtmlSpace space, std::string_view name);

/// Elements that hold nothing and have no end.
bool isVoid(std::string_view name);

/// Attributes that say how something looks, or what it is, and nothing else.
bool isPlainAttribute(HtmlSpace space, std::string_view name);
/// The property of styles whose values an attribute takes; empty for others.
std::string_view propertyOf(HtmlSpace space, std::string_view attribute);
/// What a browser uses the address for that an attribute of HTML names; nothing where it has to go.
std::optional<Use> useOf(std::string_view element, std::string_view attribute);

} // namespace nv
