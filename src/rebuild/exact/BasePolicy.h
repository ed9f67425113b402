#pragma once

#include "address/WebAddress.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// A page's content policy may say to which addresses its base may lead ("base-uri"). Where it may
// not, browsers resolve by the page's own address.

/// What one policy allows: the sources of its first "base-uri", parted by blanks; nothing where it
/// has none.
std::optional<std::string> baseSourcesOf(std::string_view policy);

/// Of the policies in all lines "Content-Security-Policy" of an answer, a list each. Those that
/// only report are none.
std::vector<std::string> baseSourcesIn(std::string_view httpHeader);

/// Whether each of the lists has a source that `base` matches. `own` is the page's address.
bool isBaseAllowed(const std::vector<std::string> &lists, const WebAddress &base,
                   const WebAddress &own);

} // namespace nv
