#include "readers/TextPlaces.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace nv {

namespace {

/// "line 5, column 12", both from 1; columns are bytes.
std::string lineAndColumn(std::string_view text, std::uint64_t at) {
    const std::string_view before = text.substr(0, at);
    const std::size_t begin = before.rfind('\n');
    return fmt::format("line {}, column {}", std::ranges::count(before, '\n') + 1,
                       before.size() - (begin == std::string_view::npos ? 0 : begin + 1) + 1);
}

/// "1.2952612802e+16".
std::optional<std::int64_t> roundNumberIn(std::string_view digits) {
    constexpr double kMost = 9007199254740992.0 * 1024; // far from what 64 bits can't hold
    double number = 0;
    const char *end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end && !digits.empty();
    return isNumber && std::abs(number) < kMost ? std::optional(static_cast<std::int64_t>(number))
                                                : std::nullopt;
}

} // namespace

std::optional<std::int64_t> wholeNumberIn(std::string_view digits) {
    digits = trim(digits);
    std::int64_t number = 0;
    const char *end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end && !digits.empty() ? std::optional(number)
                                                                  : std::nullopt;
}

TextPlaces::TextPlaces(const PlaceSearch &search, std::filesystem::path file, std::uint64_t most,
                       FieldPlaces &places)
    : m_file(std::move(file)), m_bytes(search.evidence.open(m_file).read(0, most)),
      m_places(places) {}

void TextPlaces::value(std::string_view field, std::uint64_t at, std::uint64_t size, MadeValue made,
                       std::string_view what, std::string rule) {
    const std::string_view own = ByteView(m_bytes).sub(at, size).raw();
    const SourceBytes bytes{fmt::format("{} ({})", lineAndColumn(text(), at), what),
                            m_file,
                            {},
                            at,
                            Bytes(own.begin(), own.end())};
    m_places.value(field, bytes, 0, size, std::move(made), std::move(rule));
}

void TextPlaces::value(std::string_view field, std::string_view part, MadeValue made,
                       std::string_view what, std::string rule) {
    value(field, static_cast<std::uint64_t>(part.data() - text().data()), part.size(),
          std::move(made), what, std::move(rule));
}

void TextPlaces::digits(std::string_view field, std::string_view part, SourceForm form,
                        std::string_view what) {
    auto number = wholeNumberIn(part);
    if (!number)
        number = roundNumberIn(part);
    MadeValue made;
    if (number && form == SourceForm::number)
        made = *number;
    else if (number)
        made = dateOf(form, *number);
    value(field, part, std::move(made), what,
          fmt::format("digits: {}", number ? wordsOf(form, *number) : wordsOf(form)));
}

} // namespace nv
