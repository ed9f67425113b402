#pragma once

#include "db/schema/Ids.h"

#include <SQLiteCpp/Statement.h>

namespace nv {

/// Binds a key to the parameter at `index`, from 1.
inline void bindId(SQLite::Statement &statement, int index, UrlId id) {
    statement.bind(index, number(id));
}
inline void bindId(SQLite::Statement &statement, int index, SourceFileId id) {
    statement.bind(index, number(id));
}

} // namespace nv
