#pragma once

#include "base/FailureLog.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace SQLite {
class Database;
}

namespace nv {

/// The outcome of a check of a statement.
struct QueryCheck {
    std::int32_t errCode = 0; ///< 0 means valid
    std::string errDescription;
    std::string sql;
    std::string orderBy; ///< what stands after the last ORDER BY; empty when there is none
};

/// Each CR LF pair, tab, CR and LF becomes one blank.
std::string sanitizeSQLText(std::string_view sql);

/// Opens the statement on a connection of openReadOnly() and closes it again. Only one SELECT that
/// could be stored is valid; anything else, and all that the dialect or the database refuses, gives
/// their own words, which are logged as well. A statement that hasn't failed after some work is
/// taken for good, however long it would still run.
QueryCheck testQuery(std::string_view sql, SQLite::Database &connection, FailureLog &log);

/// The same for a text as it was typed: trimmed and sanitized first. A comment that begins with
/// "--" would take what stands on the lines after it along, and is refused.
QueryCheck testTyped(std::string_view typed, SQLite::Database &connection, FailureLog &log);

/// The same for what the table shall show: its rows must have a urlID.
QueryCheck testForTable(std::string_view typed, SQLite::Database &connection, FailureLog &log);

} // namespace nv
