#include "views/record/NumberTimes.h"

#include "address/PercentSets.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>

namespace nv {

namespace {

constexpr std::int64_t kFirst = 1'000'000'000; ///< 2001-09-09, seconds since 1970
constexpr std::int64_t kLast = 2'000'000'000;  ///< 2033-05-18, not in it

/// A clock that counts whole units from its own beginning.
struct CountedClock {
    std::int64_t aSecond; ///< units
    std::int64_t begin;   ///< seconds since 1970
    std::string_view rule;
};

constexpr std::int64_t kYear1 = -62'135'596'800;
constexpr std::int64_t kYear1582 = -12'219'292'800; ///< 1582-10-15
constexpr std::int64_t kYear1601 = -11'644'473'600;

constexpr CountedClock kClocks[] = {
    {1, 0, kUnixSeconds},
    {1'000, 0, kUnixMilliseconds},
    {1'000'000, 0, "Unix time in microseconds"},
    {1'000'000, kYear1601, "WebKit time, microseconds since 1601"},
    {10'000'000, kYear1601, "FILETIME, 100 nanoseconds since 1601"},
    {10'000'000, kYear1, "Ticks, 100 nanoseconds since the year 1"},
    {1'000'000'000, 0, "Unix time in nanoseconds"},
};

/// A number may be too large for any date. No clock counts single nanoseconds: a number of that
/// length that doesn't end in zeros is an id, as those of posts are.
std::optional<Date> dateBy(const CountedClock &clock, std::int64_t number) {
    if (clock.aSecond == 1'000'000'000 && number % 100 != 0)
        return std::nullopt;
    const std::int64_t sinceBegin = number / clock.aSecond;
    if (sinceBegin < kFirst - clock.begin || sinceBegin >= kLast - clock.begin)
        return std::nullopt;
    return Date::fromUnixSeconds(clock.begin + sinceBegin);
}

bool areHexDigits(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return hexDigitOf(c) >= 0; });
}

} // namespace

std::optional<ReadTime> timeOfNumber(std::string_view digits) {
    const std::string_view whole = digits.substr(0, digits.find('.'));
    std::int64_t number = 0;
    const char *const end = whole.data() + whole.size();
    const auto [stop, error] = std::from_chars(whole.data(), end, number);
    if (error != std::errc() || stop != end || number <= 0 || whole.front() == '0')
        return std::nullopt;
    for (const CountedClock &clock : kClocks)
        if (const auto date = dateBy(clock, number))
            return ReadTime{*date, clock.rule};
    return std::nullopt;
}

std::optional<ReadTime> timeOfUuid(std::string_view text) {
    constexpr std::int64_t kFirstOfUuid = 788'918'400; // 1995-01-01
    constexpr std::size_t kLength = 36;
    if (text.size() != kLength || text[8] != '-' || text[13] != '-' || text[14] != '1' ||
        text[18] != '-' || text[23] != '-')
        return std::nullopt;
    const std::string_view low = text.substr(0, 8);
    const std::string_view middle = text.substr(9, 4);
    const std::string_view high = text.substr(15, 3);
    if (!areHexDigits(low) || !areHexDigits(middle) || !areHexDigits(high) ||
        !areHexDigits(text.substr(19, 4)) || !areHexDigits(text.substr(24)))
        return std::nullopt;
    const std::string digits = std::string(high).append(middle).append(low);
    std::int64_t ticks = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), ticks, 16);
    const std::int64_t seconds = kYear1582 + ticks / 10'000'000;
    if (seconds < kFirstOfUuid || seconds >= kLast)
        return std::nullopt;
    return ReadTime{Date::fromUnixSeconds(seconds), "UUID of version 1"};
}

} // namespace nv
