#pragma once

#include "base/KeyedList.h"

#include <cstddef>

namespace nv {

/// A row that an export takes.
struct RowClass {
    std::size_t RowNumber = 0; ///< 1-based, in the table
};

using SelectedURLs = KeyedList<RowClass>;

} // namespace nv
