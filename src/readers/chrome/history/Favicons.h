#pragma once

#include "readers/Reader.h"

namespace nv {

/// "Favicons": a record for each page with an icon that the history beside it doesn't list.
ReadResult parseChromeFaviconsFile(ReadContext &ctx);

} // namespace nv
