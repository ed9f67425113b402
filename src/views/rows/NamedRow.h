#pragma once

#include "db/schema/Ids.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

/// One row's values by the names of their columns. A column that a project of an earlier build
/// lacks is empty. Lives no longer than its statement.
class NamedRow {
  public:
    /// Of the row in hand.
    explicit NamedRow(SQLite::Statement &row) : m_row(row) {}

    std::string text(std::string_view column) const;
    /// 0 for what is no number.
    std::int64_t number(std::string_view column) const;
    Date date(std::string_view column) const;
    bool flag(std::string_view column) const { return number(column) != 0; }

  private:
    std::optional<int> placeOf(std::string_view column) const;

    SQLite::Statement &m_row;
};

} // namespace nv
