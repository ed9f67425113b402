#include "base/Cell.h"

#include <fmt/format.h>

#include <cmath>

namespace nv {

Cell numberCell(double value) {
    constexpr double kExactWholes = 9007199254740992; // 2^53
    if (std::trunc(value) == value && std::abs(value) < kExactWholes)
        return static_cast<std::int64_t>(value);
    return value;
}

std::string plainText(const Cell &cell) {
    if (const auto *flag = std::get_if<bool>(&cell))
        return *flag ? "True" : "False";
    if (const auto *whole = std::get_if<std::int64_t>(&cell))
        return std::to_string(*whole);
    if (const auto *real = std::get_if<double>(&cell))
        return fmt::format("{}", *real);
    const auto *text = std::get_if<std::string>(&cell);
    return text ? *text : std::string();
}

} // namespace nv
