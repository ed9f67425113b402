#pragma once

#include "db/URLClass.h"
#include "rebuild/RebuildContext.h"

#include <string>

namespace nv {

/// The page's text, one byte a character, with every reference that has a part rewritten to the
/// part's local name. What became of each tag stands in the substitution log, which is stored in
/// the page's row and in `IngredientIDs`: a line a tag, "TagURLID|old value|new value|", lines
/// ended by CR LF. Empty after a failure, which is logged.
std::string ReplaceTags(URLClass &page, const RebuildContext &ctx);

} // namespace nv
