#pragma once

#include "base/Cell.h"

namespace SQLite {
class Column;
}

namespace nv {

/// What a column of the row in hand holds. Bytes are told by their number.
Cell storedCell(const SQLite::Column &column);

} // namespace nv
