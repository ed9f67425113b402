#pragma once

#include <string_view>

namespace nv {

// What every page of a case report carries in its head. The policy names the style and the script
// by their hashes, so that nothing else runs or draws, whatever a page may hold.

/// A "meta" element: nothing is fetched but pictures of the report's own folder.
std::string_view casePolicy();
std::string_view caseStyle();
/// The search in the page and the buttons that copy an address. A page is whole without it.
std::string_view caseScript();

} // namespace nv
