#pragma once

#include "base/KeyedList.h"

#include <cstddef>

namespace nv {

/// A row that an export takes.
struct ExportedRow {
    std::size_t rowNumber = 0; ///< 1-based, in the table
};

using SelectedURLs = KeyedList<ExportedRow>;

} // namespace nv
