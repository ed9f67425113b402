#pragma once

#include "app/jobs/RebuildJob.h"

#include <cstddef>
#include <string>
#include <vector>

namespace nv {

/// What a Rebuild command did.
struct RebuildReport {
    std::size_t asked = 0; ///< pages that were to be rebuilt
    std::vector<RebuiltPage> pages;
    bool cancelled = false;
};

/// One line for people: what was rebuilt, and in plain words why the rest wasn't.
std::string reportText(const RebuildReport &report);

/// ", 3 not rewritten" of references that have a part which the page doesn't name; empty for none.
std::string notRewrittenText(std::size_t count);

/// Why a page wasn't rebuilt, without a full stop.
std::string reasonText(NotRebuilt why);

} // namespace nv
