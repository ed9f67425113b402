#pragma once

#include "markup/SourceSpan.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// One picture of a "srcset" attribute, of which the browser takes the one that suits it.
struct SrcSetCandidate {
    SourceSpan at;          ///< of its address, which holds no blanks
    std::string descriptor; ///< "2x", "640w"; empty for none
};

/// By the HTML standard: an address may hold commas, and only one at its end ends it.
std::vector<SrcSetCandidate> srcSetCandidates(std::string_view value);

/// Whether it is one that browsers know: "2x", "1.5x", "640w", or none.
bool isDescriptor(std::string_view text);

} // namespace nv
