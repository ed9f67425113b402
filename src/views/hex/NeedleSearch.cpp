#include "views/hex/NeedleSearch.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

std::uint64_t longestOf(const HexNeedle &needle) {
    std::uint64_t length = 0;
    for (const HexNeedle::Unit &unit : needle.units)
        length += std::ranges::max(unit, {}, &std::string::size).size();
    return length;
}

/// Length of the match at the start of `bytes`; 0 when there is none.
std::size_t matchLength(const HexNeedle &needle, std::string_view bytes) {
    std::size_t length = 0;
    for (const HexNeedle::Unit &unit : needle.units) {
        const std::string_view rest = bytes.substr(length);
        const auto form = std::ranges::find_if(
            unit, [rest](const std::string &bytesOfForm) { return rest.starts_with(bytesOfForm); });
        if (form == unit.end())
            return 0;
        length += form->size();
    }
    return length;
}

} // namespace

/// With the bytes that a match can begin with, most positions are passed by with one look.
NeedleSearch::NeedleSearch(std::vector<HexNeedle> needles) : m_needles(std::move(needles)) {
    for (const HexNeedle &needle : m_needles) {
        m_longest = std::max(m_longest, longestOf(needle));
        for (const std::string &form : needle.units.front())
            m_first.at(static_cast<unsigned char>(form.front())) = true;
    }
}

std::optional<HexMatch> NeedleSearch::firstIn(std::string_view block, std::size_t from,
                                              std::size_t starts) const {
    for (std::size_t at = from; at < std::min(starts, block.size()); ++at) {
        if (!m_first[static_cast<unsigned char>(block[at])])
            continue;
        for (const HexNeedle &needle : m_needles)
            if (const std::size_t length = matchLength(needle, block.substr(at)))
                return HexMatch{at, length};
    }
    return std::nullopt;
}

} // namespace nv
