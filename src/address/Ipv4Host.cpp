#include "address/NumberHosts.h"
#include "address/PercentSets.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace nv {

namespace {

/// No number of an address is as large; larger ones are all alike.
constexpr std::uint64_t kTooLarge = std::uint64_t{1} << 32U;

/// Decimal, "0x..." or octal with a leading zero; "0x" alone is 0.
std::optional<std::uint64_t> numberOf(std::string_view label) {
    if (label.empty())
        return std::nullopt;
    std::uint64_t radix = 10;
    if (label.starts_with("0x") || label.starts_with("0X")) {
        radix = 16;
        label.remove_prefix(2);
    } else if (label.size() > 1 && label.front() == '0') {
        radix = 8;
        label.remove_prefix(1);
    }
    std::uint64_t value = 0;
    for (const char c : label) {
        const int digit = hexDigitOf(c);
        if (digit < 0 || static_cast<std::uint64_t>(digit) >= radix)
            return std::nullopt;
        value = std::min(value * radix + static_cast<std::uint64_t>(digit), kTooLarge);
    }
    return value;
}

std::string_view withoutLastPoint(std::string_view host) {
    if (host.size() > 1 && host.ends_with('.'))
        host.remove_suffix(1);
    return host;
}

} // namespace

bool endsInNumber(std::string_view host) {
    host = withoutLastPoint(host);
    const std::string_view last = host.substr(host.rfind('.') + 1);
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return (!last.empty() && std::ranges::all_of(last, isDigit)) || numberOf(last).has_value();
}

std::optional<std::string> ipv4Host(std::string_view host) {
    host = withoutLastPoint(host);
    std::vector<std::uint64_t> numbers;
    numbers.reserve(4);
    for (std::size_t at = 0; at <= host.size();) {
        const std::size_t end = std::min(host.find('.', at), host.size());
        const auto number = numberOf(host.substr(at, end - at));
        if (!number || numbers.size() == 4)
            return std::nullopt;
        numbers.push_back(*number);
        at = end + 1;
    }
    // The last number fills all bytes that the others leave.
    std::uint64_t address = numbers.back();
    numbers.pop_back();
    if (address >= std::uint64_t{1} << (8 * (4 - numbers.size())))
        return std::nullopt;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] > 255)
            return std::nullopt;
        address += numbers[i] << (8 * (3 - i));
    }
    std::string text;
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        text += (text.empty() ? "" : ".") + std::to_string((address >> shift) & 0xFFU);
    return text;
}

} // namespace nv
