#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// The statement of the query dialog, which grows condition by condition.
class QueryBuilder {
  public:
    std::string sqlText = kStart;

    /// Adds a condition; nothing when the field, the condition or the value is empty. Values of
    /// fields with "date" in their name become dates, also after LIKE, and a range of values
    /// becomes one text: examiners correct such statements by hand.
    void add(std::string_view field, std::string_view condition, std::string_view value);
    void clear() { sqlText = kStart; }

  private:
    static constexpr const char *kStart = "SELECT * FROM URLs";
};

/// What the dialog offers as conditions.
inline constexpr std::array<std::string_view, 8> kBuilderConditions = {
    "contains", "=", "<>", ">", "<", ">=", "<=", "is between"};

/// The tables that the dialog offers, `URLs` first.
std::vector<std::string> builderTables();
/// The columns of a table of the schema. Throws what the database says.
std::vector<std::string> loadFieldNames(SQLite::Database &database, std::string_view table);

/// True for letters, blanks, dashes and underscores. The characters between "Z" and "a", "["
/// excepted, pass too: names of older projects hold them.
bool isFavoriteName(std::string_view name);

} // namespace nv
