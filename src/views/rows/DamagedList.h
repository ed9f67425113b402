#pragma once

#include "views/rows/IdLoader.h"
#include "views/rows/UnreadRows.h"

namespace nv {

/// The rows of a query that a damaged page made fail: each row of the project is asked for by its
/// own key, past the broken parts of tables and indexes.
struct SurvivingRows {
    RowIds ids;      ///< in the query's order; in that of ids when it can't be had any more
    UnreadRows lost; ///< rows, or numbers of rows, of which nobody can tell whether they belong
};

/// Throws what the database says when not even that works: the query can't be asked row by row, or
/// nothing tells how many rows there were.
Walk survivingRows(SQLite::Database &database, const IdQuery &query, TaskMonitor &task,
                   SurvivingRows &rows);

/// The rows that `query` gives: asked for together and, only where damage makes that fail, as
/// above. Throws what collectIds() and survivingRows() throw.
Walk rowsPastDamage(SQLite::Database &database, const IdQuery &query, TaskMonitor &task,
                    SurvivingRows &rows);

} // namespace nv
