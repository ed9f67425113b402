#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads the "downloads.sqlite" of Firefox 3 to 25; docs/formats/firefox-downloads.md.
ReadResult parseFirefoxDownloadsFile(ReadContext &ctx);

} // namespace nv
