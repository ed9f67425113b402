#pragma once

#include "base/ByteView.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// The fields of the row that a cursor stands on. In SQLite any value may stand in any column, so
/// each is read as what its reader needs. Columns are counted as they were asked for, from 0; one
/// that the table lacks is empty. Lives until the cursor moves.
class Row {
  public:
    /// `positions` holds the place of each column in the statement, -1 for a column it lacks.
    Row(SQLite::Statement &statement, const std::vector<int> &positions)
        : m_statement(statement), m_positions(positions) {}

    /// Empty for NULL; a number in decimal; bytes decoded. A zero character becomes the visible
    /// U+2400: texts are cut at a zero by half of the programs that meet them.
    std::string text(std::size_t column) const;
    /// Nothing for NULL and for what begins with no number. Fractions are dropped towards zero, and
    /// what 64 bits can't hold becomes the nearest that they can.
    std::optional<std::int64_t> number(std::size_t column) const;
    /// A number other than 0, or the word "true".
    bool truth(std::size_t column) const;
    /// The bytes of a blob or of a text (as UTF-8), not copied. Nothing for NULL; numbers give
    /// their decimal text. May be of no length.
    std::optional<ByteView> bytes(std::size_t column) const;

  private:
    std::optional<SQLite::Column> valueAt(std::size_t column) const;

    SQLite::Statement &m_statement;
    const std::vector<int> &m_positions;
};

} // namespace nv
