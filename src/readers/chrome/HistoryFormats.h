#pragma once

#include "readers/Reader.h"

namespace nv {

// A profile's history, known by its tables below any folder.

extern const Reader kChromiumHistoryFormat;

} // namespace nv
