#include "views/timeline/MidOfEvents.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace nv {

std::int64_t midOf(const TimedEvents &events, const TimeSpan &span) {
    std::vector<std::int64_t> within;
    for (std::size_t at = 0; at < events.seconds.size(); ++at)
        if (const std::int64_t second = events.seconds[at]; span.holds(second))
            within.push_back(second);
    if (within.empty())
        return span.begin + (span.end - span.begin) / 2;
    const auto mid = within.begin() + static_cast<std::ptrdiff_t>(within.size() / 2);
    std::ranges::nth_element(within, mid);
    return *mid;
}

} // namespace nv
