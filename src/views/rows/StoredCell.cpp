#include "views/rows/StoredCell.h"

#include "base/Text.h"

#include <SQLiteCpp/Column.h>
#include <fmt/format.h>

namespace nv {

Cell storedCell(const SQLite::Column &column) {
    if (column.isNull())
        return nullptr;
    if (column.isInteger())
        return column.getInt64();
    if (column.isFloat())
        return numberCell(column.getDouble());
    if (column.isBlob())
        return fmt::format("<{} bytes>", column.size());
    return decodeText(column.getString());
}

} // namespace nv
