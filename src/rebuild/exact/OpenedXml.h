#pragma once

#include "rebuild/exact/TextEdit.h"

#include <string_view>
#include <vector>

namespace nv {

/// Whether browsers read what was sent with these headers as XML.
bool isSentAsXml(std::string_view headers);

/// What makes a page of XML one that a parser of HTML reads alike: in HTML "<script/>" begins a
/// script that never ends. Elements that end at once get an end tag, styles lose the marks and
/// character references that only XML has, and a page without document type gets the one by which
/// it is shown by the rules.
std::vector<TextEdit> openedXml(std::string_view xhtml);

} // namespace nv
