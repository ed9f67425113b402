#pragma once

#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/Row.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Finds single rows of a table by a number in its key column. The database must outlive it.
class RowLookup {
  public:
    /// Throws EvidenceDamage when the table is missing or has no such key column.
    RowLookup(EvidenceDatabase &database, std::string_view table, std::string_view key,
              std::span<const std::string_view> columns);

    /// The first row with this key; it lives until the next look-up. Nothing when there is none.
    /// Throws EvidenceDamage where the table can't be read.
    std::optional<Row> find(std::int64_t key);

  private:
    EvidenceDatabase &m_database;
    std::string m_table;
    std::vector<int> m_positions;
    std::optional<SQLite::Statement> m_query;
    std::uint64_t m_slow = 0;
};

} // namespace nv
