#include "views/hex/HexHits.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

std::vector<HexNeedle> needlesOf(const std::vector<std::string> &forms) {
    std::vector<HexNeedle> all;
    for (const std::string &form : forms)
        for (HexNeedle &needle : needlesOfText(form, LetterCase::ignored))
            all.push_back(std::move(needle));
    return all;
}

std::vector<HexNeedle> bigEndianNeedles(const std::vector<std::string> &forms) {
    std::vector<HexNeedle> all;
    all.reserve(forms.size());
    for (const std::string &form : forms)
        if (auto needle = bigEndianNeedle(form, LetterCase::ignored))
            all.push_back(std::move(*needle));
    return all;
}

void gather(const NeedleSearch &search, std::string_view block, std::size_t starts,
            std::vector<HexMatch> &into) {
    for (auto match = search.firstIn(block, 0, starts); match;
         match = search.firstIn(block, match->offset + match->length, starts))
        into.push_back(*match);
}

bool overlap(const HexMatch &left, const HexMatch &right) {
    return left.offset < right.offset + right.length && right.offset < left.offset + left.length;
}

} // namespace

HexHits::HexHits(const std::vector<std::string> &forms)
    : m_search(needlesOf(forms)), m_bigEndian(bigEndianNeedles(forms)) {}

std::uint64_t HexHits::longest() const {
    return std::max(m_search.longest(), m_bigEndian.longest());
}

/// Latin letters in UTF-16 are zeros and letters in turn, so that a text of the one order holds
/// most of itself in the other one a byte beside it: the one at an even place is the right one.
std::vector<HexMatch> HexHits::in(std::string_view block, std::uint64_t at,
                                  std::size_t starts) const {
    std::vector<HexMatch> matches;
    gather(m_search, block, starts, matches);
    std::vector<HexMatch> bigEndian;
    gather(m_bigEndian, block, starts, bigEndian);
    std::vector<HexMatch> all;
    all.reserve(matches.size() + bigEndian.size());
    std::size_t next = 0;
    for (const HexMatch &match : matches) {
        while (next < bigEndian.size() && !overlap(bigEndian[next], match) &&
               bigEndian[next].offset < match.offset)
            all.push_back(bigEndian[next++]);
        const bool both = next < bigEndian.size() && overlap(bigEndian[next], match);
        all.push_back(both && (at + bigEndian[next].offset) % 2 == 0 ? bigEndian[next] : match);
        if (both)
            ++next;
    }
    all.insert(all.end(), bigEndian.begin() + static_cast<std::ptrdiff_t>(next), bigEndian.end());
    std::vector<HexMatch> apart;
    apart.reserve(all.size());
    for (HexMatch match : all) {
        match.offset += at;
        if (apart.empty() || !overlap(apart.back(), match))
            apart.push_back(match);
    }
    return apart;
}

HexHitScan::HexHitScan(const std::vector<std::string> &forms, std::uint64_t fileSize)
    : m_hits(forms), m_size(fileSize), m_isOver(m_hits.isEmpty() || fileSize == 0) {}

void HexHitScan::step(const FileReader &file) {
    if (m_isOver)
        return;
    const Bytes block = file.read(m_at, kStep + m_hits.longest());
    for (const HexMatch &match : m_hits.in(ByteView(block).raw(), m_at, kStep)) {
        if (m_found.size() == kMostHits)
            return stop();
        m_found.push_back(match);
    }
    // A hit that reaches into the next piece isn't found there again.
    const std::uint64_t behind =
        m_found.empty() ? 0 : m_found.back().offset + m_found.back().length;
    m_at = std::max(m_at + kStep, behind);
    m_isOver = m_at >= m_size || block.empty();
}

} // namespace nv
