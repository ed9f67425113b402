#pragma once

#include "readers/Evidence.h"

#include <cstdint>
#include <vector>

namespace nv {

/// What a scan could not look at, or left out by rule. Nothing is left out in silence: it goes with
/// the list of files into the summary of their import, and what could not be read into its trail.
struct ScanGaps {
    std::vector<UnreadPlace> unreadable;
    std::uint64_t linksNotFollowed = 0; ///< a link could lead out of the evidence
    std::uint64_t shaderCaches = 0;     ///< caches of compiled graphics programs

    void add(const ScanGaps &other) {
        unreadable.insert(unreadable.end(), other.unreadable.begin(), other.unreadable.end());
        linksNotFollowed += other.linksNotFollowed;
        shaderCaches += other.shaderCaches;
    }
};

} // namespace nv
