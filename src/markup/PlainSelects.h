#pragma once

#include <string>
#include <string_view>

namespace nv {

/// What a "select" is called in withPlainSelects().
inline constexpr std::string_view kPlainSelect = "sel-ct";

/// The page with a name in place of each "select" that is as long and means nothing, so that all
/// stays where it is. Browsers of today read what stands in a list as they read it anywhere; by the
/// rules that the parser knows, most of it isn't there. Empty for a page without lists.
std::string withPlainSelects(std::string_view html);

} // namespace nv
