#pragma once

#include "readers/sqlite/CellBytes.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nv {

// A path leads from a row of an SQLite file to a cell:
//   path = start hop*      start = column of the row, or "@" and a number that is given
//   hop  = ">" table "." key ":" column       the rows of the table whose key is the value before
// "rowid" is a column of every row. Tables and columns are this program's own words, never texts of
// evidence.

/// A cell as it lies.
struct CellFound {
    std::string place; ///< "table visits, row 17, column visit_time"
    CellValue value;
    bool isText = false;               ///< of bytes: stored as text
    std::optional<CellName> name = {}; ///< nothing in a table whose rows have no numbers
};

CellValue valueOf(const SQLite::Column &cell);

/// A row of an SQLite file of the evidence.
struct RowPlace {
    std::string table;
    std::int64_t rowId = 0;
};

/// The cells that a path leads to, the first hundred of them: none when a row, table or column of
/// it isn't there. `start` is what the path's "@" stands for. Throws what SQLite says.
std::vector<CellFound> cellsAt(EvidenceDatabase &database, const RowPlace &row,
                               std::string_view path, std::optional<std::int64_t> start);
/// "visit_id" of "@visit_id>visits.id:url"; empty for paths that begin with a column.
std::string_view startOf(std::string_view path);
/// The column that a path begins with, or the table and column where it ends, for people.
std::string wordsOfPath(std::string_view path);

} // namespace nv
