#include "app/program/ZoneMeaning.h"

#include "app/program/Zones.h"
#include "base/Trap.h"
#include "time/Date.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

std::chrono::minutes minutesOf(const ZoneMoment &moment) {
    return std::chrono::floor<std::chrono::minutes>(moment.offset);
}

/// "13:00 (CET)": what a clock there says at noon UTC.
std::string clockAtNoon(const ZoneMoment &moment) {
    constexpr std::chrono::minutes kDay{24 * 60};
    const auto clock = (kDay / 2 + minutesOf(moment) + kDay) % kDay;
    return fmt::format("{:02}:{:02} ({})", clock.count() / 60, clock.count() % 60,
                       moment.abbreviation);
}

std::string meaningOf(const ExactZone &zone, int year) {
    const ZoneMoment january = zone.at(Date::fromCivil({.year = year, .month = 1, .day = 15}));
    const ZoneMoment july = zone.at(Date::fromCivil({.year = year, .month = 7, .day = 15}));
    const std::string clock =
        january.offset == july.offset
            ? fmt::format("12:00 UTC is {} there all through {}", clockAtNoon(january), year)
            : fmt::format("12:00 UTC is {} there in January and {} in July {}",
                          clockAtNoon(january), clockAtNoon(july), year);
    return clock + "; each date goes by the law of its own time.";
}

} // namespace

std::string zoneMeaning(Program &program, std::string_view key) {
    const bool isClassic = std::ranges::all_of(key, [](char c) { return c >= '0' && c <= '9'; });
    if (isClassic)
        return "A classic zone: one offset for all years with the daylight rule of the United "
               "States; local dates of more than ten years ago stay empty.";
    const int year = Date::fromTimePoint(program.around.clock.now()).civil().year;
    std::string meaning;
    const auto failure = failureOf(program.log, "ImportForm.NextBtn_Click()", [&] {
        meaning = meaningOf(*exactZoneNamed(program, key), year);
    });
    return failure.value_or(meaning);
}

} // namespace nv
