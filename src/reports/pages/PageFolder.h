#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace nv {

/// What a browser takes a file for that it opens from a folder.
enum class PartKind : std::uint8_t {
    page,
    text, ///< of a name that says nothing: browsers make a page of it where it looks like one
    xhtml,
    svg,
    xml, ///< may name a program that makes a page of it
    style,
    picture, ///< by its first bytes, so that no browser takes it for anything else
    media,
    plain,   ///< drawn, or never used; old browsers make a page of it where it looks like one
    unknown, ///< what nothing of a guarded page shows, or what could name addresses to a player
};

/// The files beside a page by their names, without folders in front.
using PageFolder = std::map<std::string, PartKind, std::less<>>;

} // namespace nv
