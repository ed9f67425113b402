#pragma once

#include "readers/firefox/mork/MorkCollections.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// Gathers one dictionary of columns or values, line by line.
class MorkDictionary {
  public:
    enum class Kind { columns, values };
    /// Takes the text of a cell, without its parentheses.
    using TakeCell = std::function<void(Kind kind, std::string_view cell)>;

    /// `offset` is where the dictionary begins in the file, 0-based.
    MorkDictionary(Kind kind, std::uint64_t offset, TakeCell takeCell)
        : m_kind(kind), m_offset(offset), m_takeCell(std::move(takeCell)) {}

    std::uint64_t offset() const { return m_offset; }
    /// Whether the next line belongs to the value that the last one broke off.
    bool isContinued() const { return m_isContinued; }
    /// Takes a line, the first one from after the opening mark on. Nothing while the dictionary
    /// goes on, otherwise the place in the line after its end.
    std::optional<std::size_t> take(std::string_view line);

  private:
    std::size_t scanCell(std::string_view line, std::size_t at);

    Kind m_kind;
    std::uint64_t m_offset;
    TakeCell m_takeCell;
    bool m_isContinued = false;
    bool m_isInCell = false;
    std::string m_cell;
};

/// How many values of a file aren't as they were, for the summary.
struct MorkValueLosses {
    std::uint64_t shortened = 0; ///< cut at a character that parts values
    std::uint64_t stripped = 0;  ///< lost characters that have a meaning in the format
    std::uint64_t behindCap = 0; ///< not kept at all
};

/// Adds the column of a dictionary's cell.
void addMorkColumn(std::string_view cell, MorkColHeaders &columns);
/// Adds the value of a dictionary's cell.
void addMorkValue(std::string_view cell, MorkValues &values, MorkValueLosses &losses);

/// Without tabs and pairs of blanks, which the format puts at the beginning of lines.
std::string cleanedMorkText(std::string_view text);

} // namespace nv
