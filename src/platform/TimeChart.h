#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// Events over time as they are drawn: bars of stacked parts with an axis below them, and on wish a
/// row of hours of the day under each. All texts are UTF-8, of one line each.
struct TimeChart {
    /// A text of the axis, which begins at the left edge of a bar.
    struct Label {
        std::size_t bar = 0;
        std::string text;

        friend bool operator==(const Label &, const Label &) = default;
    };
    /// Bars from `first` to `last` stand for days without an event.
    struct Gap {
        std::size_t first = 0;
        std::size_t last = 0;

        friend bool operator==(const Gap &, const Gap &) = default;
    };
    using Hours = std::array<std::uint32_t, 24>;

    std::string title;
    std::vector<std::string> lines; ///< under the title
    std::vector<std::string> parts; ///< one, which may be empty, where nothing is divided
    std::size_t bars = 0;
    std::vector<std::uint32_t> counts; ///< bar by bar, part by part
    std::vector<Label> labels;
    std::vector<Gap> gaps;
    std::vector<Hours> hours; ///< bar by bar, or none
    /// The place of each part's colour, which goes by what the part is, not by its rank. Empty: the
    /// colours in their order.
    std::vector<std::uint32_t> colors{};

    std::size_t colorOf(std::size_t part) const {
        return part < colors.size() ? colors[part] : part;
    }
};

/// More bars than this are narrower than a line on any screen.
inline constexpr std::size_t kMostChartBars = 8192;
inline constexpr std::size_t kMostChartParts = 256;

} // namespace nv
