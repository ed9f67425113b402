#include "time/TimeSlots.h"

#include <fmt/format.h>

#include <chrono>

namespace nv {

namespace {

namespace chrono = std::chrono;

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
constexpr std::int64_t kMonths = 12;
constexpr std::int64_t kFirstYear = 1970;

constexpr std::int64_t floorOf(std::int64_t number, std::int64_t part) {
    return number / part - (number % part < 0 ? 1 : 0);
}

chrono::year_month_day civilOf(std::int64_t seconds) {
    return chrono::sys_days(chrono::days(floorOf(seconds, kDay)));
}

std::int64_t firstOfMonth(std::int64_t year, std::int64_t month) {
    const chrono::sys_days day =
        chrono::year(static_cast<int>(year)) / chrono::month(static_cast<unsigned>(month)) / 1;
    return day.time_since_epoch().count() * kDay;
}

std::int64_t monthSlot(const chrono::year_month_day &day) {
    return (int{day.year()} - kFirstYear) * kMonths + unsigned{day.month()} - 1;
}

} // namespace

std::int64_t slotOf(std::int64_t seconds, TimeUnit unit) {
    switch (unit) {
    case TimeUnit::year:
        return int{civilOf(seconds).year()};
    case TimeUnit::month:
        return monthSlot(civilOf(seconds));
    case TimeUnit::day:
        return floorOf(seconds, kDay);
    case TimeUnit::hour:
        return floorOf(seconds, kHour);
    case TimeUnit::minute:
        break;
    }
    return floorOf(seconds, kMinute);
}

std::int64_t startOf(std::int64_t slot, TimeUnit unit) {
    switch (unit) {
    case TimeUnit::year:
        return firstOfMonth(slot, 1);
    case TimeUnit::month: {
        const std::int64_t year = floorOf(slot, kMonths);
        return firstOfMonth(kFirstYear + year, slot - year * kMonths + 1);
    }
    case TimeUnit::day:
        return slot * kDay;
    case TimeUnit::hour:
        return slot * kHour;
    case TimeUnit::minute:
        break;
    }
    return slot * kMinute;
}

std::string slotText(std::int64_t slot, TimeUnit unit) {
    const std::int64_t start = startOf(slot, unit);
    const chrono::year_month_day day = civilOf(start);
    std::string text = fmt::format("{:04}", int{day.year()});
    if (unit >= TimeUnit::month)
        text += fmt::format("-{:02}", unsigned{day.month()});
    if (unit >= TimeUnit::day)
        text += fmt::format("-{:02}", unsigned{day.day()});
    if (unit >= TimeUnit::hour)
        text += fmt::format(" {:02}:{:02}", hourOf(start),
                            floorOf(start, kMinute) - floorOf(start, kHour) * 60);
    return text;
}

int hourOf(std::int64_t seconds) {
    return static_cast<int>(floorOf(seconds, kHour) - floorOf(seconds, kDay) * 24);
}

} // namespace nv
