#include "readers/sqlite/CellPath.h"

#include "base/NoLog.h"
#include "base/Succeeds.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kMostCells = 100;
constexpr std::string_view kRowId = "rowid";

/// Where a hop looks: rows of `table` with `key`, of which `column` is wanted.
struct Hop {
    std::string_view table;
    std::string_view key;
    std::string_view column;
};

Hop hopOf(std::string_view text) {
    const std::size_t dot = text.find('.');
    const std::size_t colon = text.find(':');
    return {text.substr(0, dot), text.substr(dot + 1, colon - dot - 1), text.substr(colon + 1)};
}

bool hasColumn(EvidenceDatabase &database, std::string_view table, std::string_view column) {
    return equalsNoCase(column, kRowId) || database.columnsOf(table).contains(toLower(column));
}

/// "id" of a table that has no such column is its rowid, as it is in the readers.
std::string keyIn(EvidenceDatabase &database, const Hop &hop) {
    return std::string(hop.key == "id" && !hasColumn(database, hop.table, hop.key) ? kRowId
                                                                                   : hop.key);
}

bool hasRowId(EvidenceDatabase &database, std::string_view table) {
    NoLog quiet; // a table WITHOUT ROWID is none the worse
    return succeeds(quiet, Severity::Low, "", "", [&] {
        static_cast<void>(database.prepare(fmt::format("SELECT rowid FROM \"{}\"", table)));
    });
}

void bindKey(SQLite::Statement &query, const CellFound &key) {
    if (const auto *number = std::get_if<std::int64_t>(&key.value))
        query.bind(1, *number);
    else if (const auto *text = std::get_if<std::string>(&key.value))
        query.bind(1, *text);
    else if (const auto *real = std::get_if<double>(&key.value))
        query.bind(1, *real);
}

std::string placeOf(const Hop &hop, const SQLite::Column &key, bool isNumbered) {
    constexpr std::size_t kMost = 80; // bytes of a key
    return isNumbered
               ? fmt::format("table {}, row {}, column {}", hop.table, key.getInt64(), hop.column)
               : fmt::format("table {}, row with {} {}, column {}", hop.table, hop.key,
                             decodeText(key.getString().substr(0, kMost)), hop.column);
}

std::vector<CellFound> rowsAt(EvidenceDatabase &database, const Hop &hop, const CellFound &from) {
    std::vector<CellFound> cells;
    if (from.value.index() == 0 || !database.hasTable(hop.table))
        return cells;
    const std::string key = keyIn(database, hop);
    const std::string column = hop.column == "id" && !hasColumn(database, hop.table, hop.column)
                                   ? std::string(kRowId)
                                   : std::string(hop.column);
    if (!hasColumn(database, hop.table, key) || !hasColumn(database, hop.table, column))
        return cells;
    const bool isNumbered = hasRowId(database, hop.table);
    const std::string quoted =
        column == kRowId ? std::string(kRowId) : fmt::format("\"{}\"", column);
    const std::string by = key == kRowId ? std::string(kRowId) : fmt::format("\"{}\"", key);
    const auto take = [&](const std::string &condition) {
        SQLite::Statement query = database.prepare(
            fmt::format("SELECT {}, {} FROM \"{}\" WHERE {} LIMIT {}", quoted,
                        isNumbered ? std::string(kRowId) : by, hop.table, condition, kMostCells));
        bindKey(query, from);
        database.expectWholeTable(); // there may be no index
        while (query.executeStep())
            cells.push_back({placeOf(hop, query.getColumn(1), isNumbered),
                             valueOf(query.getColumn(0)), query.getColumn(0).isText(),
                             isNumbered
                                 ? std::optional(CellName{std::string(hop.table),
                                                          query.getColumn(1).getInt64(), column})
                                 : std::nullopt});
    };
    take(fmt::format("{} = ?", by));
    // Numbers may be stored as texts.
    if (cells.empty() && key != kRowId && std::holds_alternative<std::int64_t>(from.value))
        take(fmt::format("CAST({} AS TEXT) = CAST(? AS TEXT)", by));
    return cells;
}

/// Of the row itself.
std::vector<CellFound> ownCell(EvidenceDatabase &database, const RowPlace &row,
                               std::string_view column) {
    CellFound number{{}, row.rowId, false};
    return rowsAt(database, {row.table, kRowId, column}, number);
}

} // namespace

CellValue valueOf(const SQLite::Column &cell) {
    if (cell.isInteger())
        return cell.getInt64();
    if (cell.isFloat())
        return cell.getDouble();
    return cell.isNull() ? CellValue() : CellValue(cell.getString());
}

std::string_view startOf(std::string_view path) {
    const std::string_view first = path.substr(0, path.find('>'));
    return first.starts_with('@') ? first.substr(1) : std::string_view();
}

std::vector<CellFound> cellsAt(EvidenceDatabase &database, const RowPlace &row,
                               std::string_view path, std::optional<std::int64_t> start) {
    const std::vector<std::string_view> parts = split(path, '>');
    std::vector<CellFound> cells;
    if (!parts.front().starts_with('@'))
        cells = ownCell(database, row, parts.front());
    else if (start)
        cells.push_back({{}, *start, false});
    for (std::size_t at = 1; at < parts.size(); ++at) {
        std::vector<CellFound> next;
        for (const CellFound &cell : cells)
            for (CellFound &found : rowsAt(database, hopOf(parts[at]), cell))
                if (next.size() < kMostCells)
                    next.push_back(std::move(found));
        cells = std::move(next);
    }
    return cells;
}

std::string wordsOfPath(std::string_view path) {
    const std::size_t last = path.rfind('>');
    if (last == std::string_view::npos)
        return fmt::format("column {}", path);
    const Hop hop = hopOf(path.substr(last + 1));
    return fmt::format("table {}, column {}", hop.table, hop.column);
}

} // namespace nv
