#include "reports/case/TimelineSvg.h"

#include "reports/report/Html.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace nv {

namespace {

constexpr double kWide = 1000;
constexpr double kHigh = 180; ///< of the bars
constexpr double kHours = 24;
constexpr double kHourHigh = 7;
constexpr double kLabels = 16;
constexpr double kLeft = 24; ///< for the hours' names
constexpr std::size_t kColours = 8;

double widthOf(const TimeChart &chart) {
    return kWide / static_cast<double>(std::max<std::size_t>(chart.bars, 1));
}

std::string labels(const TimeChart &chart, double left, double high) {
    std::string text;
    const double wide = (kWide - left) / static_cast<double>(std::max<std::size_t>(chart.bars, 1));
    for (const TimeChart::Label &label : chart.labels) {
        const double x = left + wide * static_cast<double>(label.bar);
        text += fmt::format("<line class=\"axis\" x1=\"{0:.1f}\" x2=\"{0:.1f}\" y1=\"0\" "
                            "y2=\"{1:.0f}\"/><text x=\"{2:.1f}\" y=\"{3:.0f}\">{4}</text>\n",
                            x, high + 3, x + 2, high + kLabels - 3, htmlText(label.text));
    }
    return text;
}

std::string begin(double high, std::string_view what) {
    return fmt::format("<svg viewBox=\"0 0 {:.0f} {:.0f}\" role=\"img\" aria-label=\"{}\">\n",
                       kWide, high + kLabels, htmlText(what));
}

std::uint64_t highestOf(const TimeChart &chart, std::size_t parts) {
    std::uint64_t highest = 0;
    for (std::size_t bar = 0; bar < chart.bars; ++bar) {
        const auto from = chart.counts.begin() + static_cast<std::ptrdiff_t>(bar * parts);
        highest = std::max(highest, std::accumulate(from, from + static_cast<std::ptrdiff_t>(parts),
                                                    std::uint64_t{0}));
    }
    return highest;
}

std::string oneBar(const TimeChart &chart, std::size_t bar, std::size_t parts,
                   std::uint64_t highest) {
    const double wide = widthOf(chart);
    const double gap = wide > 3 ? 1 : 0;
    double bottom = kHigh;
    std::string text;
    for (std::size_t part = 0; part < parts; ++part) {
        const std::uint32_t count = chart.counts[bar * parts + part];
        if (count == 0)
            continue;
        const double high =
            std::max(0.5, kHigh * static_cast<double>(count) / static_cast<double>(highest));
        bottom -= high;
        text += fmt::format(
            "<rect class=\"p{}\" x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" "
            "height=\"{:.2f}\"><title>{}{}</title></rect>",
            chart.colorOf(part) % kColours, static_cast<double>(bar) * wide, bottom, wide - gap,
            high, chart.parts[part].empty() ? "" : htmlText(chart.parts[part]) + ": ", count);
    }
    return text;
}

} // namespace

std::string barsSvg(const TimeChart &chart) {
    const std::size_t parts = std::max<std::size_t>(chart.parts.size(), 1);
    const std::uint64_t highest = std::max<std::uint64_t>(highestOf(chart, parts), 1);
    const double wide = widthOf(chart);
    std::string text = begin(kHigh, "Events over time");
    for (const TimeChart::Gap &gap : chart.gaps)
        text += fmt::format("<rect class=\"gap\" x=\"{:.2f}\" y=\"0\" width=\"{:.2f}\" "
                            "height=\"{:.0f}\"><title>Days without an event</title></rect>\n",
                            static_cast<double>(gap.first) * wide,
                            static_cast<double>(gap.last - gap.first + 1) * wide, kHigh);
    text += labels(chart, 0, kHigh);
    for (std::size_t bar = 0; bar < chart.bars; ++bar)
        text += oneBar(chart, bar, parts, highest);
    return text + fmt::format("\n<line class=\"axis\" x1=\"0\" x2=\"{0:.0f}\" y1=\"{1:.0f}\" "
                              "y2=\"{1:.0f}\"/>\n</svg>\n",
                              kWide, kHigh);
}

std::string barsKey(const TimeChart &chart) {
    std::string text = "<p>";
    for (std::size_t part = 0; part < chart.parts.size(); ++part)
        if (!chart.parts[part].empty())
            text +=
                fmt::format("<span class=\"key\"><svg viewBox=\"0 0 10 10\" aria-hidden=\"true\">"
                            "<rect class=\"p{}\" width=\"10\" height=\"10\"/></svg>{}</span>",
                            chart.colorOf(part) % kColours, htmlText(chart.parts[part]));
    return text + "</p>\n";
}

std::string hoursSvg(const TimeChart &chart) {
    if (chart.hours.empty())
        return {};
    std::uint32_t highest = 1;
    for (const TimeChart::Hours &hours : chart.hours)
        highest = std::max(highest, *std::ranges::max_element(hours));
    const double high = kHours * kHourHigh;
    const double wide = (kWide - kLeft) / static_cast<double>(chart.hours.size());
    std::string text = begin(high, "Hours of the day");
    for (const int hour : {0, 6, 12, 18})
        text += fmt::format("<text x=\"0\" y=\"{:.0f}\">{:02}</text>", hour * kHourHigh + 9, hour);
    text += labels(chart, kLeft, high);
    for (std::size_t bar = 0; bar < chart.hours.size(); ++bar)
        for (std::size_t hour = 0; hour < chart.hours[bar].size(); ++hour)
            if (const std::uint32_t count = chart.hours[bar].at(hour); count > 0)
                text += fmt::format(
                    "<rect class=\"heat\" fill-opacity=\"{:.2f}\" x=\"{:.2f}\" y=\"{:.0f}\" "
                    "width=\"{:.2f}\" height=\"{:.0f}\"><title>{:02}:00: {}</title></rect>",
                    0.15 + 0.85 * static_cast<double>(count) / static_cast<double>(highest),
                    kLeft + static_cast<double>(bar) * wide, static_cast<double>(hour) * kHourHigh,
                    wide, kHourHigh, hour, count);
    return text + "\n</svg>\n";
}

} // namespace nv
