#include "base/Text.h"
#include "db/sql/Dialect.h"

#include <charconv>
#include <vector>

namespace nv {

namespace {

/// Numbers of a date or time, separated by one of `separators`.
std::vector<int> numbersOf(std::string_view text, std::string_view separators) {
    std::vector<int> numbers;
    while (!text.empty()) {
        int value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || value < 0)
            return {};
        numbers.push_back(value);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty())
            break;
        if (separators.find(text.front()) == std::string_view::npos || text.size() == 1)
            return {};
        text.remove_prefix(1);
    }
    return numbers;
}

/// Two digits mean the years 1930 to 2029.
int fullYear(int year) {
    if (year >= 100)
        return year;
    return year + (year < 30 ? 2000 : 1900);
}

bool takeTime(std::string_view text, CivilTime &civil) {
    const bool pm = text.size() > 2 && equalsNoCase(text.substr(text.size() - 2), "pm");
    const bool am = text.size() > 2 && equalsNoCase(text.substr(text.size() - 2), "am");
    const std::vector<int> parts =
        numbersOf(trim(pm || am ? text.substr(0, text.size() - 2) : text), ":");
    if (parts.empty() || parts.size() > 3 || (parts.size() == 1 && !pm && !am))
        return false;
    if ((pm || am) && (parts[0] < 1 || parts[0] > 12))
        return false;
    civil.hour = pm || am ? parts[0] % 12 + (pm ? 12 : 0) : parts[0];
    civil.minute = parts.size() > 1 ? parts[1] : 0;
    civil.second = parts.size() > 2 ? parts[2] : 0;
    return true;
}

} // namespace

std::optional<Date> parseDateLiteral(std::string_view text) {
    text = trim(text);
    const std::size_t gap = text.find_first_of(" T");
    const std::string_view day = text.substr(0, gap);
    const std::vector<int> parts = numbersOf(day, "/-");
    if (parts.size() != 3)
        return std::nullopt;
    const bool yearFirst = parts[0] > 31 || day.find('-') == 4;
    CivilTime civil;
    civil.year = fullYear(yearFirst ? parts[0] : parts[2]);
    civil.month = yearFirst ? parts[1] : parts[0];
    civil.day = yearFirst ? parts[2] : parts[1];
    if (gap != std::string_view::npos && !takeTime(trim(text.substr(gap + 1)), civil))
        return std::nullopt;
    const Date date = Date::fromCivil(civil);
    return date.has() ? std::optional(date) : std::nullopt;
}

} // namespace nv
