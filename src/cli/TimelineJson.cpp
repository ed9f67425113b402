#include "cli/TimelineJson.h"

#include "views/timeline/TimelineChart.h"

#include <nlohmann/json.hpp>

namespace nv::cli {

namespace {

using nlohmann::ordered_json;

ordered_json slotsJson(const TimelineFindings &findings) {
    ordered_json slots = ordered_json::array();
    for (const TimeSlot &slot : findings.slots) {
        ordered_json object{{"time", slotText(slot.slot, findings.unit)}, {"events", slot.total}};
        for (std::size_t part = 0; part < slot.counts.size(); ++part)
            if (slot.counts[part] > 0 && !findings.events.parts[part].empty())
                object["parts"][findings.events.parts[part]] = slot.counts[part];
        slots.push_back(std::move(object));
    }
    for (std::size_t at = 0; at < findings.hours.size() && at < slots.size(); ++at)
        slots[at]["hours"] = findings.hours[at].hours;
    return slots;
}

} // namespace

std::string timelineJson(const TimelineFindings &findings) {
    ordered_json gaps = ordered_json::array();
    for (const DayGap &gap : findings.gaps)
        gaps.push_back({{"from", slotText(gap.first, TimeUnit::day)},
                        {"to", slotText(gap.last, TimeUnit::day)},
                        {"days", gap.days()}});
    const ordered_json object{{"zone", findings.zone},
                              {"by", wordOf(findings.unit)},
                              {"events", findings.events.seconds.size()},
                              {"undated", findings.events.undated},
                              {"slots", slotsJson(findings)},
                              {"gaps", std::move(gaps)}};
    return object.dump(1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

} // namespace nv::cli
