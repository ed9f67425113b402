#pragma once

#include "time/Date.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace nv {

/// How many records of a kind were stored, and between which dates their events lie. No date: none
/// of them has one.
struct KindRows {
    std::uint64_t rows = 0;
    Date first; ///< UTC
    Date last;  ///< UTC

    /// Zeros of the clocks of all systems are left out of `first`: no browser ran on those days.
    void count(const Date &event);
    void add(const KindRows &other);
};

/// By `CacheType`, as readers write it.
using RowsByKind = std::map<std::string, KindRows, std::less<>>;

void addUp(RowsByKind &sum, const RowsByKind &more);
std::uint64_t rowsOf(const RowsByKind &kinds);

} // namespace nv
