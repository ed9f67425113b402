#include "platform/posix/ChartFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace nv {

using nlohmann::json;

namespace {

json arrayIn(const json &object, const char *name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_array() ? *found : json::array();
}

std::string textIn(const json &value) {
    return value.is_string() ? value.get<std::string>() : std::string();
}

/// Counts of more than 32 bits are none.
std::uint32_t numberIn(const json &value) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    const std::uint64_t number = value.is_number_unsigned() ? value.get<std::uint64_t>() : 0;
    return number <= kMost ? static_cast<std::uint32_t>(number) : 0;
}

std::vector<std::string> textsIn(const json &list) {
    std::vector<std::string> texts;
    for (const json &each : list)
        texts.push_back(textIn(each));
    return texts;
}

std::vector<std::uint32_t> numbersIn(const json &list) {
    std::vector<std::uint32_t> numbers;
    for (const json &each : list)
        numbers.push_back(numberIn(each));
    return numbers;
}

bool fits(const TimeChart &chart) {
    const auto isThere = [&](std::size_t bar) { return bar < chart.bars; };
    return chart.bars <= kMostChartBars && !chart.parts.empty() &&
           chart.parts.size() <= kMostChartParts &&
           chart.counts.size() == chart.bars * chart.parts.size() &&
           (chart.colors.empty() || chart.colors.size() == chart.parts.size()) &&
           (chart.hours.empty() || chart.hours.size() == chart.bars) &&
           std::ranges::all_of(chart.labels, isThere, &TimeChart::Label::bar) &&
           std::ranges::all_of(chart.gaps, [&](const TimeChart::Gap &gap) {
               return gap.first <= gap.last && isThere(gap.last);
           });
}

} // namespace

std::string textOf(const TimeChart &chart) {
    json labels = json::array();
    for (const TimeChart::Label &label : chart.labels)
        labels.push_back({label.bar, label.text});
    json gaps = json::array();
    for (const TimeChart::Gap &gap : chart.gaps)
        gaps.push_back({gap.first, gap.last});
    const json object{
        {"title", chart.title},    {"lines", chart.lines},   {"parts", chart.parts},
        {"bars", chart.bars},      {"counts", chart.counts}, {"labels", std::move(labels)},
        {"gaps", std::move(gaps)}, {"hours", chart.hours},   {"colors", chart.colors}};
    return object.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<TimeChart> chartOf(std::string_view text) {
    const json object = json::parse(text, nullptr, false);
    if (!object.is_object() || !object.contains("bars"))
        return std::nullopt;
    TimeChart chart;
    chart.title = textIn(object.value("title", json()));
    chart.lines = textsIn(arrayIn(object, "lines"));
    chart.parts = textsIn(arrayIn(object, "parts"));
    chart.bars = numberIn(object.at("bars"));
    chart.counts = numbersIn(arrayIn(object, "counts"));
    chart.colors = numbersIn(arrayIn(object, "colors"));
    for (const json &label : arrayIn(object, "labels"))
        if (label.is_array() && label.size() == 2)
            chart.labels.push_back({numberIn(label.at(0)), textIn(label.at(1))});
    for (const json &gap : arrayIn(object, "gaps"))
        if (gap.is_array() && gap.size() == 2)
            chart.gaps.push_back({numberIn(gap.at(0)), numberIn(gap.at(1))});
    for (const json &hours : arrayIn(object, "hours")) {
        const std::vector<std::uint32_t> numbers = numbersIn(hours);
        TimeChart::Hours day{};
        std::copy_n(numbers.begin(), std::min(numbers.size(), day.size()), day.begin());
        chart.hours.push_back(day);
    }
    return fits(chart) ? std::optional(chart) : std::nullopt;
}

} // namespace nv
