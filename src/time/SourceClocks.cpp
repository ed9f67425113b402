#include "time/SourceClocks.h"

#include "base/Text.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <optional>
#include <string>

namespace nv {

namespace {

constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600;
constexpr std::int64_t kSecondsFrom1970To2001 = 978307200;
constexpr std::size_t kUnixCharacters = 10;

/// Far outside of the calendar on both sides, and safe to add to.
constexpr double kMostSeconds = 1e15;

std::optional<std::int64_t> wholeSeconds(double seconds) {
    const double whole = std::floor(seconds);
    if (!(std::abs(whole) < kMostSeconds))
        return std::nullopt;
    return static_cast<std::int64_t>(whole);
}

/// Decimal text with an optional sign, point and exponent, and blanks around it.
std::optional<double> numberOf(std::string_view text) {
    text = trim(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    double number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number))
        return std::nullopt;
    return number;
}

Date secondsSince(std::int64_t epoch, double seconds) {
    const auto whole = wholeSeconds(seconds);
    return whole ? Date::fromUnixSeconds(epoch + *whole) : Date();
}

Date shifted(Date date, std::chrono::seconds offset) {
    return date.has() ? Date::fromUnixSeconds(date.unixSeconds() + offset.count()) : Date();
}

} // namespace

Date unixSecondsToDate(std::int64_t seconds) {
    return unixSecondsToDate(std::to_string(seconds));
}

Date unixSecondsToDate(std::string_view text) {
    const auto number = numberOf(charSub(text, 0, kUnixCharacters));
    const Date date = number ? secondsToDate1970(*number) : Date();
    return date.has() ? date : Date::fromDays(Date::kUnixEpoch);
}

Date secondsToDate1970(double seconds) {
    return secondsSince(0, seconds);
}

Date secondsToDate2001(double seconds) {
    return secondsSince(kSecondsFrom1970To2001, seconds);
}

Date chromeTimeToDate(std::int64_t microseconds) {
    namespace c = std::chrono;
    const auto whole = c::floor<c::seconds>(c::microseconds(microseconds));
    return Date::fromUnixSeconds(whole.count() - kSecondsFrom1601To1970);
}

Date fileTimeToUtc(std::uint64_t ticks) {
    if (ticks == 0)
        return {};
    const auto whole = static_cast<std::int64_t>(ticks / 10'000'000);
    return Date::fromUnixSeconds(whole - kSecondsFrom1601To1970);
}

Date fileTimeToLocalDate(std::uint64_t ticks, const Clock &clock) {
    return utcDateToLocal(fileTimeToUtc(ticks), clock);
}

Date localDateToUTC(Date local, const Clock &clock) {
    return shifted(local, -clock.localOffset());
}

Date utcDateToLocal(Date utc, const Clock &clock) {
    return shifted(utc, clock.localOffset());
}

Date dosDateToUtc(std::uint16_t date, std::uint16_t time) {
    return Date::fromCivil({.year = 1980 + (date >> 9),
                            .month = (date >> 5) & 0x0F,
                            .day = date & 0x1F,
                            .hour = time >> 11,
                            .minute = (time >> 5) & 0x3F,
                            .second = (time & 0x1F) * 2});
}

} // namespace nv
