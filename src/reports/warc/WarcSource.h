#pragma once

#include "time/Date.h"

#include <cstdint>
#include <string>

namespace nv {

struct RebuildContext;

/// Who writes an archive, and where its contents come from; all must outlive it.
struct WarcSource {
    const RebuildContext &records;
    std::string software; ///< "Norvelane 1.2.3"
    Date now;             ///< UTC
};

/// What an archive doesn't say by itself.
struct WarcCounts {
    std::int64_t contents = 0; ///< records of the project that are in it
    std::int64_t repeated = 0; ///< of them those whose content is that of an earlier one
    std::int64_t bodyless = 0; ///< of them those whose content is gone
    std::int64_t undated = 0;  ///< of them those with a date that stands for none
    std::int64_t others = 0;   ///< that aren't in it: of no cached content
};

} // namespace nv
