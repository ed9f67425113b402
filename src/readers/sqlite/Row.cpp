#include "readers/sqlite/Row.h"

#include "base/Text.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>

namespace nv {

namespace {

constexpr std::string_view kZero("\0", 1);
constexpr std::string_view kVisibleZero = "\u2400";

std::int64_t nearestInteger(double number) {
    using Limits = std::numeric_limits<std::int64_t>;
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (number >= kTwoTo63)
        return Limits::max();
    return number < -kTwoTo63 ? Limits::min() : static_cast<std::int64_t>(number);
}

template <class Number>
struct Parsed {
    Number number{};
    bool any = false;
    bool whole = false; ///< nothing stands after the number
};

template <class Number>
Parsed<Number> parse(std::string_view text) {
    Parsed<Number> result;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, result.number);
    result.any = error == std::errc();
    result.whole = stop == end;
    return result;
}

std::optional<std::int64_t> numberIn(std::string_view text) {
    text = trim(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    // By way of the floating point only when there is no other: it has 53 bits.
    const auto integer = parse<std::int64_t>(text);
    if (integer.any && integer.whole)
        return integer.number;
    const auto real = parse<double>(text);
    if (!real.any || !std::isfinite(real.number))
        return std::nullopt;
    return nearestInteger(real.number);
}

} // namespace

std::optional<SQLite::Column> Row::valueAt(std::size_t column) const {
    const int position = m_positions.at(column);
    if (position < 0)
        return std::nullopt;
    return m_statement.getColumn(position);
}

std::string Row::text(std::size_t column) const {
    const auto value = valueAt(column);
    if (!value || value->isNull())
        return {};
    return replaceAll(decodeText(value->getString()), kZero, kVisibleZero);
}

std::optional<std::int64_t> Row::number(std::size_t column) const {
    const auto value = valueAt(column);
    if (!value || value->isNull())
        return std::nullopt;
    if (value->isInteger())
        return value->getInt64();
    if (value->isFloat())
        return nearestInteger(value->getDouble());
    return numberIn(value->getString());
}

bool Row::truth(std::size_t column) const {
    const auto value = valueAt(column);
    if (!value)
        return false;
    if (value->isFloat())
        return value->getDouble() != 0;
    return number(column).value_or(0) != 0 || equalsNoCase(trim(text(column)), "true");
}

std::optional<ByteView> Row::bytes(std::size_t column) const {
    const auto value = valueAt(column);
    if (!value || value->isNull())
        return std::nullopt;
    // The size first: asking for it turns UTF-16 text into UTF-8, which moves the bytes.
    const auto size = static_cast<std::size_t>(value->getBytes());
    const auto *data = static_cast<const std::uint8_t *>(value->getBlob());
    return ByteView({data, data ? size : 0});
}

} // namespace nv
