#include "import/RowsByKind.h"

#include <numeric>

namespace nv {

namespace {

/// 1990-01-01. What lies before are the zeros of clocks: 1601, 1904, 1970, 1980.
constexpr double kBeforeAllBrowsers = Date::kUnixEpoch + 7305;

void widen(KindRows &kind, const Date &from, const Date &to) {
    if (from.has() && !(kind.first <= from))
        kind.first = from;
    if (to.has() && !(kind.last >= to))
        kind.last = to;
}

} // namespace

void KindRows::count(const Date &event) {
    ++rows;
    if (event.has() && event.days() >= kBeforeAllBrowsers)
        widen(*this, event, event);
}

void KindRows::add(const KindRows &other) {
    rows += other.rows;
    widen(*this, other.first, other.last);
}

void addUp(RowsByKind &sum, const RowsByKind &more) {
    for (const auto &[kind, rows] : more)
        sum[kind].add(rows);
}

std::uint64_t rowsOf(const RowsByKind &kinds) {
    return std::accumulate(
        kinds.begin(), kinds.end(), std::uint64_t{0},
        [](std::uint64_t sum, const auto &kind) { return sum + kind.second.rows; });
}

} // namespace nv
