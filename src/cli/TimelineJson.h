#pragma once

#include "views/timeline/Timeline.h"

#include <string>
#include <vector>

namespace nv::cli {

/// What a timeline holds, for programs.
struct TimelineFindings {
    std::string zone; ///< as people read it
    TimeUnit unit = TimeUnit::day;
    const TimedEvents &events;
    std::vector<TimeSlot> slots;
    std::vector<SlotHours> hours; ///< none where nobody asked
    std::vector<DayGap> gaps;
};

/// One object, with a line break at its end.
std::string timelineJson(const TimelineFindings &findings);

} // namespace nv::cli
