#include "readers/json/JsonWalk.h"

#include "base/Text.h"
#include "markup/Utf8.h"
#include "readers/Limits.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

namespace nv {

namespace {

/// Gives the bytes to the parser and shows how far it has come.
class Position {
  public:
    // NOLINTBEGIN(readability-identifier-naming): the library asks for these names
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;
    // NOLINTEND(readability-identifier-naming)

    Position(const char *at, const char **reached) : m_at(at), m_reached(reached) {}
    reference operator*() const { return *m_at; }
    Position &operator++() {
        *m_reached = ++m_at;
        return *this;
    }
    Position operator++(int) {
        Position before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const Position &a, const Position &b) { return a.m_at == b.m_at; }

  private:
    const char *m_at;
    const char **m_reached;
};

/// What the parser calls; a false of any member ends the parsing.
class Events {
  public:
    Events(std::string_view text, JsonReceiver &receiver, const std::function<bool(double)> &goOn,
           JsonEnd &end)
        : reached(text.data()), m_text(text), m_receiver(receiver), m_goOn(goOn), m_end(end) {}

    // NOLINTBEGIN(readability-identifier-naming): the names are the parser's
    bool null() { return give({}); }
    bool boolean(bool value) { return give(value); }
    bool number_integer(std::int64_t value) { return give(value); }
    bool number_unsigned(std::uint64_t value) {
        return std::in_range<std::int64_t>(value) ? give(static_cast<std::int64_t>(value))
                                                  : give(static_cast<double>(value));
    }
    bool number_float(double value, const std::string &) { return give(value); }
    bool string(std::string &value) {
        constexpr std::string_view kZero("\0", 1);
        return give(replaceAll(value, kZero, "\u2400"));
    }
    bool binary(std::vector<std::uint8_t> &) { return true; }
    bool start_object(std::size_t) { return open(false); }
    bool end_object() { return close(); }
    bool start_array(std::size_t) { return open(true); }
    bool end_array() { return close(); }
    bool key(std::string &name) {
        if (m_skipped == 0 && !m_names.empty())
            m_names.back() = std::move(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string &, const std::exception &) {
        m_end.damagedAt = offset();
        return false;
    }
    // NOLINTEND(readability-identifier-naming)

    const char *reached; ///< where the parser reads next

  private:
    std::uint64_t offset() const { return static_cast<std::uint64_t>(reached - m_text.data()); }

    JsonPlace place(std::uint64_t offset) const { return {m_names, offset}; }

    bool goOn() {
        constexpr std::uint64_t kBetween = 256; // values
        if (++m_values % kBetween != 0 ||
            m_goOn(static_cast<double>(offset()) / static_cast<double>(m_text.size() + 1)))
            return true;
        m_end.isCancelled = true;
        return false;
    }

    bool give(JsonScalar value) {
        if (m_skipped == 0)
            m_receiver.scalar(place(offset()), std::move(value));
        return goOn();
    }

    bool open(bool isArray) {
        if (m_skipped > 0 || m_names.size() >= limits::kJsonDepth) {
            m_end.tooDeep += m_skipped == 0 ? 1 : 0;
            ++m_skipped;
            return goOn();
        }
        m_receiver.opened(place(offset() - 1), isArray);
        m_names.emplace_back();
        return goOn();
    }

    bool close() {
        if (m_skipped > 0) {
            --m_skipped;
            return true;
        }
        m_names.pop_back();
        m_receiver.closed(place(offset()));
        return true;
    }

    std::string_view m_text;
    JsonReceiver &m_receiver;
    const std::function<bool(double)> &m_goOn;
    JsonEnd &m_end;
    std::vector<std::string> m_names; ///< of each open object the member in hand
    std::uint64_t m_skipped = 0;      ///< open objects and arrays that aren't given
    std::uint64_t m_values = 0;
};

/// A byte for a byte, so that offsets hold.
std::string asUtf8(std::string_view bytes, std::uint64_t &broken) {
    constexpr std::uint32_t kReplacement = 0xFFFD;
    std::string text(bytes);
    if (isUtf8(bytes))
        return text;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t from = at;
        if (nextCode(bytes, at) != kReplacement || bytes.substr(from).starts_with("\uFFFD"))
            continue;
        broken += at - from;
        std::fill(text.begin() + static_cast<std::ptrdiff_t>(from),
                  text.begin() + static_cast<std::ptrdiff_t>(at), '?');
    }
    return text;
}

} // namespace

JsonEnd walkJson(ByteView file, JsonReceiver &receiver, const std::function<bool(double)> &goOn) {
    JsonEnd end;
    const std::string text = asUtf8(file.raw(), end.noUtf8);
    Events events(text, receiver, goOn, end);
    const char *first = text.data();
    end.isWhole = nlohmann::json::sax_parse(
        Position(first, &events.reached), Position(first + text.size(), &events.reached), &events);
    return end;
}

std::string damageText(const JsonEnd &end) {
    std::string text;
    if (!end.isWhole && !end.isCancelled)
        text = fmt::format("what stands before byte {} is no JSON that goes on or ends there",
                           end.damagedAt);
    if (end.tooDeep > 0)
        text += fmt::format("{}{} within more than {} others", text.empty() ? "" : "; ",
                            counted(end.tooDeep, "object"), limits::kJsonDepth);
    return text;
}

std::optional<std::int64_t> numberOf(const JsonScalar &value) {
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return *number;
    if (const auto *text = std::get_if<std::string>(&value)) {
        std::int64_t number = 0;
        const char *last = text->data() + text->size();
        const auto [end, error] = std::from_chars(text->data(), last, number);
        return error == std::errc() && end == last ? std::optional(number) : std::nullopt;
    }
    const std::optional<double> real = realOf(value);
    constexpr double kTwoTo63 = 9223372036854775808.0;
    return real && *real >= -kTwoTo63 && *real < kTwoTo63
               ? std::optional(static_cast<std::int64_t>(*real))
               : std::nullopt;
}

std::optional<double> realOf(const JsonScalar &value) {
    if (const auto *real = std::get_if<double>(&value))
        return std::isfinite(*real) ? std::optional(*real) : std::nullopt;
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*number);
    return std::nullopt;
}

std::string scalarText(const JsonScalar &value) {
    if (const auto *truth = std::get_if<bool>(&value))
        return *truth ? "yes" : "no";
    if (const auto *number = std::get_if<std::int64_t>(&value))
        return fmt::format("{}", *number);
    if (const auto *real = std::get_if<double>(&value))
        return fmt::format("{}", *real);
    const auto *text = std::get_if<std::string>(&value);
    return text ? *text : std::string();
}

} // namespace nv
