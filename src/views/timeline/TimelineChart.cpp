#include "views/timeline/TimelineChart.h"

#include "base/Text.h"
#include "readers/RecordKind.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <optional>

namespace nv {

namespace {

/// The order of the parts: most events first, then by name.
std::vector<std::size_t> orderOf(const TimedEvents &events, const TimeBars &bars) {
    std::vector<std::uint64_t> totals(bars.parts);
    for (std::size_t at = 0; at < bars.counts.size(); ++at)
        totals[at % bars.parts] += bars.counts[at];
    std::vector<std::size_t> order(bars.parts);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [&](std::size_t one, std::size_t other) {
        return totals[one] != totals[other] ? totals[one] > totals[other]
                                            : events.parts[one] < events.parts[other];
    });
    return order;
}

/// Which colour a part has. The places are those of the lists of colours that draw it.
struct ColorPlace {
    std::string_view part;
    std::uint32_t place = 0;
};
constexpr std::uint32_t kGrey = 5;
const std::array<ColorPlace, 7> kColorPlaces = {{{"", 0}, // nothing is divided
                                                 {groupWord(RecordGroup::cache), 0},
                                                 {groupWord(RecordGroup::history), 1},
                                                 {groupWord(RecordGroup::cookies), 2},
                                                 {groupWord(RecordGroup::bookmarks), 3},
                                                 {groupWord(RecordGroup::other), kGrey},
                                                 {"Unknown", kGrey}}};
/// Browsers by what their names hold: those of one family look alike.
constexpr std::array<ColorPlace, 6> kFamilyColors = {{{families::internetExplorer.name, 0},
                                                      {families::firefox.name, 1},
                                                      {families::chrome.name, 2},
                                                      {families::safari.name, 3},
                                                      {families::opera.name, 4},
                                                      {"Edge", 6}}};
/// Of the browsers beside them.
constexpr std::array<std::uint32_t, 2> kFreeColors = {7, 3};

/// A distance of labels.
struct Distance {
    TimeUnit unit;
    std::int64_t slots;
};
constexpr std::array<Distance, 17> kDistances = {{{TimeUnit::minute, 1},
                                                  {TimeUnit::minute, 5},
                                                  {TimeUnit::minute, 15},
                                                  {TimeUnit::minute, 30},
                                                  {TimeUnit::hour, 1},
                                                  {TimeUnit::hour, 3},
                                                  {TimeUnit::hour, 6},
                                                  {TimeUnit::day, 1},
                                                  {TimeUnit::day, 7},
                                                  {TimeUnit::month, 1},
                                                  {TimeUnit::month, 3},
                                                  {TimeUnit::year, 1},
                                                  {TimeUnit::year, 2},
                                                  {TimeUnit::year, 5},
                                                  {TimeUnit::year, 20},
                                                  {TimeUnit::year, 100},
                                                  {TimeUnit::year, 1000}}};

std::int64_t startOfBar(const TimeBars &bars, std::size_t bar) {
    return bars.spanOf(bar, bar).begin;
}

/// The bars that are the first of their distance.
std::vector<std::size_t> roundBars(const TimeBars &bars, const Distance &distance) {
    std::vector<std::size_t> round;
    std::optional<std::int64_t> before;
    for (std::size_t bar = 0; bar < bars.count; ++bar) {
        const std::int64_t slot = slotOf(startOfBar(bars, bar), distance.unit);
        const std::int64_t rest = (slot % distance.slots + distance.slots) % distance.slots;
        if (before != slot - rest)
            round.push_back(bar);
        before = slot - rest;
    }
    return round;
}

/// An hour is told with its day where that is another one than before.
std::vector<TimeChart::Label> labelsOf(const TimeBars &bars, std::size_t most) {
    std::vector<TimeChart::Label> labels;
    for (const Distance &distance : kDistances) {
        if (distance.unit > bars.unit)
            continue;
        const std::vector<std::size_t> round = roundBars(bars, distance);
        if (round.size() > most)
            continue;
        std::string before;
        for (const std::size_t bar : round) {
            const std::int64_t start = startOfBar(bars, bar);
            std::string text = slotText(slotOf(start, distance.unit), distance.unit);
            const std::string day = slotText(slotOf(start, TimeUnit::day), TimeUnit::day);
            if (distance.unit > TimeUnit::day && day == before)
                text = text.substr(day.size() + 1);
            before = day;
            labels.push_back({bar, text});
        }
        break;
    }
    return labels;
}

std::vector<TimeChart::Gap> gapsIn(const TimedEvents &events, const TimeBars &bars) {
    std::vector<TimeChart::Gap> gaps;
    if (bars.count == 0)
        return gaps;
    const auto barOf = [&](std::int64_t second, bool up) {
        std::int64_t slot = slotOf(second, bars.unit) - bars.first;
        slot += up && startOf(slot + bars.first, bars.unit) < second ? 1 : 0;
        return (slot + (up ? bars.step - 1 : 0)) / bars.step;
    };
    for (const DayGap &gap : gapsOf(events, bars.spanOf(0, bars.count), 1)) {
        // Bars of hours may begin and end within the days of a gap.
        const std::int64_t first =
            std::max<std::int64_t>(0, barOf(startOf(gap.first, TimeUnit::day), true));
        const std::int64_t end = std::min(barOf(startOf(gap.last + 1, TimeUnit::day), false),
                                          static_cast<std::int64_t>(bars.count));
        if (first < end)
            gaps.push_back({static_cast<std::size_t>(first), static_cast<std::size_t>(end - 1)});
    }
    return gaps;
}

} // namespace

std::uint32_t colorPlaceOf(std::string_view part) {
    const auto found = std::ranges::find(kColorPlaces, part, &ColorPlace::part);
    if (found != kColorPlaces.end())
        return found->place;
    const auto family = std::ranges::find_if(
        kFamilyColors, [part](const ColorPlace &each) { return containsNoCase(part, each.part); });
    if (family != kFamilyColors.end())
        return family->place;
    std::uint32_t sum = 0; // one name is one colour on each machine
    for (const char letter : part)
        sum = sum * 31 + static_cast<unsigned char>(letter);
    return kFreeColors.at(sum % kFreeColors.size());
}

TimeChart chartOf(const TimedEvents &events, const TimeBars &bars, std::size_t mostLabels) {
    TimeChart chart;
    const std::vector<std::size_t> order = orderOf(events, bars);
    chart.parts.reserve(order.size());
    chart.colors.reserve(order.size());
    for (const std::size_t part : order) {
        chart.parts.push_back(events.parts.empty() ? std::string() : events.parts[part]);
        chart.colors.push_back(colorPlaceOf(chart.parts.back()));
    }
    chart.bars = bars.count;
    chart.counts.reserve(bars.counts.size());
    for (std::size_t bar = 0; bar < bars.count; ++bar)
        for (const std::size_t part : order)
            chart.counts.push_back(bars.counts[bar * bars.parts + part]);
    chart.labels = labelsOf(bars, mostLabels);
    chart.gaps = gapsIn(events, bars);
    chart.hours = bars.hours;
    return chart;
}

std::string_view wordOf(TimeUnit unit) {
    constexpr std::array<std::string_view, 5> kWords = {"year", "month", "day", "hour", "minute"};
    return kWords.at(static_cast<std::size_t>(unit));
}

std::string barText(const TimeBars &bars) {
    const std::string_view unit = wordOf(bars.unit);
    if (bars.step == 1)
        return fmt::format("one bar is {} {}", unit == "hour" ? "an" : "a", unit);
    return fmt::format("one bar is {}", counted(static_cast<std::uint64_t>(bars.step), unit));
}

} // namespace nv
