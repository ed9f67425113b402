#pragma once

#include "markup/HtmlDocument.h"
#include "rebuild/exact/PageReferences.h"

#include <string_view>

namespace nv {

/// Finds where what is ours goes in, and for a picture in SVG the styles that are named in front of
/// it.
void findPlaces(const HtmlDocument &page, std::string_view html, PageScan &scan);

} // namespace nv
