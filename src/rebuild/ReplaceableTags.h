#pragma once

#include <string_view>

namespace nv {

inline constexpr std::string_view kHTMLReplaceablePictureTags = "jpe;jpeg;jpg;gif;bmp;png;tif;";
inline constexpr std::string_view kHTMLReplaceableHREFTags = "js;css;php;txt;asp;aspx;htm;html;";

// Both lists end in ";": what follows the last ";" is no entry, so a list without a closing ";"
// loses its last one.

/// Whether a picture that a page names may be replaced by a cached one. Only the last 4 characters
/// count: "jpeg" stands there without its point, while "x.jpg?a=1" has no extension at all.
bool isReplaceablePicture(std::string_view tag,
                          std::string_view list = kHTMLReplaceablePictureTags);

/// The same for what a page links to, by its file extension.
bool isReplaceableHREF(std::string_view tag, std::string_view list = kHTMLReplaceableHREFTags);

} // namespace nv
