#pragma once

#include "base/TaskMonitor.h"

#include <string_view>

namespace SQLite {
class Database;
}

namespace nv {

enum class IndexState {
    Present,
    Made,
    Cancelled,
    Damaged, ///< not all that it would hold can be read: lists do without
};

/// Makes an index when the project has none of that name: over `columns`, which name the table too.
/// A cancel leaves the project without. Throws what the database says.
IndexState ensureIndex(SQLite::Database &database, TaskMonitor &task, std::string_view name,
                       std::string_view columns);

/// Makes `URLDateIndex` over the local date when the project has none: with it the default query
/// reads no rows, only the index. Call it before a load and at the end of an import. A cancel
/// leaves the project without. Throws what the database says.
IndexState ensureDateIndex(SQLite::Database &database, TaskMonitor &task);

/// The same for both ends of a link, so that counting a row's links reads no more than these.
IndexState ensureLinkIndexes(SQLite::Database &database, TaskMonitor &task);

/// The same for the hashes of pages' links, by which link analysis finds the pages that lead to a
/// record.
IndexState ensureLinkHashIndex(SQLite::Database &database, TaskMonitor &task);

/// The same for all that the gallery chooses rows by, of rows that have a thumbnail. The hash lies
/// after the thumbnail's bytes: without the index each of those would be read.
IndexState ensureGalleryIndex(SQLite::Database &database, TaskMonitor &task);

/// The same for what was found in hash sets: a handful of facts among those of all records. A
/// project of an earlier build has no facts, and needs none.
IndexState ensureHashSetIndex(SQLite::Database &database, TaskMonitor &task);

} // namespace nv
