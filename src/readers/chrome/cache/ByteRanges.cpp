#include "readers/chrome/cache/ByteRanges.h"

#include <fmt/format.h>

namespace nv {

namespace {

constexpr std::size_t kMostShown = 50;

std::vector<ByteRange> joined(const std::vector<ByteRange> &ranges) {
    std::vector<ByteRange> result;
    for (const ByteRange &each : ranges) {
        if (each.size == 0)
            continue;
        if (!result.empty() && each.first <= result.back().first + result.back().size) {
            const std::uint64_t end = each.first + each.size;
            ByteRange &last = result.back();
            if (end > last.first + last.size)
                last.size = end - last.first;
        } else {
            result.push_back(each);
        }
    }
    return result;
}

std::vector<ByteRange> gapsIn(const std::vector<ByteRange> &ranges, std::uint64_t whole) {
    std::vector<ByteRange> gaps;
    std::uint64_t at = 0;
    for (const ByteRange &each : ranges) {
        if (each.first > at)
            gaps.push_back({at, each.first - at});
        at = each.first + each.size;
    }
    if (whole > at)
        gaps.push_back({at, whole - at});
    return gaps;
}

std::string textOf(const std::vector<ByteRange> &ranges) {
    std::string text;
    for (std::size_t i = 0; i < ranges.size() && i < kMostShown; ++i)
        text += fmt::format("{}{}-{}", i == 0 ? "" : ", ", ranges[i].first,
                            ranges[i].first + ranges[i].size - 1);
    if (ranges.size() > kMostShown)
        text += fmt::format(" and {} more", ranges.size() - kMostShown);
    return text;
}

} // namespace

std::string byteRangesText(const std::vector<ByteRange> &ranges, std::uint64_t whole) {
    const std::vector<ByteRange> there = joined(ranges);
    const std::vector<ByteRange> gaps = gapsIn(there, whole);
    const std::string present = there.empty() ? "none" : textOf(there);
    return gaps.empty() ? present : fmt::format("{}; missing {}", present, textOf(gaps));
}

} // namespace nv
