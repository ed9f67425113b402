#pragma once

#include "db/records/FactList.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// Says in which table of its file the record lies, and in which row.
inline void addSource(FactList &facts, std::string_view table, std::int64_t rowId) {
    facts.add("source_table", std::string(table));
    facts.add("source_rowid", rowId);
}

} // namespace nv
