#pragma once

#include "base/FailureLog.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// Reads and writes of single values in the project. Values are always bound; names of tables and
/// columns must be those of the schema. A failure is logged under the procedure's name and gives
/// the empty result.
class ProjectFields {
  public:
    /// Both must outlive this.
    ProjectFields(SQLite::Database &database, FailureLog &log) : m_database(database), m_log(log) {}

    /// The field's value as trimmed text, a date as "2009-01-15 12:00:00"; empty when there is no
    /// such row.
    std::string getDB3Field(std::string_view field, std::string_view table, std::string_view key,
                            std::string_view keyValue) const;
    /// Sets a field of the row with the key; dates as query texts have them, "True" and "False" are
    /// understood. A row of `DefaultSettings` is added when it isn't
    /// there.
    [[nodiscard]] bool putDBField(std::string_view value, std::string_view keyValue,
                                  std::string_view key, std::string_view table,
                                  std::string_view field, Severity severity = Severity::Warning);

    [[nodiscard]] bool saveDefaultSetting(std::string_view name, std::string_view value);
    /// The same for what nobody chose and nobody misses: a failure stands in the log alone.
    void remember(std::string_view name, std::string_view value);
    /// Trimmed; empty when the row is missing.
    std::string getDefault(std::string_view name) const;
    /// The names of all values in `DefaultSettings`.
    std::vector<std::string> defaultNames() const;
    /// The setting as a whole number, when it is one.
    std::optional<std::int64_t> defaultNumber(std::string_view name) const;

  private:
    SQLite::Database &m_database;
    FailureLog &m_log;
};

} // namespace nv
