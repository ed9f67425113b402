#pragma once

#include "readers/Reader.h"

namespace nv {

/// The file "places.sqlite" of Firefox 3 and later: a record for each page, with the date of its
/// first stored visit.
ReadResult parseFirefox3HistoryFile(ReadContext &ctx);

} // namespace nv
