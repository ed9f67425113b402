#pragma once

#include "address/PercentSets.h"

#include <string>
#include <string_view>

namespace nv {

/// A query as it was sent from a page in `charset` (a label of the page, any case; empty or
/// unknown: UTF-8): in the bytes of the charset, and characters that it hasn't as
/// "%26%2312345%3B". `text` is UTF-8.
std::string encodedQuery(std::string_view text, PercentSet set, std::string_view charset);

} // namespace nv
