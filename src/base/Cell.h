#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace nv {

template <class Value>
concept WholeNumber = std::integral<Value> && !std::same_as<Value, bool>;

/// A cell for other programs: nothing, a truth value, a number or a text. Texts are UTF-8, but may
/// hold anything that evidence holds.
struct Cell : std::variant<std::monostate, bool, std::int64_t, double, std::string> {
    using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

    Cell() = default;
    Cell(std::nullptr_t) {}
    Cell(std::monostate) {}
    Cell(std::same_as<bool> auto flag) : Value(flag) {}
    template <WholeNumber Whole>
    Cell(Whole whole) : Value(static_cast<std::int64_t>(whole)) {}
    Cell(double real) : Value(real) {}
    Cell(std::string text) : Value(std::move(text)) {}
    Cell(std::string_view text) : Value(std::string(text)) {}
    Cell(const char *text) : Value(std::string(text)) {}

    bool isNothing() const { return index() == 0; }
};

/// Offsets are stored as floats; people and programs want them as the whole numbers that they are.
Cell numberCell(double value);

/// The cell as a text: True and False for truth values, nothing for nothing.
std::string plainText(const Cell &cell);

} // namespace nv
