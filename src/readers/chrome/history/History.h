#pragma once

#include "readers/Reader.h"

namespace nv {

/// The file "History" or "Archived History" of Chrome and its relatives: a record for each page,
/// with the date of its last visit; and beyond the classic rules every other visit, the downloads
/// and the search terms.
ReadResult parseChromeHistoryFile(ReadContext &ctx);

} // namespace nv
