#include "readers/HeaderDate.h"

#include "base/Text.h"
#include "time/DateNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

namespace nv {

namespace {

/// 1-based place of a name, whole or of three letters, in either case.
template <std::size_t Count>
std::optional<int> placeOf(const std::array<std::string_view, Count> &names,
                           std::string_view word) {
    for (std::size_t i = 0; i < Count; ++i)
        if (equalsNoCase(word, names[i]) || equalsNoCase(word, names[i].substr(0, kShortDateName)))
            return static_cast<int>(i) + 1;
    return std::nullopt;
}

/// A number of `fewest` to `most` digits and nothing else.
std::optional<int> numberOf(std::string_view word, std::size_t fewest, std::size_t most) {
    int number = 0;
    const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool isWhole = error == std::errc() && stop == word.data() + word.size();
    if (!isWhole || number < 0 || word.size() < fewest || word.size() > most)
        return std::nullopt;
    return number;
}

std::optional<int> yearOf(std::string_view word) {
    constexpr int kCentury = 100;
    constexpr int kFirstOfLastCentury = 30;
    if (const auto full = numberOf(word, 4, 4))
        return full;
    const auto shortened = numberOf(word, 2, 2);
    if (!shortened)
        return std::nullopt;
    return *shortened + (*shortened < kFirstOfLastCentury ? 20 : 19) * kCentury;
}

/// Hours, minutes and seconds; seconds may be missing.
bool readTime(std::string_view word, CivilTime &civil) {
    const auto parts = split(word, ':');
    if (parts.size() < 2 || parts.size() > 3)
        return false;
    const auto hour = numberOf(parts[0], 1, 2);
    const auto minute = numberOf(parts[1], 2, 2);
    const auto second = parts.size() == 3 ? numberOf(parts[2], 2, 2) : std::optional(0);
    civil.hour = hour.value_or(0);
    civil.minute = minute.value_or(0);
    civil.second = second.value_or(0);
    return hour && minute && second;
}

std::vector<std::string_view> wordsOf(std::string_view text) {
    constexpr std::string_view kBetween = " \t,-";
    std::vector<std::string_view> words;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(kBetween), text.size()));
        if (text.empty())
            return words;
        const std::size_t end = std::min(text.find_first_of(kBetween), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

bool isGreenwich(std::string_view word) {
    return equalsNoCase(word, "GMT") || equalsNoCase(word, "UTC");
}

} // namespace

Date headerDate(std::string_view text) {
    constexpr std::size_t kFewest = 4; // day, month, year, time
    std::vector<std::string_view> words = wordsOf(text);
    if (!words.empty() && placeOf(kWeekdayNames, words.front()))
        words.erase(words.begin());
    if (words.size() == kFewest + 1 && isGreenwich(words.back()))
        words.pop_back();
    if (words.size() != kFewest)
        return {};
    const auto day = numberOf(words[0], 1, 2);
    const auto month = placeOf(kMonthNames, words[1]);
    const auto year = yearOf(words[2]);
    CivilTime civil;
    if (!day || !month || !year || !readTime(words[3], civil))
        return {};
    civil.day = *day;
    civil.month = *month;
    civil.year = *year;
    return Date::fromCivil(civil);
}

Date headerDateBehindDayName(std::string_view text) {
    constexpr std::size_t kDayName = 5;
    const std::string_view before = charSub(text, 0, kDayName);
    // Where a digit stands in them, cutting would make another date out of this one.
    if (before.find_first_of("0123456789") != std::string_view::npos)
        return {};
    return headerDate(charSub(text, kDayName));
}

} // namespace nv
